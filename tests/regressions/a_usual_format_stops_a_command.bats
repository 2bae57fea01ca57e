#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# With S7PPI_FORMAT=raw, meant for read, every command without raw data ended with a usage error. What is usual was taken
# for what was asked for.

# bats sets the variables of run.
# shellcheck disable=SC2154

load ../host/commands/common

@test "a usual format that a command does not have is left out, and told with -v" {
    cd "$BATS_TEST_TMPDIR"
    S7PPI_FORMAT=json run --separate-stderr s7ppi dump -v --port sim VB100..VB101 -o e.dump
    [ "$status" -eq 0 ]
    grep -qx "VB100 11 22" e.dump
    [[ "$stderr" == *"s7ppi: the usual format json is left out: the data are text"* ]]
    S7PPI_FORMAT=raw run --separate-stderr s7ppi load --port sim e.dump
    [ "$status" -eq 0 ]
    S7PPI_FORMAT=json run --separate-stderr s7ppi load --port sim e.dump
    [ "$status" -eq 0 ]
    S7PPI_FORMAT=json run --separate-stderr s7ppi load --dry-run e.dump
    [ "$(jq -r .format <<<"$output")" = s7ppi.frames/1 ]
    settings "format = raw"
    run --separate-stderr s7ppi check -v --config "$settings" VB0
    [ "$status" -eq 0 ]
    [ "${lines[0]}" = "VB0" ]
    [[ "$stderr" == *"s7ppi: the usual format raw is left out: the data are text"* ]]
    S7PPI_FORMAT=raw run --separate-stderr s7ppi scan --port sim --stations 2 --timeout 5000
    [[ "$output" == "station 2 at "* ]]
    [ "$(S7PPI_FORMAT=raw s7ppi read --port sim 'VB100:u16' | od -An -tx1)" = " 11 22" ]
    S7PPI_FORMAT=raw run --separate-stderr s7ppi read --port sim --format text VB100
    [ "$output" = "VB100 17" ]
    S7PPI_FORMAT=json run --separate-stderr s7ppi dump --port sim --format json VB0..VB9 -o f.dump
    [ "$status" -eq 2 ]
    S7PPI_FORMAT=xml run --separate-stderr s7ppi dump --port sim VB0..VB9 -o f.dump
    [ "$status" -eq 2 ]
}
