#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# With stdout or stderr closed, s7ppi-sim sent what it tells, such as its frames with -v, to the master. The line was opened
# in the closed stream's place, the lowest number that is free.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2034,SC2154

load ../simulator/program/common

@test "the line never takes the place of a closed stdin, stdout or stderr" {
    run -74 bash -c 'exec timeout 10 s7ppi-sim --link plc <&- >&- 2>&-'
    [ ! -L plc ]
    s7ppi-sim --link plc -v <&- >/dev/null 2>&- 3>&- &
    simulator=$!
    local i
    for ((i = 0; i < 600; i++)); do
        [ -L plc ] && break
        sleep 0.05
    done
    [ "$(readlink "/proc/$simulator/fd/0" "/proc/$simulator/fd/2" | uniq)" = /dev/null ]
    exec {line}<>plc
    [ "$(exchange)" = "e5$answer" ]
}
