#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi dump and s7ppi load as a user meets them.

# bats runs every test in a shell of its own and sets the variables of run; errors have quotes in them.
# shellcheck disable=SC2030,SC2031,SC2154,SC2089,SC2090

load common

# Every file of a test lies in a directory of its own.
enter_directory() {
    cd "$BATS_TEST_TMPDIR" || return 1
}

# dump ARGUMENT..., put ARGUMENT...: dump from $port, load to $port.
dump() {
    run --separate-stderr s7ppi dump --port "$port" "$@"
}
put() {
    run --separate-stderr s7ppi load --port "$port" "$@"
}

# stop_when COMMAND... -- S7PPI_ARGUMENT...: starts s7ppi, and sends it Ctrl-C as soon as the command succeeds.
# Its exit code is in $status, its stderr in $stderr_lines.
stop_when() {
    local condition=() signal=${signal:-INT} process
    while [ "$1" != -- ]; do
        condition+=("$1")
        shift
    done
    s7ppi "${@:2}" >output 2>errors 3>&- &
    process=$!
    background+=("$process")
    eventually "${condition[@]}"
    kill "-$signal" "$process"
    status=0
    wait "$process" || status=$?
    output=$(cat output)
    mapfile -t stderr_lines <errors
}

# data_lines FILE: there are lines of memory in it.
data_lines() {
    grep -qs '^VB' "$1"
}

# requests_of FILE: how many requests a trace has.
requests_of() {
    grep -c ' > 68' "$1"
}

# twenty_bytes: a dump of VB100 to VB119 that has every byte different.
twenty_bytes() {
    printf '%s\n' "s7ppi-dump 1" "area VB100..VB119" "station 2" \
        "VB100 a0 a1 a2 a3 a4 a5 a6 a7 a8 a9 aa ab ac ad ae af" "VB116 b0 b1 b2 b3" >twenty.dump
}

