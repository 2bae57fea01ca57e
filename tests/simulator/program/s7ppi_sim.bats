#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi-sim as a user meets it: every option, and everything that can go wrong.
# S7PPI_BIN_DIR holds it.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2034,SC2154

load common
load ../../support/locks

teardown() {
    end_test
    [ -z "${lock:-}" ] || rm -f "$lock" "$lock.rmlock"
}

@test "the port's name is the only output, and it answers there" {
    start
    [[ $port == /dev/pts/* ]]
    [ "$(exchange)" = "e5$answer" ]
    stop
    [ "$status" -eq 0 ]
    [ "$(cat output)" = "$port" ]
    [ ! -s messages ]
}

@test "Ctrl-C, SIGTERM and a closed terminal take the link away and save the memory" {
    for signal in INT TERM HUP; do
        start --link plc --save saved.json
        [ "$(readlink plc)" = "$port" ]
        [ ! -e saved.json ]
        stop "$signal"
        [ "$status" -eq 0 ]
        [ ! -L plc ]
        grep -q '"100": "11223344"' saved.json
        rm saved.json
    done
}

@test "several stations have their own memory and save it to their own file" {
    echo '{ "M": { "0": "02" } }' >two.json
    echo '{ "M": { "0": "03" } }' >three.json
    start --station 2:two.json --station=3:three.json --save
    [ "$(byte_of 2 83 0)" = 02 ]
    [ "$(byte_of 3 83 0)" = 03 ]
    # MB0 of station 3 = 5a
    [ "$(ask 6820206803006c320100000001000e00050501120a1002000100008300000000040008 0)" = "" ]
    [ "$(ask 5ad416 1)" = e5 ]
    stop
    [ "$status" -eq 0 ]
    grep -q '"0": "02"' two.json
    grep -q '"0": "5a"' three.json
}

@test "--memory is for all stations without a file of their own" {
    echo '{ "M": { "0": "02" } }' >own.json
    echo '{ "M": { "0": "aa" } }' >common.json
    start --station 2:own.json --station 3 --station 4 --memory common.json
    [ "$(byte_of 2 83 0)" = 02 ]
    [ "$(byte_of 3 83 0)" = aa ]
    [ "$(byte_of 4 83 0)" = aa ]
}

@test "stations that cannot be are wrong usage" {
    usage_error --station 0
    [[ $output == *'"0" is not a station number from 1 to 126'* ]]
    usage_error --station 127
    start --station 126
    [ "$(byte_of 126 84 100)" = 11 ]
    usage_error --station two
    usage_error --station 2x:file
    usage_error --station 2:
    [[ $output == *'"2:" names no file behind the colon'* ]]
    usage_error --station 2 --station 3 --station 2
    [[ $output == *'--station: 2 is given twice'* ]]
    usage_error --station 2:missing.json
    [[ $output == *'missing.json: cannot open: No such file or directory'* ]]
}

@test "a broken memory file is told with its line" {
    printf '{\n  "V": {\n    "0": "00",\n    "10240": "00"\n  }\n}\n' >memory.json
    usage_error --memory /proc/self/mem
    [[ $output == 's7ppi-sim: /proc/self/mem: cannot read: '* ]]
    usage_error --memory memory.json
    [ "$output" = 's7ppi-sim: memory.json: line 4: V: "10240" is too large, the last one is 10239' ]
    printf '{\n  "V": {\n}\n' >memory.json
    usage_error --memory memory.json
    [[ $output == 's7ppi-sim: memory.json: line 4, column 1: not JSON: '* ]]
}

@test "--save needs to know where to" {
    usage_error --save
    [[ $output == *'--save: station 2 came from no file; name one behind --save'* ]]
    echo '{}' >memory.json
    usage_error --station 2:memory.json --station 3 --save
    [[ $output == *'station 3 came from no file'* ]]
    usage_error --station 2 --station 3 --save saved.json
    [[ $output == *'--save: several stations would be saved to saved.json'* ]]
    usage_error --station 2 --station 3 --memory memory.json --save
    [[ $output == *'several stations would be saved to memory.json'* ]]
}

@test "a memory file that does not exist yet is made by --save" {
    start --station 2:new.json --save
    [ "$(cat messages)" = 's7ppi-sim: new.json is new: it begins with the example memory' ]
    [ ! -e new.json ]
    stop
    [ "$status" -eq 0 ]
    grep -q '"100": "11223344"' new.json
    usage_error --station 2:other.json --save saved.json
    [[ $output == "s7ppi-sim: other.json: cannot open: "* ]]
}

@test "a memory that cannot be saved is told; the others are saved" {
    echo '{}' >two.json
    echo '{ "M": { "0": "03" } }' >three.json
    start --station 2:two.json --station 3:three.json --save
    rm two.json three.json
    mkdir two.json
    stop
    [ "$status" -eq 74 ]
    messages_are 's7ppi-sim: two.json: cannot save: Filename refers to a directory'
    grep -q '"0": "03"' three.json
}

@test "--help lists every kind of fault on a line of its own" {
    run -0 s7ppi-sim --help
    for kind in no-resource not-active silent wrong-ack 'late-ack[=TIME]' 'noise-ack[=BYTES]' no-answer not-ready \
        'late[=TIME]' 'truncated[=BYTES]' 'short[=BYTES]' 'corrupt[=POSITION]' 'noise[=BYTES]' \
        'noise-inside[=BYTES]' bad-checksum bad-end 'wrong-source[=STATION]' 'wrong-destination[=STATION]' \
        stale-reference error-class hardware-fault 'item-refused[=CODE]' ignore-writes echo; do
        grep -qF "  $kind  " <<<"$output"
        [ "$(grep -F "  $kind  " <<<"$output" | wc -w)" -ge 3 ]
    done
    [[ $output == *'ends BYTES early (default 3)'* ]]
    [[ $output == *'TIME later (default 1s)'* ]]
    [[ $output == *'hexadecimal (default 05)'* ]]
}

@test "--help names what an option takes, and tells all options in one column" {
    run -0 s7ppi-sim --help
    grep -qE '^  -p,--port DEV +[A-Z]' <<<"$output"
    local columns
    [ "$(grep -E '^  -' <<<"$output" | grep -cE '[^ ] +[A-Z][a-z]*( [^ ]+){2,}')" -eq "$(grep -cE '^  -' <<<"$output")" ]
    local option
    for option in 'station N[:FILE.json]' 'memory FILE.json' 'save [FILE.json]' 'pace [BAUD]' 'turnaround TIME' \
        'replay FILE' 'replay-speed FACTOR' 'trace FILE' 'link PATH' 'baud N' 'parity PARITY' 'seed N'; do
        grep -qF -- "--$option  " <<<"$output"
    done
    [ "$(grep -cE '^  s7ppi-sim -' <<<"$output")" -eq 4 ]
    columns=$(sed -nE 's/^(  -.*[^ ] {2,})[A-Z].*/\1/p' <<<"$output" | awk '{ print length($0) }' | sort -u)
    [ "$columns" = 31 ]
}

@test "a replay answers as then, and not from the memory" {
    printf '%s\n' "2026-01-31T12:00:00.000Z > $request" '2026-01-31T12:00:00.001Z < e5' \
        "2026-01-31T12:00:00.002Z > $poll" "2026-01-31T12:00:00.003Z < ${answer/116816/227916}" >then.txt
    start --replay then.txt --replay-speed 0
    [ "$(exchange)" = "e5${answer/116816/227916}" ]
    usage_error --replay .
    [ "$output" = 's7ppi-sim: .: cannot be read' ]
}

@test "a replay is as fast as one says, within limits" {
    local speed
    for speed in 0 0.001 1 1000; do
        run -2 s7ppi-sim --replay none.txt --replay-speed "$speed"
        [[ "$output" == *"none.txt: cannot be read"* ]]
    done
    for speed in -1 0.0009 1000.1 fast 1x ''; do
        run -2 s7ppi-sim --replay none.txt --replay-speed "$speed"
        [[ "$output" == *"is neither 0 nor a number from 0.001 to 1000"* ]]
    done
}

@test "faults are made for one request or for all, and add up" {
    start --fault short=4@1 --fault wrong-source=9 --fault bad-end@2
    [ "$(ask "$request" 1)" = e5 ]
    [ "$(ask "$poll" 4)" = 68161668 ]
    [ "$(ask "$request" 1)" = e5 ]
    [ "$(ask "$poll" 28)" = 681616680009083203000000010002000500000401ff040008116f17 ]
    [ "$(ask "$request" 1)" = e5 ]
    [ "$(ask "$poll" 28)" = 681616680009083203000000010002000500000401ff040008116f16 ]
}

@test "an echo comes back first" {
    start --fault echo
    [ "$(ask "$request" 34)" = "${request}e5" ]
    [ "$(ask "$poll" 34)" = "$poll$answer" ]
}

@test "a late answer comes late" {
    start --fault late=300
    [ "$(ask "$request" 1)" = e5 ]
    local before
    before=$(milliseconds)
    [ "$(ask "$poll" 28)" = "$answer" ]
    (($(milliseconds) - before >= 300))
}

@test "a fault that does not exist is told with the nearest one" {
    usage_error --fault bad-checksun
    [[ $output == *'--fault: "bad-checksun" is no kind of fault; the nearest is bad-checksum'* ]]
    usage_error --fault late=soon
    [[ $output == *'late=TIME: "soon" is not a time from 1ms to 10min'* ]]
    usage_error --fault silent=1
    [[ $output == *'silent takes no argument'* ]]
    usage_error --fault silent@0
    [[ $output == *'@N: "0" is not the number of a request'* ]]
    usage_error --fault silent%101
    [[ $output == *'%P: "101" is not a percentage'* ]]
    usage_error --seed x
    [[ $output == *--seed* ]]
}

@test "faults by chance tell their seed, with which the run repeats" {
    start --fault noise=8
    [ "$(ask "$request" 1)" = e5 ]
    local first seed
    first=$(ask "$poll" 36)
    [[ $first == *$answer ]]
    stop
    seed=$(sed -n 's/^s7ppi-sim: faults by chance; --seed \([0-9]*\) repeats them$/\1/p' messages)
    [ -n "$seed" ]

    start --fault noise=8 --seed "$seed"
    [ "$(ask "$request" 1)" = e5 ]
    [ "$(ask "$poll" 36)" = "$first" ]
    stop
    grep -qF -- "--seed $seed " messages
}

@test "faults without chance tell no seed" {
    start --fault late=10 --seed 5
    stop
    [ ! -s messages ]
}

@test "live values change by themselves" {
    start --live VB100=ramp:7..7/1s --live VD0=clock --live MB0=counter:1/10ms
    [ "$(byte_of 2 84 100)" = 07 ]
    local first
    first=$(byte_of 2 83 0)
    sleep 0.05
    [ "$(byte_of 2 83 0)" != "$first" ]
    local now top
    now=$(printf %08x "$(date +%s)")
    top=$(byte_of 2 84 0)$(byte_of 2 84 1)
    [ "$top" = "${now:0:4}" ] || [ "$top" = "$(printf %08x "$(date +%s)" | cut -c 1-4)" ]
}

@test "--live demo shows something everywhere" {
    start --live demo
    local first
    first=$(byte_of 2 84 203)$(byte_of 2 84 207)$(byte_of 2 83 10)
    sleep 0.3
    [ "$(byte_of 2 84 203)$(byte_of 2 84 207)$(byte_of 2 83 10)" != "$first" ]
    [ "$(byte_of 2 84 100)" = 11 ]
}

@test "live values of the memory file are kept in it, those of the command line are not" {
    echo '{ "live": { "VB100": "ramp:9..9/1s" } }' >memory.json
    start --memory memory.json --save --live VB101=ramp:8..8/1s
    [ "$(byte_of 2 84 100)" = 09 ]
    [ "$(byte_of 2 84 101)" = 08 ]
    stop
    grep -q '"VB100": "ramp:9..9/1s"' memory.json
    run ! grep -q VB101 memory.json
    grep -q '"100": "0908"' memory.json
}

@test "live values that cannot be are wrong usage" {
    usage_error --live VW100
    [[ $output == *'--live: "VW100" is neither PLACE=KIND:ARGUMENTS'* ]]
    usage_error --live VW100=rump:0..5/1s
    [[ $output == *'"rump" is no kind of live value; the nearest is ramp'* ]]
    usage_error --live VW20000=ramp:0..5/1s
    [[ $output == *'"VW20000" lies behind the last one of V, 10239'* ]]
    echo '{ "live": { "VB0": "ramp:0..256/1s" } }' >memory.json
    usage_error --memory memory.json
    [[ $output == *'memory.json: line 1: live: "ramp:0..256/1s" goes beyond what VB0 can hold'* ]]
}

@test "--pace lets every byte take its time" {
    start --pace 2400
    local before
    before=$(milliseconds)
    [ "$(exchange)" = "e5$answer" ]
    # 33 + 1 + 6 + 28 bytes of 11 bits: 311 ms
    (($(milliseconds) - before >= 310))
    stop
    start --pace --link plc
    [ -L plc ]
    before=$(milliseconds)
    [ "$(exchange)" = "e5$answer" ]
    (($(milliseconds) - before >= 77)) # at 9600
    stop
    start --pace 4000000
    [ "$(exchange)" = "e5$answer" ]
    usage_error --pace fast
    local rate
    for rate in 1 49 4000001; do
        usage_error --pace "$rate"
        [[ $output == *--pace* ]]
    done
}

@test "--turnaround comes before every reply" {
    start --turnaround 120
    local before
    before=$(milliseconds)
    [ "$(exchange)" = "e5$answer" ]
    (($(milliseconds) - before >= 240))
    usage_error --turnaround 11min
    [[ $output == *'11min is not a time from 0s to 10min'* ]]
    usage_error --turnaround -1
    [[ $output == *--turnaround* ]]
}

@test "--trace writes a line for every frame" {
    start --trace trace.txt
    [ "$(exchange)" = "e5$answer" ]
    local time='20[0-9]{2}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\.[0-9]{3}Z'
    [ "$(wc -l <trace.txt)" -eq 5 ]
    [[ $(sed -n 1p trace.txt) == "# s7ppi-sim "*" on $port" ]]
    sed -n 2p trace.txt | grep -qE "^$time > 68 1b 1b 68 02 00 .* 8c 16$"
    sed -n 3p trace.txt | grep -qE "^$time < e5$"
    sed -n 4p trace.txt | grep -qE "^$time > 10 02 00 5c 5e 16$"
    sed -n 5p trace.txt | grep -qE "^$time < 68 16 16 68 00 02 08 .* 11 68 16$"
}

@test "a trace that cannot be begun ends the program" {
    fails 74 --trace missing/trace.txt --link plc
    [ "$output" = "s7ppi-sim: missing/trace.txt: cannot write: No such file or directory" ]
    [ ! -L plc ]
}

@test "a trace that takes no more is told once, and the line is served on" {
    trap '' XFSZ
    ulimit -S -f 1
    start --trace trace.txt
    local i
    for ((i = 0; i < 20; i++)); do
        [ "$(exchange)" = "e5$answer" ]
    done
    stop
    [ "$status" -eq 74 ]
    messages_are "s7ppi-sim: trace.txt: cannot write, the trace ends here"
}

@test "a memory that finds no room is told, and the file stays as it was" {
    printf '{"V": {"0": "%s"}}' "$(printf '11%.0s' {1..2000})" >memory.json
    cp memory.json before.json
    trap '' XFSZ
    ulimit -S -f 1
    start --memory memory.json --save
    stop
    [ "$status" -eq 74 ]
    cmp memory.json before.json
}

@test "-v shows the frames from the master's side" {
    start -v
    [ "$(exchange)" = "e5$answer" ]
    stop
    [ "$(cut -c 1 messages | tr -d '\n')" = '><><' ]
    grep -qF '> 10 02 00 5c 5e 16  0 to 2: poll' messages
}

@test "a serial port that vanishes is told and has its own exit code" {
    start
    local far=$simulator device=$port
    start --port "$device" --baud 19200 --parity none --save saved.json
    [ "$port" = "$device" ]
    kill "$far"
    ended
    [ "$status" -eq 6 ]
    messages_are "s7ppi-sim: $device is lost"
    grep -q '"100": "11223344"' saved.json
}

@test "whoever watches the frames may go: the line is served on and the memory saved" {
    mkfifo frames
    head -n 1 frames >first &
    local reader=$!
    s7ppi-sim -v --link plc --save saved.json >output 2>frames 3>&- &
    simulator=$!
    for ((i = 0; i < 600; i++)); do
        [ -s output ] && break
        sleep 0.05
    done
    exec {line}<>plc
    [ "$(exchange)" = "e5$answer" ]
    wait "$reader"
    [ "$(exchange)" = "e5$answer" ]
    stop
    [ "$status" -eq 0 ]
    [[ $(cat first) == '> 68 1b 1b 68'* ]]
    grep -q '"100": "11223344"' saved.json
}

@test "a port's name that cannot be told is exit code 74" {
    run -74 --separate-stderr bash -c 'exec timeout 10 s7ppi-sim --link plc >/dev/full'
    [ "${stderr_lines[0]}" = "s7ppi-sim: stdout does not take the port's name" ]
    [[ ${stderr_lines[1]} == 'hint: '* ]]
    [ ! -L plc ]
}

@test "74: help and version that cannot be told" {
    local option
    for option in --help --version; do
        run -74 --separate-stderr bash -c "s7ppi-sim $option >/dev/full"
        [ "${stderr_lines[0]}" = "s7ppi-sim: stdout takes no more data" ]
        [[ ${stderr_lines[1]} == 'hint: '* ]]
        run -74 --separate-stderr bash -c "s7ppi-sim $option >&-"
    done
}

@test "a memory file without end is not read to the end" {
    usage_error --memory /dev/zero
    [ "$output" = "s7ppi-sim: /dev/zero: is too large for a memory file" ]
}

@test "a port or link that cannot be had is exit code 3" {
    fails 3 --port /dev/missing
    [ "$output" = "s7ppi-sim: cannot open /dev/missing: No such file or directory" ]
    echo precious >plc
    fails 3 --link plc
    [ "$output" = "s7ppi-sim: cannot make the link plc: File exists" ]
    [ "$(cat plc)" = precious ]
}

@test "3: a lock that is no file is left alone, and nothing waits for it" {
    start
    local device=$port obstacle
    start --port "$device"
    lock=$(lock_of "$device")
    stop
    for obstacle in "$lock" "$lock.rmlock"; do
        rm -f "$obstacle" # a program that was killed may have left one for the terminal that had this number before
        mkfifo "$obstacle"
        fails 3 --port "$device"
        [ "$output" = "s7ppi-sim: cannot open $device: $obstacle is no lock file, and is in the way" ]
        [ -p "$obstacle" ]
        rm "$obstacle"
    done
}

@test "options that do not go together are wrong usage" {
    usage_error --link a --port b
    usage_error --baud 9600
    [[ $output == *'--baud requires --port'* ]]
    usage_error --parity odd
    usage_error --port a --baud 0
    usage_error --port a --parity mark
    usage_error --nonsense
    usage_error nonsense
}

@test "the example of the page is the one that is built" {
    local top=$BATS_TEST_DIRNAME/../../..
    sed -n '/^.\{3\}cpp$/,/^.\{3\}$/p' "$top/docs/simulator.md" | sed '1d;$d' >shown
    sed -n '/^#include/,$p' "$top/examples/simulator_test/simulator_test.cpp" >built
    [ -s built ]
    diff shown built
}

@test "--version tells the version" {
    run -0 s7ppi-sim --version
    [[ $output =~ ^s7ppi-sim\ [0-9]+\.[0-9]+\.[0-9]+$ ]]
}
