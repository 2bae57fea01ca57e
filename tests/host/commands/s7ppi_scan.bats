#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi scan as a user meets it.

# bats runs every test in a shell of its own and sets the variables of run; errors have quotes in them.
# shellcheck disable=SC2030,SC2031,SC2154,SC2089,SC2090

load common

# scan ARGUMENT...: the line at $port, with the short time-out that scan has of its own.
scan() {
    S7PPI_CONFIG='' run --separate-stderr s7ppi scan --port "$port" "$@"
}

# scan_to_file ARGUMENT...: the line at $port in the background, into the files found and errors; its process is
# in $scanner.
scan_to_file() {
    S7PPI_CONFIG='' s7ppi scan --port "$port" "$@" >"$BATS_TEST_TMPDIR/found" 2>"$BATS_TEST_TMPDIR/errors" 3>&- &
    scanner=$!
    background+=("$scanner")
}

# Waits for its end: its exit code is in $status, what it wrote in $output and $stderr_lines.
await_scanner() {
    status=0
    wait "$scanner" || status=$?
    output=$(cat "$BATS_TEST_TMPDIR/found")
    mapfile -t stderr_lines <"$BATS_TEST_TMPDIR/errors"
}

@test "help tells which rates are tried" {
    [[ "$(s7ppi scan --help | tr -s '\n ' ' ')" == *"At which rates, as 9600,19200 or all (default the plug-in's) "* ]]
}

@test "the stations that answer are printed, the others are not" {
    start s7ppi-sim --station 2 --station 7
    scan --stations 1..3,7,8
    [ "$status" -eq 0 ]
    [[ "${lines[0]}" =~ ^"station 2 at 9600 baud: answers within "[0-9]+" ms"$ ]]
    [[ "${lines[1]}" =~ ^"station 7 at 9600 baud: answers within "[0-9]+" ms"$ ]]
    [ "${#lines[@]}" -eq 2 ]
    [ -z "$stderr" ]
}

@test "every station from 0 to 126 is asked once, and nothing is written" {
    start fake_controller
    scan --timeout 1 -v
    [ "$status" -eq 4 ]
    [ "$(grep -c '^-> request [0-9]* to station [0-9]*: read 1 byte at M byte 0: ' <<<"$stderr")" -eq 127 ]
    [ "$(grep -o 'to station [0-9]*' <<<"$stderr" | sort -u | wc -l)" -eq 127 ]
    [[ "$stderr" == *"to station 0: "*"to station 126: "* ]]
    [ "$(grep -c '^->' <<<"$stderr")" -eq 127 ]
}

@test "findings have records" {
    start s7ppi-sim
    scan --stations 2,3 --format ndjson
    [ "$status" -eq 0 ]
    [[ "$(timeless "$output")" == '{"format":"s7ppi.scan/1","station":2,"baud":9600,"answer":"data","milliseconds":'*',"text":"answers within '*'}' ]]
    scan --stations 2 --format csv
    [ "${lines[0]}" = "baud,station,answer,milliseconds,text" ]
    [[ "${lines[1]}" == "9600,2,data,"* ]]
}

@test "a station that refuses is there, too" {
    start fake_controller 100005020716
    scan --stations 5
    [ "$status" -eq 0 ]
    [ "$output" = "station 5 at 9600 baud: answers, but refuses: no resource" ]
    [ -z "$stderr" ]
}

@test "--station asks that station only" {
    start fake_controller
    scan --timeout 20 -v --station 5
    [ "$status" -eq 4 ]
    [ "$(grep -c '^->' <<<"$stderr")" -eq 1 ]
    [[ "$stderr" == *"to station 5: "* ]]
    S7PPI_STATION=5 scan --timeout 1 -v
    [ "$(grep -c '^->' <<<"$stderr")" -eq 127 ]
}