@test "a dump is a file with all bytes, and the summary on stderr" {
    enter_directory
    start s7ppi-sim
    dump VB90..VB107 -o press.dump
    [ "$status" -eq 0 ]
    [ -z "$output" ]
    [[ "$stderr" =~ ^"s7ppi: VB90..VB107: 18 bytes in "[0-9.]+" s, "[0-9.]+" bytes/s"$ ]]
    [ "$(cat press.dump)" = "s7ppi-dump 1
area VB90..VB107
station 2
VB90  00 00 00 00 00 00 00 00 00 00 11 22 33 44 00 00
VB106 00 00" ]
    [ ! -e press.dump.part ]
    dump -q VW100..102 -o press.dump
    [ "$status" -eq 0 ]
    [ -z "$stderr" ]
    [ "$(tail -n 1 press.dump)" = "VW100 1122 3344" ]
}

@test "with --format raw the file is the bytes alone" {
    enter_directory
    start s7ppi-sim
    dump VB99..VB104 --format raw -o press.bin
    [ "$status" -eq 0 ]
    [ "$(od -An -tx1 press.bin)" = " 00 11 22 33 44 00" ]
}

@test "large areas go in blocks of what one frame can carry" {
    enter_directory
    start s7ppi-sim
    dump VB0..VB4095 --trace dump.trace -o press.dump
    [ "$status" -eq 0 ]
    [ "$(requests_of dump.trace)" -eq 19 ]
    [ "$(wc -l <press.dump)" -eq 259 ]
    put press.dump --trace load.trace
    [ "$status" -eq 0 ]
    [ "$(requests_of load.trace)" -eq 20 ]
}

@test "every area is written back as it was" {
    enter_directory
    start s7ppi-sim
    s7ppi write --port "$port" -q VW0=4660 VD4=305419896 MB0=1,2,3 SMB40=9 SB2=5 AQW2=-2 T0=1,2 C0=3,4
    local range ranges=(VB0..VB300 VW0..VW98 VD0..VD96 MB0..31 SMB30..49 SB0..31 AQW0..AQW62 T0..T99 C0..C99)
    for range in "${ranges[@]}"; do
        dump -q "$range" -o "$range.dump"
        [ "$status" -eq 0 ]
    done
    echo '{}' >empty.json
    start s7ppi-sim --memory empty.json
    for range in "${ranges[@]}"; do
        put -q "$range.dump"
        [ "$status" -eq 0 ]
        [ -z "$output$stderr" ]
        dump -q "$range" -o again.dump
        cmp "$range.dump" again.dump
    done
}

@test "130: after Ctrl-C the same dump goes on where it stopped" {
    enter_directory
    start s7ppi-sim --turnaround 50
    stop_when data_lines press.dump.part -- dump --port "$port" VB0..VB999 -o press.dump
    [ "$status" -eq 130 ]
    [[ "${stderr_lines[0]}" =~ ^"s7ppi: press.dump.part has "[0-9]+" of 1000 bytes; the same command goes on from there"$ ]]
    [ "${#stderr_lines[@]}" -eq 1 ]
    [ ! -e press.dump ]
    put press.dump.part
    [ "$status" -eq 2 ]
    [[ "${stderr_lines[0]}" == "s7ppi: press.dump.part:"*": the dump ends before VB999: "* ]]

    sleep 0.2
    local saved time
    saved=$(($(grep -c '^VB' press.dump.part) * 16))
    time=$(date -r press.dump.part +"%F %T")
    dump VB0..VB999 -o press.dump --trace dump.trace
    [ "$status" -eq 0 ]
    [ "${stderr_lines[0]}" = "s7ppi: press.dump.part of $time has $saved of 1000 bytes from an earlier run; --restart begins anew" ]
    [[ "${stderr_lines[1]}" == "s7ppi: VB0..VB999: $((1000 - saved)) bytes in "* ]]
    grep -q "^VB96  00 00 00 00 11 22 33 44" press.dump
    [ "$(wc -l <press.dump)" -eq 66 ]
    [ ! -e press.dump.part ]
}

@test "143: SIGTERM leaves the part, too; --restart forgets it" {
    enter_directory
    start s7ppi-sim --turnaround 50
    signal=TERM stop_when data_lines press.dump.part -- dump -q --port "$port" VB0..VB999 -o press.dump
    [ "$status" -eq 143 ]
    [ "${#stderr_lines[@]}" -eq 0 ]
    sleep 0.2
    dump --restart VB0..VB999 -o press.dump
    [ "$status" -eq 0 ]
    [[ "${stderr_lines[0]}" == "s7ppi: VB0..VB999: 1000 bytes in "* ]]
}

@test "2: a part of another dump is not gone on with" {
    enter_directory
    start s7ppi-sim
    printf 's7ppi-dump 1\narea VB1..VB99\nstation 2\n' >press.dump.part
    dump VB0..VB50 -o press.dump
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: press.dump.part is a part of another dump, VB1..VB99 of station 2" ]
    [ "${stderr_lines[1]}" = "hint: --restart begins anew and forgets it; or name another file with -o" ]
    [ ! -e press.dump ]
}

@test "2: a part that was read from another port is not gone on with, unless it is the embedded simulator" {
    enter_directory
    start s7ppi-sim
    printf 's7ppi-dump 1\narea VB0..VB99\nstation 2\n# port sim\nVB0 01\n' >press.dump.part
    dump VB0..VB99 -o press.dump
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: press.dump.part is a part of another dump, VB0..VB99 of station 2 on sim" ]
    run --separate-stderr s7ppi dump --port sim VB0..VB99 -o press.dump
    [ "$status" -eq 0 ]
    grep -q "^VB0  *01 00 " press.dump

    printf 's7ppi-dump 1\narea VB0..VB99\nstation 2\n# port sim\nVB0 01\n' >press.dump.part
    dump --restart VB0..VB99 -o press.dump
    [ "$status" -eq 0 ]
    grep -q "^VB0  *00 00 " press.dump
}

@test "a part goes on with another last address" {
    enter_directory
    start s7ppi-sim
    local last
    for last in 17 3; do
        printf 's7ppi-dump 1\narea VB0..VB99\nstation 2\nVB0 01 02 03 04 05 06\n' >press.dump.part
        dump VB0..VB$last -o press.dump
        [ "$status" -eq 0 ]
        grep -q "^VB0  *01 02 03 04" press.dump
        run --separate-stderr s7ppi load --port "$port" press.dump
        [ "$status" -eq 0 ]
    done
}

@test "74: two dumps into the same file at once" {
    enter_directory
    start s7ppi-sim --turnaround 100
    s7ppi dump -q --port "$port" VB0..VB9999 -o press.dump 3>&- &
    background+=("$!")
    eventually data_lines press.dump.part
    run --separate-stderr s7ppi dump --port sim VB0..VB9 -o press.dump
    [ "$status" -eq 74 ]
    [ "${stderr_lines[0]}" = "s7ppi: press.dump.part is being written by another s7ppi" ]
    [ "${stderr_lines[1]}" = "hint: wait for its end, or name another file with -o" ]
}

@test "6: a port that goes away leaves the part, and the dump goes on when it is back" {
    enter_directory
    start s7ppi-sim --turnaround 50 --link line
    s7ppi dump --port line VB0..VB999 -o press.dump 2>errors 3>&- &
    local dumping=$!
    eventually data_lines press.dump.part
    kill "${background[0]}"
    status=0
    wait "$dumping" || status=$?
    [ "$status" -eq 6 ]
    [ "$(tail -n 1 errors)" = "hint: was the adapter unplugged? plug it in and start again, or let --reconnect wait for it" ]
    [ ! -e press.dump ]
    start s7ppi-sim --link line
    port=line dump VB0..VB999 -o press.dump
    [ "$status" -eq 0 ]
    [[ "${stderr_lines[0]}" == *" from an earlier run; --restart begins anew" ]]
}

@test "1: memory that the controller does not have ends a dump with the block's name" {
    enter_directory
    start s7ppi-sim
    dump VB10200..VB10500 -o press.dump
    [ "$status" -eq 1 ]
    [ "${stderr_lines[0]}" = "s7ppi: 0 of 301 bytes were read, no part of the dump is kept" ]
    [ "${stderr_lines[1]}" = "s7ppi: VB10200..VB10421: Invalid address (incorrect variable address)" ]
    [[ "${stderr_lines[2]}" == "hint: "* ]]
    [ ! -e press.dump ]
    [ ! -e press.dump.part ]
    dump VB10100..VB10500 -o press.dump
    [ "$status" -eq 1 ]
    [[ "${stderr_lines[0]}" == "s7ppi: 0 of 401 bytes were read, "* ]]
    dump VB9900..VB10500 -o press.dump
    [ "$status" -eq 1 ]
    [[ "${stderr_lines[0]}" == "s7ppi: press.dump.part has 208 of 601 bytes; a range that ends earlier goes on from there" ]]
    dump VB9900..VB10200 -o press.dump
    [ "$status" -eq 0 ]
    [[ "${stderr_lines[0]}" == *" has 208 of 301 bytes from an earlier run; --restart begins anew" ]]
}

@test "4: a silent controller" {
    enter_directory
    start fake_controller
    dump --retries 0 --timeout 50 VB0..VB9 -o press.dump
    [ "$status" -eq 4 ]
    [ ! -e press.dump ]
    twenty_bytes
    put --retries 0 --timeout 50 twenty.dump
    [ "$status" -eq 4 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB100..VB119 may have been written: no answer tells" ]
    [ "${stderr_lines[1]}" = "s7ppi: 0 of 20 bytes are written" ]
    [ "${stderr_lines[2]}" = "s7ppi: VB100..VB119: plc no response" ]
    [ ! -e twenty.dump.loading ]
}

@test "2: what dump cannot take is told before anything is sent" {
    enter_directory
    start fake_controller hang-up
    local case
    for case in "VB0..VB9;a dump needs a file" "VB0..VB9 -o -;a dump needs a file" \
        "VB0 -o x;VB0 is not a range" "vb0..9 -o x;vb0: not an address of the controller" \
        "VB9..VB0 -o x;VB0 lies before VB9" "V0.0..V1.7 -o x;V0.0 is a bit, and ranges are of bytes" \
        "VB0..VB9 --format json -o x;dump has no json form" "VB0..VB9 -o .;. is no file"; do
        # shellcheck disable=SC2086
        dump ${case%;*}
        [ "$status" -eq 2 ]
        [ "${stderr_lines[0]}" = "s7ppi: ${case#*;}" ]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
    done
    kill -0 "${background[0]}"
}

@test "3 and 74: no port, no directory" {
    enter_directory
    run --separate-stderr s7ppi dump --port /dev/no-such-port VB0..VB9 -o press.dump
    [ "$status" -eq 3 ]
    run --separate-stderr s7ppi dump --port sim VB0..VB9 -o missing/press.dump
    [ "$status" -eq 74 ]
    [[ "${stderr_lines[0]}" == "s7ppi: missing/press.dump cannot be written: "* ]]
    twenty_bytes
    run --separate-stderr s7ppi load --port /dev/no-such-port twenty.dump
    [ "$status" -eq 3 ]
}

@test "74: a full disk leaves the part, and the dump goes on when there is room" {
    enter_directory
    start s7ppi-sim
    run --separate-stderr bash -c "trap '' XFSZ; ulimit -f 1; s7ppi dump --port '$port' VB0..VB999 -o press.dump"
    [ "$status" -eq 74 ]
    [[ "${stderr_lines[-2]}" == "s7ppi: VB222..VB443: press.dump.part cannot be written: "* ]]
    [[ "${stderr_lines[-1]}" == "hint: "* ]]
    [ ! -e press.dump ]
    dump VB0..VB999 -o press.dump
    [ "$status" -eq 0 ]
    [[ "${stderr_lines[0]}" == *" from an earlier run; --restart begins anew" ]]
    s7ppi dump -q --port "$port" VB0..VB999 -o again.dump
    cmp press.dump again.dump
}

@test "a load writes what the file says, or to another place" {
    enter_directory
    start s7ppi-sim
    twenty_bytes
    put twenty.dump
    [ "$status" -eq 0 ]
    [ -z "$output" ]
    [[ "$stderr" =~ ^"s7ppi: VB100..VB119: 20 bytes in "[0-9.]+" s, "[0-9.]+" bytes/s"$ ]]
    put -q --to VB500 twenty.dump
    [ "$status" -eq 0 ]
    run s7ppi read --port "$port" VB99:hex VB118:hex VB120:hex VB500:hex VB519:hex
    [ "$(tr -s ' ' <<<"$output" | cut -d' ' -f2 | tr '\n' ' ')" = "0x00 0xb2 0x00 0xa0 0xb3 " ]
    [ ! -e twenty.dump.loading ]
}

@test "plain bytes are loaded to a place that is named" {
    enter_directory
    start s7ppi-sim
    printf 'abcd' >text.bin
    put -q --format raw --to VW200 text.bin
    [ "$status" -eq 0 ]
    run s7ppi read --port "$port" VB200:str*4
    [ "$output" = 'VB200 "abcd"' ]
}

@test "a dump of another station is told, and loaded" {
    enter_directory
    start s7ppi-sim --station 7
    twenty_bytes
    put --station 7 twenty.dump
    [ "$status" -eq 0 ]
    [ "${stderr_lines[0]}" = "s7ppi: the dump is of station 2, it goes to station 7" ]
}

@test "130: after Ctrl-C the same load goes on where it stopped" {
    enter_directory
    s7ppi dump -q --port sim VB0..VB999 -o press.dump
    start s7ppi-sim --turnaround 50
    stop_when grep -qs "write 212 bytes at V byte 424" errors -- load -v --port "$port" press.dump
    [ "$status" -eq 130 ]
    local written
    written=$(sed -n 's/^written //p' press.dump.loading)
    [ "$written" -ge 424 ]
    [[ "${stderr_lines[-2]}" == "s7ppi: VB$written..VB"*" may have been written: no answer tells" ]]
    [ "${stderr_lines[-1]}" = "s7ppi: $written of 1000 bytes are written; the same command goes on from there" ]

    sleep 0.2
    put --trace load.trace press.dump
    [ "$status" -eq 0 ]
    [ "${stderr_lines[0]}" = "s7ppi: the dump is of a simulated controller" ]
    [ "${stderr_lines[1]}" = "s7ppi: $written of 1000 bytes were written by an earlier run; --restart begins anew" ]
    [ "$(requests_of load.trace)" -eq $(((written + 221) / 222 + (1000 - written + 211) / 212)) ]
    [ ! -e press.dump.loading ]
}

@test "after a kill the same load goes on where it was" {
    enter_directory
    s7ppi dump -q --port sim VB0..VB999 -o press.dump
    start s7ppi-sim --turnaround 50
    signal=KILL stop_when grep -qs "write 212 bytes at V byte 424" errors -- load -v --port "$port" press.dump
    [ "$status" -eq 137 ]
    local written
    written=$(sed -n 's/^written //p' press.dump.loading)
    [ "$written" -ge 424 ]

    sleep 0.2
    put press.dump
    [ "$status" -eq 0 ]
    [ "${stderr_lines[0]}" = "s7ppi: the dump is of a simulated controller" ]
    [ "${stderr_lines[1]}" = "s7ppi: $written of 1000 bytes were written by an earlier run; --restart begins anew" ]
    [ ! -e press.dump.loading ]
}

# loading FILE FIRST..LAST BYTES: what a load of the file to station 2 leaves that was stopped.
loading() {
    local data
    data=$(sed -n "s/^[A-Z]*[0-9]* \+\([0-9a-f ]*\)$/\1/p" "$1" | tr -d ' \n' | sed 's/../\\x&/g')
    printf 's7ppi-load 1\narea %s\nstation 2\nsha256 %s\nwritten %s\n' \
        "$2" "$(printf '%b' "$data" | sha256sum | cut -d' ' -f1)" "$3" >"$1.loading"
}

@test "a load that goes on writes anew what is not there any more, as on another controller" {
    enter_directory
    twenty_bytes
    loading twenty.dump VB100..VB119 16
    start s7ppi-sim
    put twenty.dump
    [ "$status" -eq 0 ]
    [ "${stderr_lines[0]}" = "s7ppi: 16 of 20 bytes were written by an earlier run; --restart begins anew" ]
    [ "${stderr_lines[1]}" = "s7ppi: VB100 reads 0x11 and not 0xa0; from there on it is written anew" ]
    [[ "${stderr_lines[2]}" == "s7ppi: VB100..VB119: 20 bytes in "* ]]
    dump -q VB100..VB119 -o again.dump
    cmp twenty.dump again.dump

    s7ppi write --port "$port" -q VB105=9
    loading twenty.dump VB100..VB119 20
    put -q twenty.dump
    [ "$status" -eq 0 ]
    dump -q VB100..VB119 -o again.dump
    cmp twenty.dump again.dump
}

@test "a load of timers that goes on compares them, too" {
    enter_directory
    printf '%s\n' "s7ppi-dump 1" "area T0..T3" "station 2" "T0 0001 0002 0003 0004" >timers.dump
    loading timers.dump T0..T3 6
    start s7ppi-sim
    s7ppi write --port "$port" -q T0=1
    put timers.dump --trace load.trace
    [ "$status" -eq 0 ]
    [ "${stderr_lines[1]}" = "s7ppi: T1 reads 0x0000 and not 0x0002; from there on it is written anew" ]
    [[ "${stderr_lines[2]}" == "s7ppi: T0..T3: 6 bytes in "* ]]
    dump -q T0..T3 -o again.dump
    cmp timers.dump again.dump
}

@test "4: a controller that is silent while the earlier part is compared leaves it to the next run" {
    enter_directory
    twenty_bytes
    loading twenty.dump VB100..VB119 16
    start s7ppi-sim --fault silent@1
    put --retries 0 --timeout 2s twenty.dump
    [ "$status" -eq 4 ]
    [ "${stderr_lines[1]}" = "s7ppi: nothing more is written; the same command begins with the comparison" ]
    [ "${stderr_lines[2]}" = "s7ppi: VB100..VB115: plc no response" ]
    [ "$(tail -n 1 twenty.dump.loading)" = "written 16" ]
}

@test "a load of other bytes, or with --restart, begins anew" {
    enter_directory
    twenty_bytes
    s7ppi dump -q --port sim VB0..VB999 -o press.dump
    start s7ppi-sim --turnaround 50
    stop_when grep -qs "write 212 bytes at V byte 212" errors -- load -v --port "$port" press.dump
    [ "$status" -eq 130 ]
    [ -e press.dump.loading ]
    sleep 0.2
    put --restart --dry-run press.dump
    [ "$status" -eq 0 ]
    put --restart --trace load.trace press.dump
    [ "$status" -eq 0 ]
    [ "$(requests_of load.trace)" -eq 5 ]
    [ "${#stderr_lines[@]}" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: the dump is of a simulated controller" ]

    printf 's7ppi-load 1\nwritten 4\n' >twenty.dump.loading
    put twenty.dump
    [ "$status" -eq 0 ]
    [[ "${stderr_lines[0]}" == "s7ppi: VB100..VB119: 20 bytes in "* ]]
}

@test "8: verify reads everything back and tells what is different" {
    enter_directory
    twenty_bytes
    start s7ppi-sim --fault ignore-writes
    put -q --verify twenty.dump
    [ "$status" -eq 8 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB100 reads 0x11 and not 0xa0, and 19 more differ" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
    [ ! -e twenty.dump.loading ]
    s7ppi dump --port "$port" -q VB100..VB119 -o one.dump
    sed -i 's/^VB100  *11 /VB100 a0 /' one.dump
    put -q --verify one.dump
    [ "$status" -eq 8 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB100 reads 0x11 and not 0xa0" ]

    start s7ppi-sim
    put --verify twenty.dump
    [ "$status" -eq 0 ]
    [[ "${stderr_lines[1]}" == "s7ppi: VB100..VB119 read back: 20 bytes in "* ]]
}

@test "4: a controller that falls silent while it is read back has everything written" {
    enter_directory
    twenty_bytes
    start s7ppi-sim --fault silent@2
    put --verify --retries 0 --timeout 2s twenty.dump
    [ "$status" -eq 4 ]
    [ "${stderr_lines[1]}" = "s7ppi: 20 of 20 bytes are written; the same command goes on from there" ]
    put --verify twenty.dump
    [ "$status" -eq 0 ]
    [ "${stderr_lines[0]}" = "s7ppi: 20 of 20 bytes were written by an earlier run; --restart begins anew" ]
    [[ "${stderr_lines[1]}" == "s7ppi: VB100..VB119 read back: 20 bytes in "* ]]
    [ ! -e twenty.dump.loading ]
}

@test "a dry run prints the frames and opens no port" {
    enter_directory
    twenty_bytes
    run --separate-stderr s7ppi load --port /dev/no-such-port --dry-run --verify twenty.dump
    [ "$status" -eq 0 ]
    [[ "${lines[0]}" == "request 1 to station 2: write 20 bytes at V byte 100: 68 "*" a0 a1 a2 a3 "* ]]
    [[ "$output" == *"read 20 bytes at V byte 100"* ]]
    printf 'abcd' >text.bin
    run --separate-stderr s7ppi load --port /dev/no-such-port --dry-run --format raw --to VB8 text.bin
    [ "$status" -eq 0 ]
    [[ "${lines[0]}" == "request 1 to station 2: write 4 bytes at V byte 8: "*" 61 62 63 64 "* ]]
    run --separate-stderr s7ppi load --port /dev/no-such-port --dry-run --format json twenty.dump
    [ "$status" -eq 0 ]
    [[ "$output" == *'"format": "s7ppi.frames/1"'* ]]
}

@test "2: a file that is not whole and sound is refused before anything is sent" {
    enter_directory
    start fake_controller hang-up
    twenty_bytes
    head -n 4 twenty.dump >cut.dump
    head -c 84 twenty.dump >torn.dump
    sed 's/b1/bx/' twenty.dump >wrong.dump
    printf 'abc' >odd.bin
    : >empty.bin
    local case
    for case in "missing.dump;missing.dump cannot be read: No such file or directory" \
        "cut.dump;cut.dump:4: the dump ends before VB119: 16 of 20 bytes are there" \
        "torn.dump;torn.dump:4: \"a\" is no element of 2 hexadecimal digits" \
        "wrong.dump;wrong.dump:5: \"bx\" is no element of 2 hexadecimal digits" \
        "odd.bin;odd.bin:1: this is no dump" \
        "--format raw odd.bin;plain bytes do not say where they belong" \
        "--format raw --to VW0 odd.bin;VW0: 3 bytes are no whole number of elements" \
        "--format raw --to VX0 odd.bin;VX0: not an address of the controller" \
        "--format raw --to VB0 empty.bin;empty.bin is empty" \
        "--format json twenty.dump;load reads no json"; do
        # shellcheck disable=SC2086
        put ${case%;*}
        [ "$status" -eq 2 ]
        [ "${stderr_lines[0]}" = "s7ppi: ${case#*;}" ]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
    done
    kill -0 "${background[0]}"
}

@test "1: areas that cannot be written are refused before anything is sent" {
    enter_directory
    start s7ppi-sim
    local range
    for range in HC0..HC1 AIW0..AIW2; do
        dump -q "$range" -o press.dump
        [ "$status" -eq 0 ]
        put --trace load.trace press.dump
        [ "$status" -eq 1 ]
        [ "${stderr_lines[1]}" = "s7ppi: $range: can not write data to ${range%%.*}" ]
        [[ "${stderr_lines[2]}" == "hint: the driver writes no high-speed counters, no analogue inputs, "* ]]
        run requests_of load.trace
        [ "$output" = 0 ]
    done
}

@test "1: what the controller refuses ends a load with the block's name" {
    enter_directory
    start s7ppi-sim
    twenty_bytes
    put --to VB10230 twenty.dump
    [ "$status" -eq 1 ]
    [ "${stderr_lines[1]}" = "s7ppi: VB10230..VB10249: Invalid address (incorrect variable address)" ]
    [[ "${stderr_lines[2]}" == "hint: "* ]]
}

@test "6: a port that goes away tells how much is written" {
    enter_directory
    s7ppi dump -q --port sim VB0..VB999 -o press.dump
    start s7ppi-sim --turnaround 50
    s7ppi load -v --port "$port" press.dump 2>errors 3>&- &
    local loading=$!
    eventually grep -qs "write 212 bytes at V byte 212" errors
    kill "${background[0]}"
    status=0
    wait "$loading" || status=$?
    [ "$status" -eq 6 ]
    local written
    written=$(sed -n 's/^written //p' press.dump.loading)
    grep -q "^s7ppi: $written of 1000 bytes are written; the same command goes on from there$" errors
}

@test "progress is one line in place on a terminal, and none with -q" {
    enter_directory
    start s7ppi-sim --turnaround 30
    TERM=xterm script -qec "s7ppi dump --port $port VB0..VB999 -o press.dump" screen >/dev/null
    tr '\r' '\n' <screen >lines
    grep -q "VB0..VB999: 0 of 1000 bytes, 0 %$" lines
    [ "$(grep -c "of 1000 bytes" lines)" -ge 3 ]
    [ "$(grep -c "^s7ppi: VB0..VB999: 1000 bytes in " <(sed 's/^\x1b\[K//' lines))" -eq 1 ]
    TERM=xterm script -qec "s7ppi dump -q --port $port VB0..VB99 -o press.dump" screen >/dev/null
    run ! grep -q "bytes" screen
}

@test "help names files, options and where it goes on" {
    run --separate-stderr s7ppi dump --help
    [ "$status" -eq 0 ]
    [[ "$output" == *"--restart"*"FIRST and LAST are addresses of one area"* ]]
    run --separate-stderr s7ppi load --help
    [ "$status" -eq 0 ]
    [[ "$output" == *"--to"*"--verify"*"--dry-run"*"--restart"* ]]
}
