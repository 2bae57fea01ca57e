#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi watch as a user meets it: lines into a file, a table on a terminal.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

teardown() {
    for ((; terminals > 0; terminals--)); do
        terminal kill-server 2>/dev/null || true
    done
    end_test
}

# The lines without their times, after a look at the times.
values() {
    local time='[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\.[0-9]{3}(Z|[+-][0-9]{2}:[0-9]{2})'
    ! grep -vE "^$time " <<<"$output" || return 1
    cut -d ' ' -f 2- <<<"$output"
}

# Leaves out of $stderr_lines that an interval is too short, which most of the tests choose.
leave_out_lateness() {
    mapfile -t stderr_lines < <(printf '%s\n' "${stderr_lines[@]}" | grep -v ' cannot be kept: it came ')
}

# A controller whose byte has these values, one after the other.
start_counting() {
    local reactions=() value reference=0
    for value in "$@"; do
        reference=$((reference + 1))
        reactions+=(e5 "$(byte_answer "$reference" "$value")")
    done
    start fake_controller "${reactions[@]}"
}

@test "the first values and changes are a line each" {
    start_counting 1 1 2 2 2 1
    run --separate-stderr s7ppi watch --port "$port" --interval 1 --count 6 VB0
    leave_out_lateness
    [ "$status" -eq 0 ]
    [ "$(values)" = "VB0 1
VB0 2
VB0 1" ]
    [[ "${stderr_lines[0]}" =~ ^"s7ppi: 6 polls, 6 answers: "[0-9]+" ms on average, "[0-9]+" ms at most"$ ]]
    [[ "${stderr_lines[1]}" =~ ^"s7ppi: 6 requests, 6 values; "[0-9.]+" requests and "[0-9.]+" values per second"$ ]]
    local time='[0-9]+(\.[0-9])?'
    [[ "${stderr_lines[2]}" =~ ^s7ppi:\ answer\ time:\ p50\ $time,\ p90\ $time,\ p99\ $time,\ longest\ $time\ ms\;\ the\ plan\ expected\ $time\ ms$ ]]
    [ "${stderr_lines[3]}" = "s7ppi: VB0: 6 attempts, 0 errors" ]
    [[ "${stderr_lines[4]}" == "s7ppi: 6 polls took longer than the interval, by "*" ms at most" ]]
    [ "${#stderr_lines[@]}" -eq 5 ]
}

@test "with --all every poll is a line" {
    start_counting 1 1 2
    run --separate-stderr s7ppi watch --port "$port" --interval 1 --count 3 --all VB0
    [ "$status" -eq 0 ]
    [ "$(values)" = "VB0 1
VB0 1
VB0 2" ]
}

@test "--for ends it by time, also while it waits for the next poll" {
    run --separate-stderr s7ppi watch --port sim --interval 3600000 --for 1 VB100 VB20000
    [ "$status" -eq 1 ]
    [ "$(values)" = "VB100 17" ]
    [[ "$stderr" == *$'\ns7ppi: 1 poll of a simulated controller, 1 answer: '* ]]
    run --separate-stderr s7ppi watch --port sim --interval 1 --count 1000000000 --for 1 VB100
    [ "$status" -eq 0 ]
    [ "$(values)" = "VB100 17" ]
}

@test "between its polls it waits for the interval, and no longer" {
    run -0 --separate-stderr s7ppi watch --port sim --interval 300ms --for 2.5 --all VB100
    [ "${#lines[@]}" -ge 4 ]
    [ "${#lines[@]}" -le 9 ]
}

@test "with --for and --count whichever comes first ends it" {
    run --separate-stderr s7ppi watch --port sim --interval 1 --count 2 --for 31536000 VB100
    leave_out_lateness
    [ "$status" -eq 0 ]
    [[ "${stderr_lines[0]}" == "s7ppi: 2 polls of a simulated controller, 2 answers: "* ]]
}

@test "all kinds of items are watched side by side" {
    run --separate-stderr s7ppi watch --port sim --count 1 'VB100:hex*4' V100.4*8 T37 HC0 VB102:str*2 'VB0*300'
    [ "$status" -eq 0 ]
    [ "$(values | head -n 5)" = "VB100 0x11 0x22 0x33 0x44
V100.4 1 0 0 0 0 1 0 0
T37 300
HC0 100000
VB102 \"3D\"" ]
    [ "$(values | wc -l)" -eq 43 ]
    [ "$(values | tail -n 1)" = "VB296 0 0 0 0" ]
    [ "${stderr_lines[-1]}" = "s7ppi: VB0: 2 attempts, 0 errors" ]
}

@test "1: an item that fails is told once, does not stop the watching, and gives the exit code" {
    run --separate-stderr s7ppi watch --port sim --interval 1 --count 3 VB20000 VB100
    leave_out_lateness
    [ "$status" -eq 1 ]
    [ "$(values)" = "VB100 17" ]
    [ "${stderr_lines[0]}" = "s7ppi: VB20000: Invalid address (incorrect variable address)" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
    [[ "${stderr_lines[2]}" == "s7ppi: 3 polls of a simulated controller, 3 answers: "* ]]
    [[ "${stderr_lines[3]}" == "s7ppi: 15 requests, 3 values; "* ]]
    [ "${stderr_lines[5]}" = "s7ppi: VB20000: 12 attempts, 3 errors" ]
    [ "${stderr_lines[6]}" = "s7ppi: VB100: 3 attempts, 0 errors" ]
    [ "${stderr_lines[7]}" = "s7ppi: 3 times: Invalid address (incorrect variable address)" ]
    [[ "${stderr_lines[8]}" == "s7ppi: 3 polls took longer than the interval, by "*" ms at most" ]]
    [ "${#stderr_lines[@]}" -eq 9 ]
    run --separate-stderr s7ppi watch --port sim --interval 1 --count 3 --all VB20000
    [ "$(grep -c '^s7ppi: VB20000: Invalid address' <<<"$stderr")" -eq 3 ]
}

@test "4: an item that recovers is told, with its values" {
    start fake_controller silence e5 "$(byte_answer 2 7)" 100002020416 e5 "$(byte_answer 4 7)"
    run --separate-stderr s7ppi watch --port "$port" --timeout 200 --retries 0 --interval 1 --count 4 VB0
    leave_out_lateness
    [ "$status" -eq 4 ]
    [ "$(values)" = "VB0 7
VB0 7" ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: plc no response" ]
    [ "${stderr_lines[2]}" = "s7ppi: VB0: no resource" ]
    [ "${stderr_lines[4]}" = "s7ppi: VB0: answers again" ]
    [ "${stderr_lines[8]}" = "s7ppi: VB0: 4 attempts, 2 errors" ]
    [ "${stderr_lines[9]}" = "s7ppi: 1 time: no resource" ]
    [ "${stderr_lines[10]}" = "s7ppi: 1 time: plc no response" ]
}

@test "5: a broken answer gives its exit code" {
    start fake_controller ff
    run --separate-stderr s7ppi watch --port "$port" --timeout 200 --retries 0 --count 1 VB0
    [ "$status" -eq 5 ]
    [ "${stderr_lines[2]}" = "s7ppi: 1 poll, no answers" ]
    [[ "${stderr_lines[3]}" == "s7ppi: 1 request, 0 values; "* ]]
    [ "${stderr_lines[4]}" = "s7ppi: VB0: 1 attempt, 1 error" ]
}

@test "2: wrong items and command lines" {
    start fake_controller hang-up
    run --separate-stderr s7ppi watch --port "$port" VB0 vb1
    [ "$status" -eq 2 ]
    [ "${stderr_lines[1]}" = "hint: write VB1 instead of vb1" ]
    kill -0 "${background[0]}"
    local arguments
    for arguments in "" "VB0 --interval 0" "VB0 --interval x" "VB0 --count 0" "VB0 --for 0" \
        "VB0 --for 31536001" "VB0 --for 1.0005" "VB0 --for 366d" "VB0 --verify"; do
        # shellcheck disable=SC2086
        run --separate-stderr s7ppi watch $arguments
        [ "$status" -eq 2 ]
        [ -z "$output" ]
    done
    run --separate-stderr s7ppi watch --help
    [ "$status" -eq 0 ]
    [[ "$output" == *"--interval"*"--count"*"--for"*"--all"* ]]
}

@test "3: the port cannot be opened" {
    run --separate-stderr s7ppi watch --port /dev/no-such-port VB0
    [ "$status" -eq 3 ]
}

# watch_to_file ARGUMENT...: in the background, into the files lines and errors; its process is in $watcher. The array
# under has a command that begins it, or nothing.
watch_to_file() {
    : >"$BATS_TEST_TMPDIR/lines"
    "${under[@]}" s7ppi watch "$@" >"$BATS_TEST_TMPDIR/lines" 2>"$BATS_TEST_TMPDIR/errors" 3>&- &
    watcher=$!
    background+=("$watcher")
    eventually test -s "$BATS_TEST_TMPDIR/lines"
}

# Waits for its end: its exit code is in $status, what it wrote in $output and $stderr_lines.
await_watcher() {
    status=0
    wait "$watcher" || status=$?
    output=$(cat "$BATS_TEST_TMPDIR/lines")
    mapfile -t stderr_lines <"$BATS_TEST_TMPDIR/errors"
    leave_out_lateness
}

@test "130: Ctrl-C ends it at once, with the summary" {
    local signal code
    for signal in INT TERM QUIT; do
        watch_to_file --port sim --interval 3600000 VB100
        kill "-$signal" "$watcher"
        await_watcher
        code=$((128 + $(kill -l "$signal")))
        [ "$status" -eq "$code" ]
        [ "$(values)" = "VB100 17" ]
        [[ "${stderr_lines[0]}" == "s7ppi: 1 poll of a simulated controller, 1 answer: "* ]]
        [ "${stderr_lines[3]}" = "s7ppi: VB100: 1 attempt, 0 errors" ]
        [ "${#stderr_lines[@]}" -eq 4 ]
    done
}

@test "129: a terminal that is closed ends it with the summary, unless nohup began it" {
    local signal code under
    for signal in default ignore; do
        under=(env "--$signal-signal=HUP")
        watch_to_file --port sim --interval 3600000 VB100
        kill -HUP "$watcher"
        code=129
        if [ "$signal" = ignore ]; then
            kill -TERM "$watcher"
            code=143
        fi
        await_watcher
        [ "$status" -eq "$code" ]
        [[ "${stderr_lines[0]}" == "s7ppi: 1 poll of a simulated controller, 1 answer: "* ]]
    done
}

@test "130: Ctrl-C ends it while it waits for an answer" {
    start fake_controller e5 "$(byte_answer 1 7)"
    watch_to_file --port "$port" --interval 1 --timeout 60000 VB0
    kill -INT "$watcher"
    await_watcher
    [ "$status" -eq 130 ]
    [[ "${stderr_lines[0]}" == "s7ppi: 1 poll, 1 answer: "* ]]
    [[ "${stderr_lines[3]}" == "s7ppi: VB0: "[12]" attempt"*", 0 errors" ]]
}

@test "6: a port that goes away while it waits for an answer ends it" {
    start fake_controller e5 "$(byte_answer 1 7)" hang-up
    run --separate-stderr s7ppi watch --port "$port" --interval 1 --timeout 60000 VB0 VB1000
    [ "$status" -eq 6 ]
    [ "$(values)" = "VB0 7" ]
    [[ "${stderr_lines[0]}" == "s7ppi: 0 polls, 1 answer: "* ]]
    [ "${stderr_lines[4]}" = "s7ppi: VB1000: 1 attempt, 1 error" ]
    [ "${stderr_lines[5]}" = "s7ppi: 1 time: the port is gone" ]
    [ "${stderr_lines[6]}" = "s7ppi: the port is gone" ]
    [[ "${stderr_lines[7]}" == "hint: "* ]]
    [ "${#stderr_lines[@]}" -eq 8 ]
}

@test "6: a port that goes away between two polls ends it" {
    start fake_controller e5 "$(byte_answer 1 7)"
    watch_to_file --port "$port" --interval 3600000 VB0
    kill "${background[0]}"
    await_watcher
    [ "$status" -eq 6 ]
    [ "${stderr_lines[3]}" = "s7ppi: VB0: 1 attempt, 0 errors" ]
    [ "${stderr_lines[4]}" = "s7ppi: the port is gone" ]
}

# terminal TMUX_COMMAND...: to the newest terminal.
terminals=0
terminal() {
    tmux -S "$BATS_TEST_TMPDIR/terminal$terminals" -f /dev/null "$@" 3>&-
}
# on_terminal SCRIPT: runs it on a new terminal of 100 columns and 12 rows, which stays to be looked at.
on_terminal() {
    terminals=$((terminals + 1))
    terminal new-session -d -x 100 -y 12 "PATH='$PATH' bash --norc -c 'trap : INT; $1; stty -a | grep -qw -- -echo || echo echoes; sleep 60'"
}
screen() {
    terminal capture-pane -p
}
shows() {
    screen | grep -q -- "$1"
}

@test "a terminal shows a table in place and is given back" {
    on_terminal 'echo before; s7ppi watch --port sim --interval 20 VB100*4 VB20000; echo code $?'
    eventually shows 'poll 3'
    run screen
    [[ "${lines[0]}" =~ ^"/dev/pts/"[0-9]+" (simulated) every 20 ms, Ctrl-C ends, poll "[0-9]+$ ]]
    [[ "$output" != *before* ]]
    [ "${lines[1]}" = "ADDRESS  VALUE        CHANGED     ATTEMPTS  ERRORS  LAST ERROR" ]
    [[ "${lines[2]}" =~ ^"VB100    17 34 51 68  never  "\ +[0-9]+\ +0$ ]]
    [[ "${lines[3]}" =~ ^"VB20000                        "\ +[0-9]+\ +[0-9]+"  Invalid address (incorrect variable address)"$ ]]

    terminal send-keys C-c
    eventually shows '^code 130'
    eventually shows '^echoes'
    run terminal capture-pane -p -S -
    [ "${lines[0]}" = "before" ]
    local time='[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}'
    [[ "${lines[1]}" =~ ^/dev/pts/[0-9]+\ \(simulated\)\ every\ 20\ ms,\ [0-9]+\ polls\ until\ $time$ ]]
    [ "${lines[2]}" = "ADDRESS  VALUE        CHANGED     ATTEMPTS  ERRORS  LAST ERROR" ]
    [[ "${lines[3]}" == "VB100    17 34 51 68  never "* ]]
    [[ "${lines[4]}" == "VB20000 "*" Invalid address (incorrect variable address)" ]]
    [[ "${lines[5]}" =~ ^"s7ppi: "[0-9]+" polls of a simulated controller, "[0-9]+" answers: " ]]
}

@test "the table tells the shortest and the longest interval" {
    printf '%s\n' name,address,interval A,VB100,50 B,VB101,250 C,VB102,100 >"$BATS_TEST_TMPDIR/tags.csv"
    on_terminal "s7ppi watch --port sim @$BATS_TEST_TMPDIR/tags.csv"
    eventually shows ' every 50 to 250 ms, Ctrl-C ends, '
}

@test "the whole table stays, with the rows that the screen had no room for" {
    on_terminal 'echo before; s7ppi watch -q --port sim --interval 20 VB96*8 T1 T2 T3 T4 T5 T6 T7 T8 T9; echo code $?'
    terminal resize-window -x 60 -y 6
    eventually shows '^\.\.\. and 8 more'
    eventually shows 'poll [1-9][0-9]'
    terminal send-keys C-c
    eventually shows '^code 130'
    run terminal capture-pane -p -S -
    [[ "$output" == *before*$'\nADDRESS  VALUE                CHANGED     ATTEMPTS  ERRORS\nVB96     0 0 0 0 17 34 51 68  never '*$'\nT9       0 '*$'\ncode 130'* ]]
    [ "$(grep -c ADDRESS <<<"$output")" -eq 1 ]
}

@test "a terminal with one screen alone has the table once" {
    on_terminal 'TERM=vt100 s7ppi watch -q --port sim --interval 20 VB100; echo code $?'
    eventually shows '^VB100    17 '
    terminal send-keys C-c
    eventually shows '^code 130'
    [ "$(screen | grep -c ADDRESS)" -eq 1 ]
    shows ' polls\? until '
}

@test "the time since a change goes on while nothing is read" {
    start_counting 1 2
    on_terminal "s7ppi watch --port $port --interval 1500 --timeout 60000 VB0"
    eventually shows '^VB0      1      never '
    eventually shows '^VB0      2      1 s ago '
}

@test "the table follows values and the terminal's size" {
    start_counting 1 2
    on_terminal "s7ppi watch --port $port --interval 1 --timeout 60000 VB0; echo code \$?"
    eventually shows '^VB0      2      just now           2       0'

    on_terminal "s7ppi watch --port sim --interval 3600000 T1 T2 T3 T4 T5 T6 T7 T8 T9"
    eventually shows '^T9  '
    terminal resize-window -x 40 -y 6
    eventually shows '^\.\.\. and 7 more'
    terminal resize-window -x 100 -y 12
    eventually shows '^T9  '
}

@test "6: a lost port gives the terminal back before it is told" {
    start fake_controller e5 "$(byte_answer 1 7)"
    on_terminal "echo before; s7ppi watch --port $port --interval 3600000 VB0; echo code \$?"
    eventually shows '^VB0      7'
    kill "${background[0]}"
    eventually shows '^code 6'
    eventually shows '^echoes'
    run terminal capture-pane -p -S -
    [ "${lines[0]}" = "before" ]
    [[ "${lines[3]}" == "VB0      7      never "* ]]
    [[ "$output" == *"s7ppi: the port is gone"* ]]
}

@test "the table goes on, and follows the terminal, while a lost port is waited for" {
    start fake_controller e5 "$(byte_answer 1 1)" e5 "$(byte_answer 2 2)"
    ln -s "$port" "$BATS_TEST_TMPDIR/plc"
    on_terminal "s7ppi watch --port $BATS_TEST_TMPDIR/plc --reconnect --interval 100 --timeout 60000 VB0"
    eventually shows '^VB0      2      just now '
    rm "$BATS_TEST_TMPDIR/plc" # the terminal's number may be another test's at once
    kill "${background[0]}"
    eventually shows 'plc is gone: waiting for it to come back'
    terminal resize-window -x 60 -y 12
    eventually shows '^VB0      2      [0-9]* s ago *2 *0$'
}

@test "a second signal ends it at once and gives the terminal back" {
    on_terminal 'echo before; s7ppi watch --port sim --interval 1 --delay 2000 VB100; echo code $?'
    eventually shows '^VB100    17'
    terminal send-keys C-c
    sleep 0.2
    terminal send-keys C-c
    eventually shows '^code 130'
    eventually shows '^echoes'
    run screen
    [ "${lines[0]}" = "before" ]
    [[ "$output" != *" polls, "* ]]
    [[ "$output" != *ADDRESS* ]]
}

@test "verbose, and a terminal that cannot place text, get plain lines" {
    on_terminal 's7ppi watch --port sim -v --count 1 VB100; echo code $?'
    eventually shows '^code 0'
    run screen
    [[ "$output" == *"<- acknowledgement: e5"* ]]
    [[ "$output" == *" VB100 17"* ]]
    on_terminal 'TERM=dumb s7ppi watch -q --port sim --count 1 VB100;
        TERM=unheard-of s7ppi watch -q --port sim --count 1 VB101; echo code $?'
    eventually shows '^code 0'
    run screen
    [[ "$output" == *" VB100 17"*" VB101 34"* ]]
}

# killed_watch FILE: a record of a few polls, ended by SIGKILL.
killed_watch() {
    s7ppi watch --port sim --all --interval 1 -o "$1" VB100 'VW100*2' 2>/dev/null 3>&- &
    watcher=$!
    background+=("$watcher")
    eventually has_lines 4 "$1"
    kill -KILL "$watcher"
    wait "$watcher" || true
}
has_lines() {
    [ -e "$2" ] && [ "$(wc -l <"$2")" -ge "$1" ]
}

@test "what was recorded stays when it is killed, and the recording goes on" {
    cd "$BATS_TEST_TMPDIR"
    local form before
    for form in csv tsv ndjson txt; do
        killed_watch "run.$form"
        [ "$(tail -c 1 "run.$form" | wc -l)" -eq 1 ]
        before=$(wc -l <"run.$form")
        printf '2026-01' >>"run.$form"
        run --separate-stderr s7ppi watch --port sim --count 1 -o "run.$form" VB100
        [ "$status" -eq 0 ]
        [ "${stderr_lines[0]}" = "s7ppi: run.$form goes on behind what is recorded there" ]
        [ "${stderr_lines[1]}" = "s7ppi: run.$form: its last record was cut, and is taken out" ]
        [ "$(wc -l <"run.$form")" -eq $((before + 1)) ]
    done
    run --separate-stderr s7ppi report run.csv -o page.html
    [ "$status" -eq 0 ]
    [ -z "$stderr" ]
    start s7ppi-sim
    for _ in 1 2; do
        run -0 --separate-stderr s7ppi watch --port "$port" --count 1 -o real.txt VB100
    done
    [ "${stderr_lines[0]}" = "s7ppi: real.txt goes on behind what is recorded there" ]
    [ "$(grep -c 'VB100 17$' real.txt)" -eq 2 ]
}

@test "74: a full disk leaves what was recorded, in whole records" {
    cd "$BATS_TEST_TMPDIR"
    run --separate-stderr bash -c "trap '' XFSZ; ulimit -f 1; s7ppi watch --port sim --all --interval 1 -o run.csv VB100"
    [ "$status" -eq 74 ]
    [ "$(wc -c <run.csv)" -gt 900 ]
    [ "$(tail -c 1 run.csv | wc -l)" -eq 1 ]
    s7ppi report run.csv -o page.html
}

@test "2: a file that is no recording stays as it is" {
    cd "$BATS_TEST_TMPDIR"
    echo "Dear all," >run.csv
    run --separate-stderr s7ppi watch --port sim --count 1 -o run.csv VB100
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: run.csv is there, and is no such recording in the same form" ]
    [ "${stderr_lines[1]}" = "hint: name another file with -o, or move this one away" ]
    [ "$(cat run.csv)" = "Dear all," ]
}

@test "--rotate begins new files, --keep removes the oldest, and report reads each" {
    cd "$BATS_TEST_TMPDIR"
    s7ppi watch -q --port sim --all --interval 1 --count 80 --rotate 1k --keep 2 -o run.csv VB100
    local -a files=(run*.csv)
    local file last=${files[1]//[!0-9]/}
    [ "$last" -ge 3 ]
    [ "${files[*]}" = "run.$((last - 1)).csv run.$last.csv run.csv" ]
    for file in "${files[@]}"; do
        [ "$(wc -c <"$file")" -le 1024 ]
        s7ppi report "$file" -o page.html
    done
    cat "${files[@]}" | s7ppi report - -o page.html
    s7ppi watch -q --port sim --count 1 --rotate day -o day.ndjson VB100
    touch -d yesterday day.ndjson
    s7ppi watch -q --port sim --count 1 --rotate day -o day.ndjson VB100
    [ "$(wc -l <day.1.ndjson)$(wc -l <day.ndjson)" = 11 ]
}

@test "2: a rotation that makes no sense, and nothing is sent" {
    start fake_controller hang-up
    cd "$BATS_TEST_TMPDIR"
    local arguments
    while read -r arguments; do
        # shellcheck disable=SC2086
        run --separate-stderr s7ppi watch --port "$port" VB0 $arguments
        [ "$status" -eq 2 ]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
    done <<'ARGUMENTS'
-o run.csv --rotate 10X
-o run.csv --rotate 5
-o run.csv --keep 3
-o run.csv --rotate day --keep 0
-o run.json --rotate day
-o - --rotate day
--rotate day
ARGUMENTS
    [ ! -e run.csv ]
    kill -0 "${background[0]}"
}
