#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi-sim --save missing/saved.json ran for a day and lost its memory at the end. Whether the file can be written was found
# out when it was.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load ../simulator/program/common

@test "--save to nowhere is refused at the start, and leaves nothing in a folder that there is" {
    fails 74 --link plc --save missing/saved.json
    [ "$output" = "s7ppi-sim: missing/saved.json: cannot save: No such file or directory" ]
    [ ! -L plc ]
    echo '{}' >two.json
    fails 74 --station 2:two.json --station 3:missing/three.json --save
    [ "$(echo two*)" = two.json ]
}
