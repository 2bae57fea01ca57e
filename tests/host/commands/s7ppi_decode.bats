#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi decode as a user meets it: hexadecimal text and traces, byte by byte.

# bats sets the variables of run.
# shellcheck disable=SC2154

load common

@test "every byte is a line with its field and meaning" {
    run --separate-stderr s7ppi decode 10 02 00 5c 5e 16
    [ "$status" -eq 0 ]
    [ "$stderr" = "" ]
    [ "$output" = "poll of station 2, 6 bytes
   0  10   start                   a frame without data
   1  02   destination             station 2
   2  00   source                  station 0
   3  5c   function code           data or poll, to be answered; sequence bit 0
   4  5e   check sum               right
   5  16   end                     end of the frame" ]
}

@test "5: what is wrong is marked and told, and the rest explained all the same" {
    run --separate-stderr s7ppi decode e5 1002005c5f16
    [ "$status" -eq 5 ]
    [ "${lines[0]}" = "acknowledgement, 1 byte" ]
    [ "${lines[2]}" = "damaged frame, 6 bytes" ]
    [ "${lines[7]}" = "   4  5f ! check sum               should be 5E" ]
    [ "${lines[9]}" = "         ! check sum: should be 5E" ]
    [ "${stderr_lines[0]}" = "s7ppi: 1 of 2 frames are cut, damaged or none" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
}

@test "5: a cut frame tells what is missing" {
    run --separate-stderr s7ppi decode 68:1b:1b:68:02:00
    [ "$status" -eq 5 ]
    [ "${lines[-1]}" = '         ! cut: 27 of 33 bytes are missing, from "function code" on' ]
}

@test "what --dry-run prints can be decoded" {
    run --separate-stderr bash -c 's7ppi write --dry-run VW10=300 | s7ppi decode -'
    [ "$status" -eq 0 ]
    [ "${lines[0]}" = "request 1 to station 2: write 1 word at V byte 10, 39 bytes" ]
    [ "$(grep -c ' VW10: 300$' <<<"$output")" -eq 1 ]
}

@test "a trace of s7ppi is decoded, the data by their addresses" {
    s7ppi read --port sim --trace "$BATS_TEST_TMPDIR/trace" VW100 T37 2>/dev/null
    run --separate-stderr s7ppi decode --trace "$BATS_TEST_TMPDIR/trace"
    [ "$status" -eq 0 ]
    [[ "${lines[0]}" =~ ^20.*Z" > request 1 to station 2: read 1 word at V byte 100, 33 bytes"$ ]]
    [ "$(grep -c ' < acknowledgement, 1 byte$' <<<"$output")" -eq 2 ]
    [ "$(grep -c ' VW100: 4386$' <<<"$output")" -eq 1 ]
    [ "$(grep -c ' T37: 300, status ' <<<"$output")" -eq 1 ]
    run -0 --separate-stderr s7ppi decode --format json --trace "$BATS_TEST_TMPDIR/trace"
    [ "$(jq -r '.frames[] | .time + " " + .direction' <<<"$output")" = \
        "$(grep -v '^#' "$BATS_TEST_TMPDIR/trace" | cut -d ' ' -f 1,2)" ]
}

@test "a trace of s7ppi-sim is the same" {
    s7ppi-sim --trace "$BATS_TEST_TMPDIR/sim" >"$BATS_TEST_TMPDIR/port" 3>&- &
    eventually test -s "$BATS_TEST_TMPDIR/port"
    s7ppi read --port "$(cat "$BATS_TEST_TMPDIR/port")" --trace "$BATS_TEST_TMPDIR/host" VB100 T37 >/dev/null
    s7ppi decode --trace "$BATS_TEST_TMPDIR/host" --format csv >"$BATS_TEST_TMPDIR/host.csv"
    s7ppi decode --trace "$BATS_TEST_TMPDIR/sim" -o "$BATS_TEST_TMPDIR/sim.csv"
    [ "$(wc -l <"$BATS_TEST_TMPDIR/host.csv")" -gt 100 ]
    cmp "$BATS_TEST_TMPDIR/host.csv" "$BATS_TEST_TMPDIR/sim.csv"
}

@test "2: a line that is no record is told by its place, the others are decoded" {
    printf '# heading\n\n2026-01-31T12:00:00.000Z < e5\ne5\n' >"$BATS_TEST_TMPDIR/trace"
    run --separate-stderr s7ppi decode --trace "$BATS_TEST_TMPDIR/trace"
    [ "$status" -eq 2 ]
    [ "${lines[0]}" = "2026-01-31T12:00:00.000Z < acknowledgement, 1 byte" ]
    [ "${stderr_lines[0]}" = "s7ppi: $BATS_TEST_TMPDIR/trace:4: no record of a trace" ]
}

@test "json has a record for every byte and the frames beside them" {
    run --separate-stderr s7ppi decode --format json e5 10
    [ "$status" -eq 5 ]
    [ "$output" = '{
  "format": "s7ppi.decode/1",
  "bytes": [
    {"frame":1,"offset":0,"byte":"e5","field":"acknowledgement","meaning":"taken: ask for the answer","fault":false},
    {"frame":2,"offset":0,"byte":"10","field":"start","meaning":"a frame without data; cut: 5 of 6 bytes are missing, from \"destination\" on","fault":true}
  ],
  "frames": [{"meaning":"acknowledgement","size":1,"faults":[]},{"meaning":"incomplete frame","size":1,"faults":["cut: 5 of 6 bytes are missing, from \"destination\" on"]}]
}' ]
}

@test "5: csv and ndjson have what is missing of a cut frame in the record of its last byte" {
    run --separate-stderr s7ppi decode --format csv 10 02
    [ "$status" -eq 5 ]
    [ "${lines[-1]}" = '1,1,02,destination,"station 2; cut: 4 of 6 bytes are missing, from ""source"" on",1' ]
    [ "${stderr_lines[1]}" = "hint: the records whose fault is true tell what is wrong with them" ]
    run --separate-stderr s7ppi decode --format ndjson 681b
    [ "$status" -eq 5 ]
    [[ "${lines[-1]}" == *'"meaning":"'*'; cut: 31 of 33 bytes are missing, '*'"fault":true}' ]]
}

@test "5: a frame that has no header is no answer" {
    run --separate-stderr s7ppi decode 68 03 03 68 02 00 6c 6e 16
    [ "$status" -eq 5 ]
    [ "${lines[0]}" = "damaged frame, 9 bytes" ]
    run --separate-stderr s7ppi decode 68 00 00 68 00 16
    [ "$status" -eq 5 ]
    [ "${lines[0]}" = "damaged frame, 6 bytes" ]
}

@test "2: of a file that is no trace five lines are told, and the others counted" {
    seq 100 >"$BATS_TEST_TMPDIR/numbers"
    run --separate-stderr s7ppi decode --trace "$BATS_TEST_TMPDIR/numbers"
    [ "$status" -eq 2 ]
    [ "$(grep -c "numbers:[0-9]*: no record of a trace$" <<<"$stderr")" -eq 5 ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
    [ "${stderr_lines[6]}" = "s7ppi: $BATS_TEST_TMPDIR/numbers: 95 more lines: no record of a trace" ]
    [ "${stderr_lines[7]}" = "s7ppi: $BATS_TEST_TMPDIR/numbers: there are no bytes to decode" ]
    [ "${stderr_lines[8]}" = "hint: s7ppi help decode has examples" ]
    [ "${#stderr_lines[@]}" -eq 9 ]
}

@test "2: a trace without frames is named, and the help has examples" {
    : >"$BATS_TEST_TMPDIR/empty"
    run --separate-stderr s7ppi decode --trace "$BATS_TEST_TMPDIR/empty"
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: $BATS_TEST_TMPDIR/empty: there are no bytes to decode" ]
    run s7ppi decode --help
    [[ "$output" == *"Examples:"*"s7ppi decode 10 02 00 5c 5e 16"*"s7ppi decode --trace "* ]]
}

@test "2: text that is no hexadecimal, nothing at all, and files that are none are refused with a hint" {
    local arguments
    for arguments in "xyz" "123" "" "e5 --trace /dev/null" "--trace /nonexistent" "--trace /"; do
        # shellcheck disable=SC2086
        run --separate-stderr s7ppi decode $arguments
        [ "$status" -eq 2 ]
        [ "$output" = "" ]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
    done
}
