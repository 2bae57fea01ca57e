#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# A report of a recording that was cut in the middle of a line, or had another appended, was refused as a whole. A cut is
# what a full disk or a kill leaves, and two recordings of a shift are often joined.

# bats sets the variables of run.
# shellcheck disable=SC2154

load ../host/commands/common

@test "a record that was appended to another and cut at its end is taken with a warning" {
    cd "$BATS_TEST_TMPDIR"
    local head=time,name,address,type,index,value,unit,ms,error
    printf '%s\n2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n' $head $head >log.csv
    printf '2026-01-31T12:00:0' >>log.csv
    run --separate-stderr s7ppi report log.csv -o page.html
    [ "$status" -eq 0 ]
    [ "$stderr" = "s7ppi: log.csv: 2 lines left out, headings that come again or lines that were cut" ]
    grep -q '>VB0 ' page.html
    run ! grep -q simulated page.html
}
