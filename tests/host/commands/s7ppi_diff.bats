#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi diff as a user meets it.

# bats runs every test in a shell of its own and sets the variables of run; errors have quotes in them.
# shellcheck disable=SC2030,SC2031,SC2154,SC2089,SC2090

load common

# Every file of a test lies in a directory of its own.
enter_directory() {
    cd "$BATS_TEST_TMPDIR" || return 1
}

# differ ARGUMENT...: compares files. compare ARGUMENT...: compares a file with the controller on $port.
differ() {
    run --separate-stderr s7ppi diff "$@"
}
compare() {
    run --separate-stderr s7ppi diff --port "$port" "$@"
}

# two_dumps: old.dump of VB100 to VB119, and new.dump with other values of VB101, VB102 and VB110 to VB119.
two_dumps() {
    printf '%s\n' "s7ppi-dump 1" "area VB100..VB119" "station 2" \
        "VB100 11 22 33 44 00 00 00 00 00 00 00 00 00 00 00 00" "VB116 00 00 00 00" >old.dump
    printf '%s\n' "s7ppi-dump 1" "area VB100..VB119" "station 2" \
        "VB100 11 23 43 44 00 00 00 00 00 00 01 02 03 04 05 06" "VB116 07 08 09 0a" >new.dump
}

# press_tags: a word with a scale, and a bit.
press_tags() {
    printf '%s\n' "name,address,type,scale,unit" "Boiler,VW100,i16,0.1,°C" "Pump,V102.4" >tags.csv
}

# like_simulator RANGE: what the simulated controller has there, as a dump of a real one whose VB0 is 7.
like_simulator() {
    s7ppi dump -q --port sim "$1" -o made.dump
    sed '/^# simulated/d; s/^\(VB0 *\) 00/\1 07/' made.dump >press.dump
}

# broken_off COMMAND... -- S7PPI_ARGUMENT...: starts s7ppi, and runs the command when the second block is asked for,
# whose answer must not come: it is waited for as long as that takes. The exit code is in $status.
broken_off() {
    local breaking=()
    while [ "$1" != -- ]; do
        breaking+=("$1")
        shift
    done
    s7ppi "${@:2}" -v --timeout 1min >output 2>errors 3>&- &
    comparing=$!
    background+=("$comparing")
    eventually grep -qs "read 78 bytes at V byte 222" errors
    "${breaking[@]}"
    status=0
    wait "$comparing" || status=$?
}
interrupt() {
    kill -INT "$comparing"
}
unplug() {
    kill "${background[0]}"
}

