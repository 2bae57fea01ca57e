#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# A file called 50%1.csv was told by a name that no file had, with parts of the message in it. Texts with places were filled
# one after the other, and a name with a place was filled, too.

# bats sets the variables of run.
# shellcheck disable=SC2154

load ../host/commands/common

@test "a percent sign in a file's name is told as it is" {
    local name=$BATS_TEST_TMPDIR/50%1%2%3.csv
    printf 'name,address\nBoiler,VX1\n' >"$name"
    run --separate-stderr s7ppi read --port sim "@$name"
    [ "$status" -eq 2 ]
    [[ "$stderr" == *"$name:2: "* ]]
    run --separate-stderr s7ppi report "$name"
    [ "$status" -eq 2 ]
    [[ "$stderr" == *"$name:1: "* ]]
    run --separate-stderr s7ppi decode --trace "$name"
    [ "$status" -eq 2 ]
    [[ "$stderr" == *"$name:1: "* ]]
    run --separate-stderr s7ppi load --port sim "$name"
    [ "$status" -eq 2 ]
    [[ "$stderr" == *"$name:1: "* ]]
    S7PPI_CONFIG=$name run --separate-stderr s7ppi read --port sim VB0
    [ "$status" -eq 2 ]
    [[ "$stderr" == *"$name:1: "* ]]
}
