#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What a kill at any moment, or a disk that is full, leaves of each file that a command writes: it is whole, or
# the same command goes on with it, or it is short by its last line; and what was there before is never lost.
#
# S7PPI_KILLS says how many kills each command gets, S7PPI_SEED repeats their moments.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

prepare() {
    export -n S7PPI_KILLS S7PPI_SEED
    kills=${S7PPI_KILLS:-10}
    seed=${S7PPI_SEED:-$RANDOM}
    RANDOM=$seed
    mkdir "$BATS_TEST_TMPDIR/directory"
    cd "$BATS_TEST_TMPDIR/directory" || return 1
    start s7ppi-sim
    export S7PPI_PORT=$port
}

# duration_of COMMAND...: how many microseconds it takes.
duration_of() {
    local begin=$EPOCHREALTIME
    "$@" >/dev/null 2>&1
    echo $((${EPOCHREALTIME/./} - ${begin/./}))
}

# killed_at SECONDS S7PPI_ARGUMENT...
killed_at() {
    local victim
    s7ppi "${@:2}" >/dev/null 2>&1 3>&- &
    victim=$!
    sleep "$1"
    kill -KILL "$victim" 2>/dev/null || true
    wait "$victim" 2>/dev/null || true
}

# killed CHECK S7PPI_ARGUMENT...: the check holds after every kill at a drawn moment of the command's run.
killed() {
    local check=$1 duration moment i
    shift
    duration=$(duration_of s7ppi "$@")
    for ((i = 0; i < kills; i++)); do
        moment=$(((RANDOM * 32768 + RANDOM) % (duration * 5 / 4)))
        killed_at "$(printf '%d.%06d' $((moment / 1000000)) $((moment % 1000000)))" "$@"
        "$check" || {
            echo "after kill $i, at $moment us; S7PPI_SEED=$seed"
            return 1
        }
    done
}

# full CHECK S7PPI_ARGUMENT...: the check holds where files take no more than so many kilobytes.
full() {
    local check=$1 size
    shift
    for size in 1 2; do
        run -74 --separate-stderr bash -c "trap '' XFSZ; ulimit -f $size; exec s7ppi $*"
        "$check"
    done
}

# What is in the file: what was before, or what a run that is not stopped makes.
old_or_whole() {
    cmp -s "$file" old || cmp -s "$file" whole
}

# as_before FILE S7PPI_ARGUMENT...: the file of an earlier run in $file and old, that of a whole run in whole.
as_before() {
    file=$1
    shift
    s7ppi -q "$@" -o whole --format "${file##*.}"
    echo "what was there before" | tee old >"$file"
}

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

# The answer times are other ones every time.
old_or_document() {
    cmp -s "$file" old || jq -e "$wanted" "$file" >/dev/null
}

@test "scan -o leaves the old file or the new one" {
    prepare
    file=stations.json
    wanted='.stations | length == 1'
    echo "what was there before" | tee old >"$file"
    killed old_or_document scan --stations 2,3 --timeout 50 -o stations.json
}

@test "watch -o FILE.json leaves the old file or the new one" {
    prepare
    file=run.json
    wanted='.samples | length == 6'
    echo "what was there before" | tee old >"$file"
    full old_or_document watch --all --interval 1 --count 20 "'VB0*200'" -o run.json
    cmp run.json old
    killed old_or_document watch --all --interval 1 --count 3 VB100 VW200 -o run.json
}

# All that was recorded before is still there, and nothing but a last line that was cut is no record.
recorded_on() {
    local whole
    find . -name "run.*.$form" -print0 | sort -zV | xargs -0 cat >all
    cat "run.$form" >>all
    whole=$(wc -l <all)
    [ "$whole" -ge "$recorded" ] || return 1
    recorded=$whole
    head -n "$whole" all >lines
    ! grep -vE "$record" lines
}

# recording FORM RECORD: what watch -o run.FORM records, whose whole lines are as the pattern.
recording() {
    form=$1
    record=$2
    recorded=0
    rm -f run.*
    full recorded_on watch --all --interval 1 --count 60 VB100 "'VW200*2'" -o "run.$form"
    [ "$recorded" -gt 10 ]
    killed recorded_on watch --all --interval 1 --count 3 VB100 'VW200*2' -o "run.$form"
    killed recorded_on watch --all --interval 1 --count 3 --rotate 1k VB100 'VW200*2' -o "run.$form"
    s7ppi watch -q --count 1 -o "run.$form" VB100
    recorded_on
}

@test "watch -o FILE.csv loses its last line at most, and goes on" {
    prepare
    local time='2[0-9]{3}-[01][0-9]-[0-3][0-9]T[0-9:]{8}\.[0-9]{3}(Z|[+-][0-9:]{5})'
    recording csv "^(time,name,address,type,index,value,unit,ms,error|$time,,V[BW][12]00,u(8|16),[01],[0-9]+,,[0-9.]+,)\$"
    local part
    for part in run*.csv; do
        run -0 --separate-stderr s7ppi report "$part" -o page.html
        [ -z "$stderr" ]
    done
}

@test "watch -o FILE.ndjson loses its last line at most, and goes on" {
    prepare
    recording ndjson '^\{"format":"s7ppi.watch/1","time":"[^"]+","address":"V[BW][12]00",.*,"ms":[0-9.]+\}$'
    cat run*.ndjson | jq -e .values >/dev/null
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

@test "load leaves a state with which it goes on" {
    prepare
    local went_on=0 i
    s7ppi dump -q VB0..VB999 -o press.dump
    sed -i '/^VB/s/ [0-9a-f][0-9a-f]/ 5a/g' press.dump
    killed state_is_true load press.dump
    for ((i = 0; i < 20 && went_on == 0; i++)); do
        killed_at 0.1 load press.dump
        state_is_true
        [ ! -e press.dump.loading ] || went_on=1
    done
    [ "$went_on" -eq 1 ]
    run -0 --separate-stderr s7ppi load --verify press.dump
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
