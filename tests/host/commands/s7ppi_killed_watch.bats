#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What watch records, when it is killed, or on a full disk.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2034,SC2154

load common
load kills

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
    recording csv "^(time,name,address,type,index,value,unit,ms,error,port,station|$time,,V[BW][12]00,u(8|16),[01],[0-9]+,,[0-9.]+,,[^,]+,2)\$"
    local part
    for part in run*.csv; do
        run -0 --separate-stderr s7ppi report "$part" -o page.html
        [ -z "$stderr" ]
    done
}

@test "watch -o FILE.ndjson loses its last line at most, and goes on" {
    prepare
    recording ndjson '^\{"format":"s7ppi.watch/1","time":"[^"]+","port":"[^"]+","station":2,"address":"V[BW][12]00",.*,"ms":[0-9.]+\}$'
    cat run*.ndjson | jq -e .values >/dev/null
}
