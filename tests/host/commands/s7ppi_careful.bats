#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What s7ppi write and load do before they write: the limits of tag files, --expect and --confirm.

# bats runs every test in a shell of its own and sets the variables of run; items have commas in them.
# shellcheck disable=SC2030,SC2031,SC2154,SC2054

load common

# plant: a tag file, in a directory of the test's own.
plant() {
    cd "$BATS_TEST_TMPDIR" || return 1
    printf '%s\n' name,address,type,scale,offset,unit,access,min,max,deadband \
        Boiler,VW100,i16,0.1,-40,°C,rw,5,90,0.5 \
        Status,VB110,,,,,ro \
        Levels,VW120*3,i16,,,mm,,0,100 \
        Far,VB110@5,,,,,ro >plant.csv
}

# put ARGUMENT..., stored ARGUMENT...: write and load at $port, with stderr apart. values ITEM...: what is there.
put() {
    run --separate-stderr s7ppi write --port "$port" "$@"
}
stored() {
    run --separate-stderr s7ppi load --port "$port" "$@"
}
values() {
    s7ppi read --port "$port" "$@" | sed 's/^[^ ]* *//'
}

# in_terminal KEYS ARGUMENT...: runs s7ppi in a terminal, its stdout in a file, and presses keys when it has asked.
# What the terminal shows is in $screen, the exit code in $status.
in_terminal() {
    local keys=$1 terminal
    shift
    rm -f keys screen
    mkfifo keys
    script --quiet --flush --return --command "exec s7ppi $* >output" screen <keys >/dev/null 3>&- &
    terminal=$!
    exec 4>keys
    eventually grep -qs 'y/N' screen
    printf '%b' "$keys" >&4
    status=0
    wait "$terminal" || status=$?
    exec 4>&-
    screen=$(tr -d '\r' <screen | grep -v '^Script ')
}

