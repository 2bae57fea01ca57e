#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi report as a user meets it: from a record of watch to a page.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

@test "what watch records becomes a page" {
    cd "$BATS_TEST_TMPDIR"
    s7ppi watch --port sim --interval 5 --count 3 --all -o log.csv VW100 'VB0*2' V100.4 VB4:hex VB20000 2>/dev/null || true
    run --separate-stderr s7ppi report log.csv -o page.html
    [ "$status" -eq 0 ]
    [ "$output$stderr" = "" ]
    grep -q '<title>Watched: log.csv</title>' page.html
    grep -q '>Values of a simulated controller.<' page.html
    grep -q '>VW100 ' page.html
    grep -q '>VB0\[1\] ' page.html
    [ "$(grep -c '<path class="curve" d="M' page.html)" -eq 4 ]
    grep -q '<b>Invalid address (incorrect variable address)</b> <span class="bad">3 times, 20 %</span>' page.html
    [ "$(tail -n 1 page.html)" = "</html>" ]
}

@test "without -o the page goes to stdout, and - reads stdin" {
    printf 'time,name,address,type,index,value,unit,ms,error\n2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n' >"$BATS_TEST_TMPDIR/log.csv"
    s7ppi report "$BATS_TEST_TMPDIR/log.csv" >"$BATS_TEST_TMPDIR/page"
    s7ppi report - <"$BATS_TEST_TMPDIR/log.csv" | sed 's/Watched: -/Watched: log.csv/' | cmp - "$BATS_TEST_TMPDIR/page"
}

@test "2: what is no record is told by its line, and leaves the page of before as it was" {
    cd "$BATS_TEST_TMPDIR"
    printf 'time,name,address,type,index,value,unit,ms,error\nyesterday,,VB0,u8,0,1,,5,\n' >log.csv
    echo before >page.html
    run --separate-stderr s7ppi report log.csv -o page.html
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = 's7ppi: log.csv:2: "yesterday" is no time' ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
    [ "$(cat page.html)" = "before" ]
}

@test "2: a file that is not there" {
    run --separate-stderr s7ppi report /nonexistent.csv
    [ "$status" -eq 2 ]
    [ "$output" = "" ]
}

@test "74: a page that cannot be written is told" {
    printf 'time,name,address,type,index,value,unit,ms,error\n2026-01-31T12:00:00.000Z,,VB0,u8,0,1,,5,\n' >"$BATS_TEST_TMPDIR/log.csv"
    run --separate-stderr s7ppi report "$BATS_TEST_TMPDIR/log.csv" -o /nonexistent/page.html
    [ "$status" -eq 74 ]
}
