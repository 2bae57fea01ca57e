#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi-sim --link plc took over a link plc to a user's file, and deleted it at the end; a second simulator took the name of one
# that was running. Any link was replaced, as if only a simulator that was killed could have left it.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load ../simulator/program/common

@test "a link to a file stays" {
    echo precious >recipe
    ln -s recipe plc
    fails 3 --link plc
    [ "$(readlink plc)" = recipe ]
    [ "$(cat recipe)" = precious ]
}

@test "a link to a link that leads somewhere stays" {
    echo precious >plc
    ln -s plc twin
    run -3 --separate-stderr s7ppi-sim --link twin
    [ "${stderr_lines[1]}" = "hint: end the other simulator, or remove the link" ]
    [ "$(readlink twin)" = plc ]
}

@test "the link of a simulator that is running stays its own" {
    start --link plc
    fails 3 --link plc
    [ "$output" = "s7ppi-sim: cannot make the link plc: File exists" ]
    [ "$(readlink plc)" = "$port" ]
    stop
    [ "$status" -eq 0 ]
    [ ! -L plc ]
}
