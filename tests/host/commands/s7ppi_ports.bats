#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi ports as a user meets it.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

@test "a port is shown with adapter and rights" {
    start s7ppi-sim
    run --separate-stderr s7ppi ports "$port"
    [ "$status" -eq 0 ]
    [ "$output" = "$port
  adapter    none, it is a pseudo-terminal
  rights     readable and writable" ]
    [ -z "$stderr" ]
}

@test "a link leads to the port" {
    start s7ppi-sim --link "$BATS_TEST_TMPDIR/line"
    run --separate-stderr s7ppi ports "$BATS_TEST_TMPDIR/line"
    [ "$status" -eq 0 ]
    [ "${lines[0]}" = "$(readlink "$BATS_TEST_TMPDIR/line")" ]
}

@test "the program that has a port open is named" {
    start fake_controller
    s7ppi read --port "$port" --timeout 60000 VB0 3>&- 2>/dev/null &
    background+=($!)
    eventually grep -q unanswered "$BATS_TEST_TMPDIR/output"
    run --separate-stderr s7ppi ports "$port"
    [ "$status" -eq 0 ]
    [ "${lines[3]}" = "  in use by  s7ppi (process ${background[1]})" ]
    [ "${lines[4]}" = "  advice     end the other program, or use another port" ]
}

@test "ports have records" {
    start s7ppi-sim
    run --separate-stderr s7ppi ports "$port" --format ndjson
    [ "$status" -eq 0 ]
    [[ "$output" == '{"format":"s7ppi.ports/1","port":"'"$port"'","byId":"",'*'"readable":true,"writable":true,"holders":"","latency":null,"advice":""}' ]]
    run --separate-stderr s7ppi ports "$port" --format csv
    [ "${lines[0]}" = "port,byId,driver,description,maker,serialNumber,usbId,group,readable,writable,holders,latency,advice" ]
    [[ "${lines[1]}" == "$port,"* ]]
}

@test "without names the ports with hardware are listed, or none is told" {
    run --separate-stderr s7ppi ports --format csv
    [ "$status" -eq 0 ]
    local line
    for line in "${lines[@]:1}"; do
        [[ "$line" == /dev/tty* ]]
    done
    [ "${#lines[@]}" -gt 1 ] || [ "$stderr" = "s7ppi: there are no serial ports: plug in an adapter, or use --port sim" ]
}

@test "3: what is no port is told, the others are listed" {
    start s7ppi-sim
    run --separate-stderr s7ppi ports /dev/no-such-port "$BATS_TEST_TMPDIR/output" "$port"
    [ "$status" -eq 3 ]
    [ "${lines[0]}" = "$port" ]
    [ "${stderr_lines[0]}" = "s7ppi: ports: /dev/no-such-port does not exist" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
    [ "${stderr_lines[2]}" = "s7ppi: ports: $BATS_TEST_TMPDIR/output is no port" ]
}

@test "2: raw bytes are nothing that ports have" {
    run --separate-stderr s7ppi ports --format raw
    [ "$status" -eq 2 ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
}
