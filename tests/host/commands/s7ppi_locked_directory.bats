#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# The directory of lock files, held by another program. Every s7ppi of this machine that opens a port waits for it, and
# leaves an empty lock file alone where it waits in vain: this test runs alone.

# bats sets the variables of run.
# shellcheck disable=SC2154

load common
load locks

@test "3: an empty lock file is left alone while the directory of locks is another program's" {
    start_with_lock
    : >"$lock"
    hold "${lock%/*}"
    run --separate-stderr s7ppi read --port "$port" VB100
    [ "$status" -eq 3 ]
    [ -e "$lock" ]
}
