#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# Commands that write a file once, killed, or on a full disk.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2034,SC2154

load common
load kills

@test "read -o leaves the old file or the new one" {
    prepare
    as_before values.csv read 'VB0*600' 'VW1000*200'
    full old_or_whole read "'VB0*600'" "'VW1000*200'" -o values.csv
    cmp values.csv old
    killed old_or_whole read 'VB0*600' 'VW1000*200' -o values.csv
}

@test "decode -o leaves the old file or the new one" {
    prepare
    s7ppi read --trace line.txt 'VB0*1000' >/dev/null
    as_before frames.csv decode --trace line.txt
    full old_or_whole decode --trace line.txt -o frames.csv
    cmp frames.csv old
    killed old_or_whole decode --trace line.txt -o frames.csv
}

@test "report -o leaves the old page or the new one" {
    prepare
    {
        echo time,name,address,type,index,value,unit,ms,error
        seq -f '2026-01-31T12:%g' 1000 9999 | sed -E 's/:(..)(..)$/:\1:\2/' | awk -F '[T:]' '$3 < 60 && $4 < 60 {
            print $0 ".000Z,,VB0,u8,0," NR % 100 ",,5," }'
    } >log.csv
    s7ppi report log.csv -o whole
    file=page.html
    echo "what was there before" | tee old >page.html
    full old_or_whole report log.csv -o page.html
    cmp page.html old
    killed old_or_whole report log.csv -o page.html
}

@test "scan -o leaves the old file or the new one" {
    prepare
    file=stations.json
    wanted='.stations | length == 1'
    echo "what was there before" | tee old >"$file"
    killed old_or_document scan --stations 2,3 --timeout 50 -o stations.json
}

# A dump that is not whole has a part that holds whole lines of it, but for the last one.
part_or_whole() {
    old_or_whole || return 1
    [ -e press.dump.part ] || return 0
    head -n "$(wc -l <press.dump.part)" press.dump.part | grep -v '^#' >lines || true
    cmp -s -n "$(wc -c <lines)" lines whole
}

@test "dump leaves the old file or the new one, and a part with which it goes on" {
    prepare
    file=press.dump
    s7ppi dump -q VB0..VB999 -o whole
    echo "what was there before" | tee old >press.dump
    full part_or_whole dump VB0..VB999 -o press.dump
    cmp press.dump old
    rm press.dump.part
    killed part_or_whole dump VB0..VB999 -o press.dump
    s7ppi dump -q VB0..VB999 -o press.dump
    cmp press.dump whole
    [ ! -e press.dump.part ]
}

# The state tells of whole blocks, and of no more than the controller has.
state_is_true() {
    local written
    [ -e press.dump.loading ] || return 0
    written=$(sed -n 's/^written //p' press.dump.loading)
    [ $((written % 212)) -eq 0 ] || [ "$written" -eq 1000 ]
}

@test "a kill at any moment leaves load a state that is true" {
    prepare
    s7ppi dump -q VB0..VB999 -o press.dump
    sed -i '/^VB/s/ [0-9a-f][0-9a-f]/ 5a/g' press.dump
    killed state_is_true load press.dump
}

@test "load goes on with the state that a kill left" {
    prepare
    s7ppi dump -q VB0..VB999 -o press.dump
    start s7ppi-sim --pace # a block takes half a second
    sed -i '/^VB/s/ [0-9a-f][0-9a-f]/ 5a/g' press.dump
    s7ppi --port "$port" load press.dump 2>/dev/null 3>&- &
    local loader=$!
    eventually grep -qs '^written [1-9]' press.dump.loading
    kill -KILL "$loader"
    wait "$loader" || true
    state_is_true
    run -0 --separate-stderr s7ppi --port "$port" load --verify press.dump
    [[ "${stderr_lines[0]}" == "s7ppi: "*" bytes were written by an earlier run; --restart begins anew" ]]
    [ ! -e press.dump.loading ]
}

# Each line but the last is a comment or a record.
trace_is_true() {
    [ -e line.txt ] || return 0
    head -n "$(wc -l <line.txt)" line.txt >lines
    ! grep -vE '^(#.*|[0-9T:.-]+Z [<>]( [0-9a-f]{2})+)$' lines
}

@test "--trace loses its last line at most" {
    prepare
    full trace_is_true read --trace line.txt "'VB0*1000'"
    [ "$(wc -l <line.txt)" -gt 5 ]
    killed trace_is_true read --trace line.txt 'VB0*1000'
}
