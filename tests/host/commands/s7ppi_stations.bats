#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# Items of several controllers on one line, each named with its station.

# bats runs every test in a shell of its own and sets the variables of run; items have commas in them.
# shellcheck disable=SC2030,SC2031,SC2154,SC2054

load common

# Stations 2, 3 and 5 hold other bytes at VB100, and the same byte at VB0.
start_three() {
    local station
    for station in 2 3 5; do
        printf '{ "V": { "0": "aa", "100": "%s" } }' "0${station}1${station}2${station}3${station}" \
            >"$BATS_TEST_TMPDIR/$station.json"
    done
    start s7ppi-sim --station "2:$BATS_TEST_TMPDIR/2.json" --station "3:$BATS_TEST_TMPDIR/3.json" \
        --station "5:$BATS_TEST_TMPDIR/5.json"
}

# tags LINE...: a tag file of these lines, in $tags.
tags() {
    tags=$BATS_TEST_TMPDIR/tags.csv
    printf '%s\n' "$@" >"$tags"
}

# put ITEM..., get ITEM...: write and read at $port.
put() {
    run --separate-stderr s7ppi write --port "$port" "$@"
}
get() {
    run --separate-stderr s7ppi read --port "$port" "$@"
}

@test "every item is read from its own station, and one without from that of --station" {
    start_three
    get VB100:hex VB100:hex@3 VB100@5:hex*2 VB100:hex VB100:hex*4@3
    [ "$status" -eq 0 ]
    [ -z "$stderr" ]
    [ "$output" = "VB100   0x02
VB100@3 0x03
VB100@5 0x05 0x15
VB100   0x02
VB100@3 0x03 0x13 0x23 0x33" ]
    get --station 5 VB100:hex@2 VB100:hex
    [ "$output" = "VB100@2 0x02
VB100   0x05" ]
}

@test "data for programs name the station, and tables have a column for it when an item names its own" {
    start_three
    get --format json VB0 VB100@3
    [ "$(jq -c '.items[]' <<<"$(timeless "$output")")" = '{"station":2,"address":"VB0","type":"u8","values":[170]}
{"station":3,"address":"VB100","type":"u8","values":[3]}' ]
    get --format csv VB0 VB100@3
    [ "$output" = "name,address,type,station,index,value,unit,error
,VB0,u8,2,0,170,,
,VB100,u8,3,0,3,," ]
    get --format csv VB0
    [ "${lines[0]}" = "name,address,type,index,value,unit,error" ]
    put --format tsv VB0@5=1
    [ "$output" = $'name\taddress\ttype\tstation\tindex\tvalue\tunit\terror
\tVB0\tu8\t5\t0\t1\t\t' ]
    put --format csv VB0=1
    [ "${lines[0]}" = "name,address,type,index,value,unit,error" ]
}

@test "4: a station that is not there is told with its item, and the others are read" {
    start_three
    get --retries 0 --timeout 1s --format ndjson VB100@4 VB100@3 VB100
    [ "$status" -eq 4 ]
    [[ "${stderr_lines[0]}" == "s7ppi: VB100@4: "* ]]
    [ "$(jq -c '[.address, .station, .values]' <<<"$output")" = '["VB100",4,null]
["VB100",3,[3]]
["VB100",2,[2]]' ]
}

@test "a write goes to the item's station and to no other, before and behind writes to other stations" {
    start_three
    put VB0=1 VB0@3=2 VB1=3 VB1@5=4,5
    [ "$status" -eq 0 ]
    [ -z "$output" ]
    get VB0*3 VB0*3@3 VB0*3@5
    [ "$output" = "VB0   1 3 0
VB0@3 2 0 0
VB0@5 170 4 5" ]
}

@test "write --verify reads back from the station that was written to" {
    start_three
    put --verify VB100@3=17,18 VB100=19 VW100:i16@5=-1 V200.1@3=1
    [ "$status" -eq 0 ]
    [ "$output" = "VB100@3  17 18
VB100    19
VW100@5  -1
V200.1@3 1" ]
    get VB100:hex*4 VB100:hex*4@3 VB100:hex*4@5
    [ "$output" = "VB100   0x13 0x12 0x22 0x32
VB100@3 0x11 0x12 0x23 0x33
VB100@5 0xff 0xff 0x25 0x35" ]
}

@test "8: write --verify names the station whose value is another" {
    start s7ppi-sim --station 2 --station 3 --fault ignore-writes
    put --verify VB0@3=1
    [ "$status" -eq 8 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0@3: reads 0 and not 1" ]
}

@test "a long write of several requests stays at its station" {
    start_three
    put --verify "VB0@3=$(seq -s , 0 249),1,2,3"
    [ "$status" -eq 0 ]
    get VB0:hex*3 VB0:hex*3@5 VB249*4@3
    [ "$output" = "VB0     0xaa 0x00 0x00
VB0@5   0xaa 0x00 0x00
VB249@3 249 1 2 3" ]
}

@test "a tag is read and written at the station that its file names" {
    start_three
    tags "name,address,type,scale,station,interval" "Boiler,VW10,i16,0.1,3,500" "Press,VB100@5" "Here,VB100"
    put --verify "@$tags:Boiler=21.5" VW10=7
    [ "$status" -eq 0 ]
    [ "$output" = "Boiler 21.5
VW10   7" ]
    get "@$tags" VW10 VW10@3 VW10@5
    [ "$output" = "Boiler 21.5
Press  5
Here   2
VW10   7
VW10@3 215
VW10@5 0" ]
    get --format csv "@$tags:Boiler"
    [ "$output" = "name,address,type,station,index,value,unit,error
Boiler,VW10,i16,3,0,21.5,," ]
}

@test "--dry-run shows the frames for the item's station, and those behind for that of --station" {
    tags "name,address,station" "Boiler,VB10,4"
    run --separate-stderr s7ppi write --dry-run --verify VB0@3=1 "@$tags:Boiler=2" VB0=1
    [ "$status" -eq 0 ]
    [ "$(sed -E 's/:.*//' <<<"$output")" = "$(printf '%s\n' \
        "request 1 to station 3" "poll of station 3" "request 2 to station 4" "poll of station 4" \
        "request 3 to station 3" "poll of station 3" "request 4 to station 4" "poll of station 4" \
        "request 5 to station 2" "poll of station 2" "request 6 to station 2" "poll of station 2")" ]
}

@test "1: what the driver refuses is told for the item with its station, and nothing is written anywhere" {
    start_three
    put VB0=1 AIW0@3=1
    [ "$status" -eq 1 ]
    [[ "${stderr_lines[0]}" == "s7ppi: AIW0@3: can not write data to AIW0"* ]]
    get VB0
    [ "$output" = "VB0 170" ]
}

@test "check shows the frame for the item's station" {
    run --separate-stderr s7ppi check VB0@5 --station 7 VB0
    [ "$status" -eq 0 ]
    [ "${lines[0]}" = "VB0@5" ]
    [[ "${lines[5]}" == "               68 1b 1b 68 05 00 6c "* ]]
    [[ "${lines[12]}" == "               68 1b 1b 68 07 00 6c "* ]]
    tags "name,address,station" "Boiler,VW100,3"
    run --separate-stderr s7ppi check "@$tags"
    [ "${lines[0]}" = "@$tags:Boiler VW100@3" ]
    [[ "${lines[5]}" == "               68 1b 1b 68 03 00 6c "* ]]
}

@test "2: check tells what is wrong with a station, and the nearest address without it" {
    run --separate-stderr s7ppi check VB0@127 vb0@3
    [ "$status" -eq 2 ]
    [ "$output" = 'VB0@127
  not valid    "127" is not a station
  instead      controllers have stations from 1 to 126
vb0@3
  not valid    not an address of the controller
  instead      write VB0 instead of vb0' ]
    run --separate-stderr s7ppi check --format json vb0@3
    [ "$(jq -c '.items[].nearest' <<<"$output")" = '["VB0"]' ]
}

@test "2: a wrong station is told before anything is sent" {
    start fake_controller hang-up
    local station
    for station in "" 0 127 -1 x; do
        get VB0 "VB0@$station"
        [ "$status" -eq 2 ]
        [ "$stderr" = "s7ppi: VB0@$station: \"$station\" is not a station
hint: controllers have stations from 1 to 126" ]
        put VB0=1 "VB0@$station=1"
        [ "$status" -eq 2 ]
        [ "${stderr_lines[0]}" = "s7ppi: VB0@$station=1: \"$station\" is not a station" ]
    done
    get VB0@3@4
    [ "$status" -eq 2 ]
    [ "$stderr" = "s7ppi: VB0@3@4: the station is not in its place
hint: name one station at the end, as VW10:i16*4@3, or right behind the address" ]
    kill -0 "${background[0]}"
}

@test "2: wrong stations and intervals of a tag file are told by their line" {
    tags "name,address,station,interval" "A,VB0,127," "B,VB0@3,4," "C,VB0,,0" "D,VB0,,1.5" "E,VB0@x" "F,VB0,press"
    run --separate-stderr s7ppi read --port sim "@$tags"
    [ "$status" -eq 2 ]
    [ "$stderr" = "s7ppi: $tags:2: \"127\" is not a station
hint: controllers have stations from 1 to 126
s7ppi: $tags:3: the address names station 3, its column 4
hint: leave one of them out
s7ppi: $tags:4: \"0\" is not an interval
hint: intervals are milliseconds from 1 to 3600000, or have a unit, as 500ms, 1s or 2min
s7ppi: $tags:5: \"1.5\" is not an interval
s7ppi: $tags:6: \"x\" is not a station
s7ppi: $tags:7: \"press\" is not a station" ]
}

@test "2: ranges and the place of a dump have the station of --station" {
    run --separate-stderr s7ppi dump --port sim VB0..VB9@3 -o "$BATS_TEST_TMPDIR/some.dump"
    [ "$status" -eq 2 ]
    [ "$stderr" = "s7ppi: VB9@3: no station can stand here
hint: name it with --station" ]
    [ ! -e "$BATS_TEST_TMPDIR/some.dump" ]
    printf '\1' >"$BATS_TEST_TMPDIR/bytes"
    run --separate-stderr s7ppi load --port sim --format raw --to VB0@3 "$BATS_TEST_TMPDIR/bytes"
    [ "$status" -eq 2 ]
    [ "$stderr" = "s7ppi: VB0@3: no station can stand here
hint: name it with --station" ]
}