@test "8: what two dumps have differently, by addresses" {
    enter_directory
    two_dumps
    differ old.dump new.dump
    [ "$status" -eq 8 ]
    [ "$output" = "VB101 old 34 51
      new 35 67
VB110 old 0  0 0 0 0 0 0 0
      new 1  2 3 4 5 6 7 8
VB118 old 0  0
      new 9 10" ]
    [ "${stderr_lines[0]}" = "s7ppi: old.dump and new.dump differ: 12 of 20 bytes" ]
    [ "${stderr_lines[1]}" = "hint: --ignore RANGE leaves out what may differ, as counters and clocks" ]
    [ "${#stderr_lines[@]}" -eq 2 ]
    differ --hex --ignore VB110..VB119 old.dump new.dump
    [ "$status" -eq 8 ]
    [ "$output" = "VB101 old 0x22 0x33
      new 0x23 0x43" ]
}

@test "0: dumps that are the same" {
    enter_directory
    two_dumps
    cp old.dump same.dump
    differ old.dump same.dump
    [ "$status" -eq 0 ]
    [ -z "$output" ]
    [ "$stderr" = "s7ppi: old.dump and same.dump are the same: 20 bytes compared" ]
    differ -q old.dump same.dump
    [ "$status" -eq 0 ]
    [ -z "$output$stderr" ]
    differ --format csv old.dump same.dump
    [ "$status" -eq 0 ]
    [ "$output" = "name,address,last,type,index,old,new,unit,only,error" ]
}

@test "what tags cover is told as their values" {
    enter_directory
    two_dumps
    press_tags
    echo "Far,VW0" >>tags.csv
    differ old.dump new.dump @tags.csv --ignore VB110..119
    [ "$status" -eq 8 ]
    [ "$output" = "Boiler 438.6 -> 438.7 °C
Pump   1 -> 0
V102.5 old 1 0
       new 0 1" ]
    [ "${stderr_lines[0]}" = "s7ppi: tags of memory that is not compared: 1 of 3, Far" ]
    differ old.dump new.dump @tags.csv:Pump --ignore VB101 --ignore @tags.csv:Pump --ignore V102.5*3 --ignore VD110*3
    [ "$status" -eq 0 ]
    [ -z "$output" ]
}

@test "a tag of another station is not compared" {
    enter_directory
    two_dumps
    printf '%s\n' "name,address,station" "Mixer,VW100,3" "Press,VW101,2" >tags.csv
    differ old.dump new.dump @tags.csv --ignore VB110..119
    [ "$output" = "Press 8755 -> 9027" ]
    [[ "$stderr" != *Mixer* ]]
}

@test "every form has the same values" {
    enter_directory
    two_dumps
    press_tags
    differ old.dump new.dump @tags.csv:Boiler --format json
    [ "$status" -eq 8 ]
    [ "$output" = '{
  "format": "s7ppi.diff/1",
  "oldFile": "old.dump",
  "newFile": "new.dump",
  "complete": true,
  "bytes": 20,
  "different": 12,
  "differences": [
    {"name":"Boiler","address":"VW100","type":"i16","unit":"°C","old":[438.6],"new":[438.7]},
    {"address":"VB102","type":"u8","old":[51],"new":[67]},
    {"address":"VB110","type":"u8","old":[0,0,0,0,0,0,0,0,0,0],"new":[1,2,3,4,5,6,7,8,9,10]}
  ]
}' ]
    differ old.dump new.dump @tags.csv:Boiler --ignore VB103..119 -o found.csv
    [ "$status" -eq 8 ]
    [ -z "$output" ]
    [ "$(cat found.csv)" = "name,address,last,type,index,old,new,unit,only,error
Boiler,VW100,,i16,0,438.6,438.7,°C,,
,VB102,,u8,0,51,67,,," ]
    differ old.dump new.dump --ignore VB103..119 --ignore VB101 --format ndjson
    [ "$output" = '{"format":"s7ppi.diff/1","address":"VB102","type":"u8","old":[51],"new":[67]}' ]
}

@test "in tables values of a row of them keep their numbers" {
    enter_directory
    two_dumps
    printf '%s\n' "name,address" "Row,VB100:u8*4" >tags.csv
    differ old.dump new.dump @tags.csv --ignore VB110..119 --format tsv
    [ "$(tail -n +2 <<<"$output" | cut -f1,2,5-7 | tr '\t' ' ')" = "Row VB100 1 34 35
Row VB100 2 51 67" ]
}

@test "8: what only one dump has is told as a range" {
    enter_directory
    two_dumps
    printf '%s\n' "s7ppi-dump 1" "area VW96..VW102" "station 3" "VW96 0000 0000 1122 3344" >words.dump
    differ words.dump old.dump
    [ "$status" -eq 8 ]
    [ "$output" = "VB96..VB99 only in words.dump
VB104..VB119 only in old.dump" ]
    [ "${stderr_lines[0]}" = "s7ppi: words.dump is of station 3, old.dump of station 2" ]
    [ "${stderr_lines[1]}" = "s7ppi: words.dump and old.dump differ: 4 bytes only in words.dump, 16 bytes only in old.dump" ]
    differ words.dump old.dump --format ndjson
    [ "${lines[1]}" = '{"format":"s7ppi.diff/1","address":"VB104","last":"VB119","only":"new"}' ]
    differ words.dump old.dump --ignore VB96..99 --ignore VB104..119
    [ "$status" -eq 0 ]
}

@test "8: a dump against the controller, to which nothing is written" {
    enter_directory
    two_dumps
    cp new.dump before.dump
    start s7ppi-sim
    compare new.dump --trace diff.trace
    [ "$status" -eq 8 ]
    [ "${lines[0]}" = "VB101 old 35 67" ]
    [ "${lines[1]}" = "      new 34 51" ]
    [[ "${stderr_lines[0]}" == "s7ppi: VB100..VB119 compared: 20 bytes in "* ]]
    [ "${stderr_lines[1]}" = "s7ppi: new.dump and the controller differ: 12 of 20 bytes" ]
    cmp new.dump before.dump
    [ "$(grep -c ' > 68' diff.trace)" -eq 1 ]
    run s7ppi decode --trace diff.trace
    [[ "$output" == *"read 20 bytes at V byte 100"* ]]
    [[ "$output" != *"write "*" bytes"* ]]

    compare old.dump
    [ "$status" -eq 0 ]
    [ -z "$output" ]
    [ "${stderr_lines[1]}" = "s7ppi: old.dump and the controller are the same: 20 bytes compared" ]
    compare new.dump --ignore VB103..VB119 --format json
    [ "$status" -eq 8 ]
    [ "$(timeless "${lines[7]}")" = '    {"station":2,"address":"VB101","type":"u8","old":[35,67],"new":[34,51]}' ]
}

@test "what is ignored is not read" {
    enter_directory
    start s7ppi-sim
    like_simulator VB0..VB999
    compare press.dump --ignore VB0..VB99 --ignore VB200..VB899 --block 32 --trace diff.trace
    [ "$status" -eq 0 ]
    [ "$(grep -c ' > 68' diff.trace)" -eq 8 ]
    [[ "${stderr_lines[0]}" == "s7ppi: VB0..VB999 compared: 200 bytes in "* ]]
}

@test "every area is compared" {
    enter_directory
    start s7ppi-sim
    local range
    for range in VW0..VW98 VD0..VD96 MB0..31 SMB30..49 SB0..31 AIW0..AIW62 AQW0..AQW62 T0..T99 C0..C99 HC0..HC5; do
        s7ppi dump -q --port "$port" "$range" -o press.dump
        compare press.dump
        [ "$status" -eq 0 ]
        [ -z "$output" ]
    done
}

@test "1: what the controller refuses ends the comparison, and what was compared is told" {
    enter_directory
    start s7ppi-sim
    printf '%s\n' "s7ppi-dump 1" "area VB9900..VB10500" "station 2" "VB9900 07" >press.dump
    printf 'VB%d 00\n' {9901..10500} >>press.dump
    compare press.dump
    [ "$status" -eq 1 ]
    [ "$output" = "VB9900 7 -> 0" ]
    [ "${stderr_lines[0]}" = "s7ppi: 222 of 601 bytes were read and compared" ]
    [ "${stderr_lines[1]}" = "s7ppi: VB10122..VB10343: Invalid address (incorrect variable address)" ]
    [[ "${stderr_lines[2]}" == "hint: "* ]]
    [ "${#stderr_lines[@]}" -eq 3 ]
    compare press.dump --format json
    [ "$status" -eq 1 ]
    [ "${lines[3]}" = '  "complete": false,' ]
    [ "${lines[4]}" = '  "bytes": 222,' ]
    [ "$(timeless "${lines[7]}")" = '    {"station":2,"address":"VB9900","type":"u8","old":[7],"new":[0]},' ]
    [ "$(timeless "${lines[8]}")" = '    {"station":2,"address":"VB10122","last":"VB10500","error":"VB10122..VB10343: Invalid address (incorrect variable address)","cause":"refused_address"}' ]
}

@test "4: a controller that falls silent" {
    enter_directory
    like_simulator VB0..VB299
    start s7ppi-sim --fault silent@2
    compare press.dump --retries 0 --timeout 2s
    [ "$status" -eq 4 ]
    [ "$output" = "VB0 7 -> 0" ]
    [ "${stderr_lines[0]}" = "s7ppi: 222 of 300 bytes were read and compared" ]
    [ "${stderr_lines[1]}" = "s7ppi: VB222..VB299: plc no response" ]
}

@test "a value that was not read to its end is told by the bytes that were" {
    enter_directory
    printf '%s\n' "s7ppi-dump 1" "area VB96..VB103" "station 2" "VB96 00 00 00 07 11 21 33 44" >press.dump
    printf '%s\n' "name,address" "Half,VD98" "Whole,VW102" >tags.csv
    start s7ppi-sim --fault silent@2
    compare press.dump @tags.csv --block 4 --retries 0 --timeout 2s
    [ "$status" -eq 4 ]
    [ "$output" = "VB99 7 -> 0" ]
    [ "${stderr_lines[0]}" = "s7ppi: 4 of 8 bytes were read and compared" ]
    compare press.dump @tags.csv --ignore VB100
    [ "$status" -eq 8 ]
    [ "$output" = "VB99  7 -> 0
VB101 33 -> 34" ]
}

@test "6: a port that goes away" {
    enter_directory
    like_simulator VB0..VB299
    start s7ppi-sim --fault silent@2
    broken_off unplug -- diff --port "$port" press.dump
    [ "$status" -eq 6 ]
    [ "$(cat output)" = "VB0 7 -> 0" ]
    grep -q "^s7ppi: 222 of 300 bytes were read and compared$" errors
}

@test "130: after Ctrl-C what was compared is told" {
    enter_directory
    like_simulator VB0..VB299
    start s7ppi-sim --fault silent@2
    broken_off interrupt -- diff --port "$port" press.dump --format json
    [ "$status" -eq 130 ]
    grep -q '^  "complete": false,$' output
    [ "$(grep -c '"address":"VB0","type":"u8","old":\[7\],"new":\[0\]}$' output)" -eq 1 ]
    [ "$(tail -n 1 output)" = "}" ]
    grep -q "^s7ppi: 222 of 300 bytes were read and compared$" errors
}

@test "2: what cannot be compared is told before anything is sent" {
    enter_directory
    start fake_controller hang-up
    two_dumps
    head -n 4 old.dump >cut.dump
    printf 'name,address\nPump,VX1\n' >wrong.csv
    local case
    for case in "@tags.csv:Pump;no dump is named" "old.dump new.dump old.dump;3 files cannot be compared at once" \
        "missing.dump;missing.dump cannot be read: No such file or directory" \
        "cut.dump;cut.dump:4: the dump ends before VB119: 16 of 20 bytes are there" \
        "old.dump cut.dump;cut.dump:4: the dump ends before VB119: 16 of 20 bytes are there" \
        "old.dump @wrong.csv;wrong.csv:2: \"VX1\" is not an address of the controller" \
        "old.dump @missing.csv;@missing.csv: missing.csv cannot be read: No such file or directory" \
        "old.dump --ignore VB9..0;VB9..0: VB0 lies before VB9" \
        "old.dump --ignore VX1;VX1: not an address of the controller" \
        "old.dump --format raw;diff has no raw form" "old.dump --raw-address;diff knows the addresses of the S7-200 only"; do
        # shellcheck disable=SC2086
        compare ${case%;*}
        [ "$status" -eq 2 ]
        [ "${stderr_lines[0]}" = "s7ppi: ${case#*;}" ]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
    done
    differ old.dump new.dump -o old.dump
    [ "$status" -eq 2 ]
    grep -q "^VB116 00 00 00 00$" old.dump
    kill -0 "${background[0]}"
}

@test "what is ignored in vain is told" {
    enter_directory
    two_dumps
    differ old.dump old.dump --ignore MB0..MB3 --ignore VB110..199
    [ "$status" -eq 0 ]
    [ "${stderr_lines[0]}" = "s7ppi: --ignore MB0..MB3 leaves nothing out: it lies elsewhere" ]
    [ "${stderr_lines[1]}" = "s7ppi: old.dump and old.dump are the same: 10 bytes compared" ]
}

@test "another station is told" {
    enter_directory
    two_dumps
    start s7ppi-sim --station 7
    compare old.dump --station 7
    [ "$status" -eq 0 ]
    [ "${stderr_lines[0]}" = "s7ppi: old.dump is of station 2, it is compared with station 7" ]
}

@test "what comes of a simulated controller is marked" {
    enter_directory
    two_dumps
    sed '3a # simulated' new.dump >made.dump
    differ old.dump made.dump --format ndjson --ignore VB102..119
    [ "$output" = '{"format":"s7ppi.diff/1","simulated":true,"address":"VB101","type":"u8","old":[34],"new":[35]}' ]
    [ "${stderr_lines[0]}" = "s7ppi: made.dump is of a simulated controller" ]
    differ made.dump old.dump --ignore VB102..119 -o found.txt
    [ "$(cat found.txt)" = "# simulated: no machine had these values
VB101 35 -> 34" ]
    differ --port sim new.dump --format csv --ignore VB102..119
    [ "$status" -eq 8 ]
    [ "${lines[1]}" = ",VB101,,u8,0,35,34,,,,1" ]
    [[ "${stderr_lines[0]}" == "s7ppi: VB100..VB119 (simulated) compared: 2 bytes in "* ]]
    [ "${stderr_lines[1]}" = "s7ppi: new.dump and the controller (simulated) differ: 1 of 2 bytes" ]
}

@test "help names files, options and the exit code" {
    run --separate-stderr s7ppi diff --help
    [ "$status" -eq 0 ]
    [[ "$output" == *"--ignore"*"--hex"*"The exit code is 0 when nothing differs, and 8 when something does."* ]]
}
