#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi-sim --port plc did not find the port plc in the folder, which other programs open. A name without a slash was
# looked for in /dev alone.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load ../simulator/program/common

@test "a port in the folder needs no ./ before its name" {
    start
    local far=$simulator
    ln -s "$port" plc
    start --port plc
    [ "$port" = plc ]
    stop
    [ "$status" -eq 0 ]
    kill "$far"
}