@test "a tag that is ro and values outside min and max are refused, and nothing of the command is written" {
    start s7ppi-sim
    plant
    s7ppi write --port "$port" VW100=500 VB110=7 VW120=1,2,3
    put --trace trace VB0=1 @plant.csv:Boiler=90.1 @plant.csv:Status=1 @plant.csv:Levels=1,101
    [ "$status" -eq 2 ]
    [ "$stderr" = "s7ppi: Boiler: 90.1 °C is more than the maximum, 90 °C
hint: Boiler takes values from 5 to 90 °C, as plant.csv:2 says
s7ppi: Status: the tag is only to be read
hint: the access of Status is ro in plant.csv:3; rw or nothing there lets it be written
s7ppi: Levels: 101 mm is more than the maximum, 100 mm
hint: Levels takes values from 0 to 100 mm, as plant.csv:4 says" ]
    [ ! -s trace ]
    [ "$(values VB0 VW100 VB110 'VW120*3')" = "0
500
7
1 2 3" ]
    run --separate-stderr s7ppi write --port /dev/no-such-port --dry-run @plant.csv:Boiler=4.9
    [ "$status" -eq 2 ]
    [ -z "$output" ]
    [ "${stderr_lines[0]}" = "s7ppi: Boiler: 4.9 °C is less than the minimum, 5 °C" ]
    put --verify @plant.csv:Boiler=90 @plant.csv:Levels=0,100
    [ "$status" -eq 0 ]
    [ "$output" = "Boiler 90 °C
Levels 0 100 mm" ]
}

@test "a plain address is held to the tags of a file that the command line names, and to no other" {
    start s7ppi-sim
    plant
    put VB110=9 VW120=1000
    [ "$status" -eq 0 ]
    [ -z "$stderr" ]
    put @plant.csv:Boiler=20 VB110=8 VW122=101 VB121=1
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB110: Status: the tag is only to be read" ]
    [ "${stderr_lines[2]}" = "s7ppi: VW122: Levels: 101 mm is more than the maximum, 100 mm" ]
    [ "${stderr_lines[4]}" = "s7ppi: VB121: Levels: only a part of VW120 is written" ]
    put --expect @plant.csv:Status=9 VB110=8
    [ "$status" -eq 2 ]
    [ "$(values VB110)" = 9 ]
    run --separate-stderr s7ppi write --station 5 --dry-run @plant.csv:Boiler=20 VB110@4=1
    [ "$status" -eq 0 ]
    run --separate-stderr s7ppi write --station 5 --dry-run @plant.csv:Boiler=20 VB110=1
    [ "$status" -eq 2 ]
    [ "${stderr_lines[2]}" = "s7ppi: VB110: Far: the tag is only to be read" ]
}

@test "a tag file that comes through a pipe is read once, whatever is asked of it" {
    start s7ppi-sim
    plant
    mkfifo tags.csv
    cat plant.csv >tags.csv &
    put --verify @tags.csv:Boiler=20 @tags.csv:Levels=1
    [ "$status" -eq 0 ]
    [ "$output" = "Boiler 20 °C
Levels 1 mm" ]
}

@test "a load keeps to the tag files that it is given, and tells every tag" {
    start s7ppi-sim
    plant
    printf '%s\n' "s7ppi-dump 1" "area VB100..VB123" "station 2" \
        "VB100 7f ff 00 00 00 00 00 00 00 00 01 00 00 00 00 00" "VB116 00 00 00 00 00 01 00 65" >plant.dump
    stored plant.dump @plant.csv
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB100..VB123: Boiler: 3236.7 °C is more than the maximum, 90 °C" ]
    [ "${stderr_lines[2]}" = "s7ppi: VB100..VB123: Status: the tag is only to be read" ]
    [ "${stderr_lines[4]}" = "s7ppi: VB100..VB123: Levels: 101 mm is more than the maximum, 100 mm" ]
    [ "${#stderr_lines[@]}" -eq 6 ]
    [ "$(values VB123)" = 0 ]
    run --separate-stderr s7ppi load --port /dev/no-such-port --dry-run plant.dump @plant.csv
    [ "$status" -eq 2 ]
    [ -z "$output" ]
    printf '%s\n' name,address,access Here,VB100@2,ro >here.csv
    stored plant.dump @here.csv
    [ "$status" -eq 2 ]
    [[ "${stderr_lines[0]}" == "s7ppi: VB100..VB123: Here"*": the tag is only to be read" ]]
    stored plant.dump @plant.csv --to VB200
    [ "$status" -eq 0 ]
    stored plant.dump @plant.csv:Far
    [ "$status" -eq 0 ]
    [ "$(values VB123)" = 101 ]
}

@test "a load says what its arguments are" {
    plant
    printf '%s\n' "s7ppi-dump 1" "area VB0..VB0" "station 2" "VB0 00" >one.dump
    run --separate-stderr s7ppi load --dry-run @plant.csv one.dump
    [ "$status" -eq 2 ]
    [ "$stderr" = "s7ppi: \"@plant.csv\" is a tag file
hint: name the file to load first, and tag files behind it" ]
    run --separate-stderr s7ppi load --dry-run one.dump one.dump
    [ "$status" -eq 2 ]
    [ "$stderr" = "s7ppi: \"one.dump\" is a second file to load
hint: load one file at a time; tag files have an @ in front, as @plant.csv" ]
    printf 'name,address,min\nBoiler,VW100,hot\n' >wrong.csv
    run --separate-stderr s7ppi load --dry-run one.dump @wrong.csv
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = 's7ppi: wrong.csv:2: "hot" is not a number' ]
}

@test "8: what is not as expected keeps everything from being written" {
    start s7ppi-sim
    plant
    put VW100=615 VB0=5,6 VD8:f32=nan
    put --expect @plant.csv:Boiler=21.5 --expect VB0=5,6 --expect VD8:f32=nan VB0=9
    [ "$status" -eq 0 ]
    [ -z "$stderr" ]
    put --format json --expect @plant.csv:Boiler=21 --expect VB0=9,7 --expect VD8:hex=7fc00001 VB0=1
    [ "$status" -eq 8 ]
    [ -z "$output" ]
    [ "$stderr" = "s7ppi: Boiler: is 21.5 °C and not 21 °C
hint: --expect tells what must be there; write only if what is there now is right, too
s7ppi: VB0: value 2 of 2 is 6 and not 7
s7ppi: VD8: is 0x7fc00000 and not 0x7fc00001
s7ppi: nothing was written" ]
    s7ppi write --port "$port" VD8:hex=7fc00001
    put --expect VD8:f32=nan VB0=1
    [ "$status" -eq 8 ]
    [ "${stderr_lines[0]}" = "s7ppi: VD8: is nan (0x7fc00001) and not nan (0x7fc00000)" ]
    [ "$(values 'VB0*2')" = "9 6" ]
}

@test "what cannot be read is not as expected" {
    start s7ppi-sim
    put --expect VB60000=1 VB0=1
    [ "$status" -eq 1 ]
    [ "${stderr_lines[-1]}" = "s7ppi: nothing was written" ]
    [ "$(values VB0)" = 0 ]
    put --expect VB0 VB0=1
    [ "$status" -eq 2 ]
    [ "$stderr" = "s7ppi: VB0: no value is given
hint: write VB0=VALUE" ]
}

@test "a dry run shows the reading before the writing" {
    run --separate-stderr s7ppi write --port /dev/no-such-port --dry-run --expect VB5=1 VB0=1
    [ "$status" -eq 0 ]
    [[ "${lines[0]}" == "request 1 to station 2: read 1 byte at V byte 5: "* ]]
    [[ "${lines[2]}" == "request 2 to station 2: write 1 byte at V byte 0: "* ]]
    run --separate-stderr s7ppi write --port /dev/no-such-port --dry-run --confirm VB0=1
    [ "$status" -eq 0 ]
    [[ "${lines[0]}" == *": read 1 byte at V byte 0: "* ]]
    [[ "${lines[2]}" == *": write 1 byte at V byte 0: "* ]]
}

@test "confirm shows old and new values, and yes writes them" {
    start s7ppi-sim
    plant
    s7ppi write --port "$port" VW100=615 VB0=5,6,7
    in_terminal 'y\n' write --port "$port" --confirm --verify @plant.csv:Boiler=30 VB0=5,6,8 VB9=0
    [ "$status" -eq 0 ]
    [ "$screen" = "$port, station 2: 2 of 5 values would change
  Boiler  21.5 °C        -> 30 °C
  VB2     7              -> 8
  VB0     2 of 3 values  unchanged
  VB9     0              unchanged
Write this? [y/N] y" ]
    [ "$(cat output)" = "Boiler 30 °C
VB0    5 6 8
VB9    0" ]
}

@test "9: without a yes nothing is written" {
    start s7ppi-sim
    plant
    in_terminal '\n' write --port "$port" --confirm VB0=1
    [ "$status" -eq 9 ]
    [ "$(tail -n 2 <<<"$screen")" = "Write this? [y/N] 
s7ppi: nothing was written" ]
    [ ! -s output ]
    [ "$(values VB0)" = 0 ]
    s7ppi dump -q --port sim VB100..VB103 -o other.dump
    in_terminal '\n' load --port "$port" --confirm other.dump
    [ "$status" -eq 9 ]
    [[ "$screen" == *"Write this? [y/N] "*"s7ppi: nothing was written" ]]
    [ "$(values VB100)" = 17 ]
}

@test "130: Ctrl-C at the question writes nothing" {
    start s7ppi-sim
    plant
    in_terminal '\003' write --port "$port" --confirm VB0=1
    [ "$status" -eq 130 ]
    [[ "$screen" == *"s7ppi: nothing was written"* ]]
    [ "$(values VB0)" = 0 ]
}

@test "what is expected is read again when the question was answered" {
    start s7ppi-sim
    plant
    s7ppi write --port "$port" VB5=1
    in_terminal 'y\n' write --port "$port" --trace trace --confirm --expect VB5=1 VB0=1
    [ "$status" -eq 0 ]
    [ "$(s7ppi decode --trace trace | grep -c 'read 1 byte at V byte 5')" -eq 2 ]
    [ "$(grep -c ' > 68' trace)" -eq 4 ]
    in_terminal 'n\n' write --port "$port" --trace again --confirm --expect VB5=1 VB0=1
    [ "$(grep -c ' > 68' again)" -eq 2 ]
}

@test "2: there is nobody to ask without a terminal" {
    plant
    run --separate-stderr s7ppi write --port /dev/no-such-port --confirm VB0=1 </dev/null
    [ "$status" -eq 2 ]
    [ "$stderr" = "s7ppi: there is no terminal to ask on
hint: leave stdin and stderr to the terminal, or leave out --confirm" ]
    printf '%s\n' "s7ppi-dump 1" "area VB0..VB0" "station 2" "VB0 00" >one.dump
    run --separate-stderr s7ppi load --port /dev/no-such-port --confirm one.dump </dev/null
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: there is no terminal to ask on" ]
}

@test "confirm shows which bytes a load changes, and yes writes them" {
    start s7ppi-sim
    plant
    local i
    { printf '%s\n' "s7ppi-dump 1" "area VB200..VB279" "station 2"
        for ((i = 200; i < 280; i += 16)); do
            printf 'VB%d 00 01 00 01 00 01 00 01 00 01 00 01 00 01 00 01\n' "$i"
        done
    } >plant.dump
    in_terminal 'n\n' load -q --port "$port" --confirm plant.dump
    [ "$status" -eq 9 ]
    [ ! -e plant.dump.loading ]
    [ "$(head -n 3 <<<"$screen")" = "VB200..VB279 at $port, station 2: 40 of 80 bytes would change
  VB201  00  -> 01
  VB203  00  -> 01" ]
    [ "$(sed -n '20,22p' <<<"$screen")" = "  VB237  00  -> 01
  and 21 lines more
Write this? [y/N] n" ]
    [ "$(values VB201)" = 0 ]
    in_terminal 'yes\n' load --port "$port" --confirm plant.dump
    [ "$status" -eq 0 ]
    [ "$(values VB278)" = 0 ]
    [ "$(values VB279)" = 1 ]
    in_terminal '\003' load -q --port "$port" --confirm plant.dump
    [ "$status" -eq 130 ]
    [ "$(head -n 1 <<<"$screen")" = "VB200..VB279 at $port, station 2: 0 of 80 bytes would change" ]
}