@test "4: what makes no sense twice is told, and is no station" {
    start fake_controller 00 00
    scan --stations 5
    [ "$status" -eq 4 ]
    [ "$output" = "station 5 at 9600 baud: something came that is no answer: invalid response" ]
    [ "${stderr_lines[0]}" = "s7ppi: no station answered" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
}

@test "4: a late answer of one station is not taken for the next one's" {
    start fake_controller silence e5 silence silence
    scan --stations 2,3
    [ "$status" -eq 4 ]
    [ -z "$output" ]
}

@test "4: a line without anybody" {
    start fake_controller
    scan --stations 1..3 --timeout 20 --format json
    [ "$status" -eq 4 ]
    [ "$output" = '{
  "format": "s7ppi.scan/1",
  "stations": []
}' ]
    [ "${stderr_lines[0]}" = "s7ppi: no station answered" ]
}

@test "a pseudo-terminal has no speed: only the first rate is used" {
    start s7ppi-sim
    local option
    for option in "--baud 19200,9600" "--baud 19200"; do
        # shellcheck disable=SC2086
        scan --timeout 5000 --stations 2 $option
        [ "$status" -eq 0 ]
        [[ "${lines[0]}" == "station 2 at 19200 baud: "* ]]
        [ "${#lines[@]}" -eq 1 ]
    done
    scan --timeout 5000 --stations 2 --baud all
    [[ "${lines[0]}" == "station 2 at 9600 baud: "* ]]
    [ "$stderr" = "s7ppi: only 9600 baud was tried: the port is a pseudo-terminal, which has no speed" ]
    scan --timeout 5000 --stations 2 --baud 19200
    [ -z "$stderr" ]
    S7PPI_BAUD=187500 scan --timeout 5000 --stations 2
    [[ "${lines[0]}" == "station 2 at 187500 baud: "* ]]
}

@test "130: Ctrl-C keeps what was found" {
    start s7ppi-sim
    scan_to_file --format json --stations 2..126 -v
    eventually grep -qs "to station 3:" "$BATS_TEST_TMPDIR/errors"
    kill -INT "$scanner"
    await_scanner
    [ "$status" -eq 130 ]
    [[ "$(timeless "$output")" == *'{"station":2,"baud":9600,"answer":"data",'*'
  ]
}' ]]
    [[ "${stderr_lines[-1]}" =~ ^"s7ppi: stopped at station "[0-9]+", 9600 baud"$ ]]
}

@test "130: the station at which a scan stopped is the one that was asked last" {
    start s7ppi-sim
    scan_to_file --stations 5 --timeout 1min --baud 19200 -v
    eventually grep -qs "to station 5:" "$BATS_TEST_TMPDIR/errors"
    kill -INT "$scanner"
    await_scanner
    [ "$status" -eq 130 ]
    [ "${stderr_lines[-1]}" = "s7ppi: stopped at station 5, 19200 baud" ]
}

@test "143: SIGTERM puts the file in its place" {
    start s7ppi-sim
    scan_to_file -o "$BATS_TEST_TMPDIR/found.csv" --stations 2..126 -v
    eventually grep -qs "to station 3:" "$BATS_TEST_TMPDIR/errors"
    [ ! -e "$BATS_TEST_TMPDIR/found.csv" ]
    kill -TERM "$scanner"
    await_scanner
    [ "$status" -eq 143 ]
    [[ "$(tail -n 1 "$BATS_TEST_TMPDIR/found.csv")" == "9600,2,data,"* ]]
}

@test "6: a port that goes away ends it, and what was found stays" {
    start s7ppi-sim
    scan_to_file --format json --stations 2..126 -v
    eventually grep -qs "to station 3:" "$BATS_TEST_TMPDIR/errors"
    kill "${background[0]}"
    await_scanner
    [ "$status" -eq 6 ]
    [[ "$(timeless "$output")" == *'{"station":2,"baud":9600,"answer":"data",'*'
  ]
}' ]]
    [ "${stderr_lines[-2]}" = "s7ppi: the port is gone" ]
    [[ "${stderr_lines[-1]}" == "hint: "* ]]
}

@test "5: an adapter that hears itself is told once; --echo helps" {
    start s7ppi-sim --fault echo
    scan --stations 2..9
    [ "$status" -eq 5 ]
    [ -z "$output" ]
    [ "${stderr_lines[0]}" = "s7ppi: the adapter hears what it sends" ]
    [[ "${stderr_lines[1]}" == "hint: use --echo, "* ]]
    [ "${#stderr_lines[@]}" -eq 2 ]
    scan --stations 2 --echo
    [ "$status" -eq 0 ]
    [[ "$output" == "station 2 at 9600 baud: answers within "* ]]
}

@test "a long scan tells now and then how far it is, but not with -q" {
    start fake_controller
    scan_to_file --timeout 300 --stations 0..17
    s7ppi-sim >"$BATS_TEST_TMPDIR/other" 3>&- &
    background+=($!)
    eventually test -s "$BATS_TEST_TMPDIR/other"
    port=$(cat "$BATS_TEST_TMPDIR/other")
    run --separate-stderr s7ppi scan -q --port "$port" --timeout 300 --stations 0..17
    [ -z "$stderr" ]
    await_scanner
    [ "$status" -eq 4 ]
    [[ "${stderr_lines[0]}" =~ ^"s7ppi: scan: 1"[0-9]" of 18 stations, "[0-9]+" %, "[0-9.]+" stations/s, "[0-9]+" s left"$ ]]
    [ "${stderr_lines[-2]}" = "s7ppi: no station answered" ]
}

@test "2: wrong lists are told with what they may hold" {
    local case
    for case in "--stations x;\"x\" is no station" "--stations 127;\"127\" is no station" \
        "--stations 9..2;2 is less than 9" "--baud fast;\"fast\" is no baud rate" "--baud 9600..19200;\"9600..19200\" is no baud rate" \
        "--baud all --trace x;a trace is of one rate, and several are to be tried"; do
        # shellcheck disable=SC2086
        run --separate-stderr s7ppi scan --port /dev/no-such-port ${case%;*}
        [ "$status" -eq 2 ]
        [ "${stderr_lines[0]}" = "s7ppi: ${case#*;}" ]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
    done
}

@test "3: a port that takes none of the rates" {
    local option
    for option in "" "--baud all"; do
        # shellcheck disable=SC2086
        run --separate-stderr s7ppi scan --port /dev/no-such-port $option
        [ "$status" -eq 3 ]
        [[ "${stderr_lines[0]}" == "s7ppi: /dev/no-such-port cannot be opened: "* ]]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
        [ "${#stderr_lines[@]}" -eq 2 ]
    done
}

@test "help tells the defaults" {
    run --separate-stderr s7ppi scan --help
    [ "$status" -eq 0 ]
    [[ "$output" == *"--stations"*"default 0..126"*"--baud"*"200 ms for the answer"* ]]
}
