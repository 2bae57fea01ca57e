#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# The options that all commands share: where they may come from, what they do to line, output and trace.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

@test "options come from the command line, then the environment, then the file" {
    settings "# what this place always uses" "" "port = sim" "format = csv" "; another comment"
    run --separate-stderr s7ppi read --config "$settings" VB100
    [ "$output" = $'name,address,type,index,value,unit,error,simulated\n,VB100,u8,0,17,,,1' ]
    [ "$stderr" = "s7ppi: the controller is a simulated one, as environment or configuration file say" ]
    S7PPI_FORMAT=ndjson run --separate-stderr s7ppi read --config "$settings" VB100
    [ "$(timeless "$output")" = '{"format":"s7ppi.read/1","simulated":true,"station":2,"address":"VB100","type":"u8","values":[17]}' ]
    S7PPI_FORMAT=ndjson run --separate-stderr s7ppi read --config "$settings" --format text VB100
    [ "$output" = "VB100 17" ]
    S7PPI_CONFIG=$settings run --separate-stderr s7ppi read VB100
    [ "${lines[1]}" = ",VB100,u8,0,17,,,1" ]
    S7PPI_FORMAT='' run --separate-stderr s7ppi read --config "$settings" VB100
    [ "${lines[1]}" = ",VB100,u8,0,17,,,1" ]
}

@test "quiet and verbose: what is said first is heard, too" {
    S7PPI_VERBOSE=1 run --separate-stderr s7ppi -q read --port sim VB100
    [ "$status" -eq 0 ]
    [ -z "$stderr" ]
    settings "verbose"
    S7PPI_QUIET=1 run --separate-stderr s7ppi read --port sim --config "$settings" VB100
    [ -z "$stderr" ]
    S7PPI_QUIET=false run --separate-stderr s7ppi read --port sim --config "$settings" VB100
    [[ "$stderr" == *"-> poll of station 2"* ]]
    settings "quiet"
    run --separate-stderr s7ppi -v read --port sim --config "$settings" VB100
    [[ "$stderr" == *"-> poll of station 2"* ]]
    [[ "$stderr" != *"--quiet"* ]]
    settings "quiet = true" "verbose = off"
    run --separate-stderr s7ppi read --port sim --config "$settings" VB100
    [ "$status" -eq 0 ]
    [ -z "$stderr" ]
}

@test "2: one place that wants both quiet and verbose is told" {
    settings "quiet" "port = sim" "verbose"
    run --separate-stderr s7ppi read --config "$settings" VB100
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: $settings:3: verbose excludes quiet" ]
    [ "${stderr_lines[1]}" = "hint: see $settings:1, and leave one of the two out" ]
    S7PPI_QUIET=1 S7PPI_VERBOSE=1 run --separate-stderr s7ppi read --port sim VB100
    [ "$status" -eq 2 ]
    [[ "${stderr_lines[0]}" == "s7ppi: S7PPI_"*" excludes "* ]]
    S7PPI_QUIET=1 S7PPI_VERBOSE=1 run --separate-stderr s7ppi read -q --port sim VB100
    [ "$status" -eq 0 ]
}

@test "the ending of a file's name wins over the usual format" {
    cd "$BATS_TEST_TMPDIR"
    S7PPI_FORMAT=json run --separate-stderr s7ppi read --port sim VB100 -o e.csv
    [ "$(tail -n 1 e.csv)" = ",VB100,u8,0,17,,,1" ]
    S7PPI_FORMAT=json s7ppi read --port sim VB100 -o e.txt
    [ "$(cat e.txt)" = $'# simulated: no machine had these values\nVB100 17' ]
    S7PPI_FORMAT=json s7ppi read --port sim VB100 -o e
    [ "$(jq -c '.items[0].values' e)" = "[17]" ]
    S7PPI_FORMAT=json s7ppi read --port sim VB100 -o e.csv --format text
    [ "$(tail -n 1 e.csv)" = "VB100 17" ]
}

@test "the user's own file is read unless another is named" {
    mkdir -p "$BATS_TEST_TMPDIR/home/.config/s7ppi"
    echo "port = sim" >"$BATS_TEST_TMPDIR/home/.config/s7ppi/config"
    unset S7PPI_CONFIG XDG_CONFIG_HOME
    HOME=$BATS_TEST_TMPDIR/home run --separate-stderr s7ppi read VB100
    [ "$status" -eq 0 ]
    [ "$output" = "VB100 17" ]
    [ "$stderr" = "s7ppi: the controller is a simulated one, as environment or configuration file say" ]
    S7PPI_QUIET=1 HOME=$BATS_TEST_TMPDIR/home run --separate-stderr s7ppi read VB100
    [ -z "$stderr" ]
    settings "port = /dev/no-such-port"
    HOME=$BATS_TEST_TMPDIR/home run --separate-stderr s7ppi read --config "$settings" VB100
    [ "$status" -eq 3 ]
}

@test "every option of port, line and output can be set, flags too" {
    start s7ppi-sim --station 5
    settings "port = $port" "station = 5" "timeout = 700" "retries = 1" "delay = 1" "baud = 19200" \
        "parity = even" "databits = 8" "stopbits = 2" "rs485 = false" "echo = false" "reconnect" \
        "format = text" "trace = $BATS_TEST_TMPDIR/trace" "verbose" "plugin = $S7PPI_PLUGIN_FILE"
    run --separate-stderr s7ppi read --config "$settings" VB100
    [ "$status" -eq 0 ]
    [ "$output" = "VB100 17" ]
    [ "${stderr_lines[0]}" = "s7ppi: --port $port, as $settings:1 says" ]
    [[ "$stderr" == *"$port: 19200 baud, even parity, 8 data bits, 2 stop bits"* ]]
    [ -s "$BATS_TEST_TMPDIR/trace" ]
    S7PPI_QUIET=1 run --separate-stderr s7ppi read --port sim VB100
    [ -z "$stderr" ]
}

@test "2: what is wrong in a file or in the environment is told by its place" {
    local text line
    while IFS='|' read -r line text; do
        settings "port = sim" "$line"
        run --separate-stderr s7ppi read --config "$settings" VB100
        [ "$status" -eq 2 ]
        [ -z "$output" ]
        [[ "${stderr_lines[0]}" == "s7ppi: $settings:2: "*"$text"* ]]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
    done <<'LINES'
speed = 9600|speed is not an option
output = x|output is not an option
config = x|config is not an option
port = /dev/ttyUSB0|port is set already
baud = fast|fast
parity = both|both
baud = 9600 19200|is no setting
LINES
    S7PPI_STATION=200 run --separate-stderr s7ppi read --port sim VB100
    [ "$status" -eq 2 ]
    [[ "${stderr_lines[0]}" == "s7ppi: S7PPI_STATION: "* ]]
    run --separate-stderr s7ppi read --config /no/such/file VB100
    [ "$status" -eq 2 ]
    [[ "${stderr_lines[0]}" == "s7ppi: /no/such/file cannot be read: "* ]]
}

@test "a profile of the file is heard before the rest of it, and behind the environment" {
    settings "port = sim" "format = csv" "verbose = off" "[press]" "format = ndjson" "" "[mixer]" "format = tsv"
    run --separate-stderr s7ppi read --config "$settings" --profile press VB100
    [ "$(timeless "$output")" = '{"format":"s7ppi.read/1","simulated":true,"station":2,"address":"VB100","type":"u8","values":[17]}' ]
    S7PPI_PROFILE=press run --separate-stderr s7ppi read --config "$settings" VB100
    [[ "$output" == '{"format":"s7ppi.read/1"'* ]]
    S7PPI_PROFILE=mixer run --separate-stderr s7ppi read --config "$settings" --profile press VB100
    [[ "$output" == '{"format":"s7ppi.read/1"'* ]]
    S7PPI_FORMAT=text run --separate-stderr s7ppi read --config "$settings" --profile press VB100
    [ "$output" = "VB100 17" ]
    S7PPI_PROFILE='' run --separate-stderr s7ppi read --config "$settings" VB100
    [ "${lines[1]}" = ",VB100,u8,0,17,,,1" ]
    S7PPI_PROFILE=press run --separate-stderr s7ppi read --config "$settings" -v VB100
    [ "${stderr_lines[0]}" = "s7ppi: --format ndjson, as $settings:5 says" ]
    [[ "$stderr" != *"is no option"* ]]
}

@test "2: a profile that is not there, or not as it should be, is told" {
    local lines text hint
    while IFS='|' read -r lines text hint; do
        # shellcheck disable=SC2086
        settings $lines
        run --separate-stderr s7ppi read --config "$settings" --profile press VB100
        [ "$status" -eq 2 ]
        [ -z "$output" ]
        [ "${stderr_lines[0]}" = "s7ppi: ${text//@/"$settings"}" ]
        [ "${stderr_lines[1]}" = "hint: ${hint//@/"$settings"}" ]
    done <<'LINES'
[mixer] [old]|there is no profile press in @|it has mixer, old
baud=9600|there is no profile press in @|it has no profiles: begin one with a line [press]
[press] [mixer] [press]|@:3: the profile press stands there already|see @:1, and make one of the two
[press|@:1: [press begins no profile|a profile begins with its name in brackets, as [press]
[press] baud=1 baud=2|@:3: baud is set already|see @:2, and leave one of the two out
profile=press|@:1: profile is not an option|a profile is chosen with --profile NAME, or S7PPI_PROFILE
LINES
    # What is wrong in a profile that is not chosen is told, too.
    settings "[press]" "[mixer]" "speed = 1"
    run --separate-stderr s7ppi read --config "$settings" --profile press VB100
    [[ "${stderr_lines[0]}" == "s7ppi: $settings:3: speed is not an option" ]]
    S7PPI_CONFIG='' S7PPI_PROFILE=press run --separate-stderr s7ppi read --port sim VB100
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: there is no profile press, as there is no configuration file" ]
}

@test "times in environment and file have units, too" {
    settings "port = sim" "timeout = 2s" "delay = 1ms" "wait-lock = 1min"
    S7PPI_TIMEOUT=3s run --separate-stderr s7ppi doctor --reads 1 --config "$settings"
    [ "$status" -eq 0 ]
    grep -q "  timeout  *3s  *environment, S7PPI_TIMEOUT" <<<"$output"
    settings "timeout = 1y"
    run --separate-stderr s7ppi read --config "$settings" VB100
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: $settings:1: --timeout: 1y is not a time from 1ms to 10min, as 500ms, 1s or 2min" ]
}

# hold: another program has a controller's port, which is in $port; its process is $holder.
hold() {
    start fake_controller
    s7ppi read --port "$port" --timeout 10min VB0 2>/dev/null 3>&- &
    holder=$!
    background+=("$holder")
    eventually grep -q unanswered "$BATS_TEST_TMPDIR/output"
}

@test "a port that another program has is waited for with --wait-lock, and that is told once" {
    hold
    s7ppi read --port "$port" --wait-lock 1min -t 1ms --retries 0 VB0 2>"$BATS_TEST_TMPDIR/errors" 3>&- &
    local reader=$!
    background+=("$reader")
    eventually grep -q "waiting for it, 1min at most" "$BATS_TEST_TMPDIR/errors"
    kill "$holder"
    status=0
    wait "$reader" || status=$?
    [ "$status" -eq 4 ] # the port was opened, and nobody answers
    [ "$(head -n 1 "$BATS_TEST_TMPDIR/errors")" = \
        "s7ppi: $port cannot be opened: it is in use by s7ppi (process $holder); waiting for it, 1min at most" ]
    [ "$(grep -c "waiting for it" "$BATS_TEST_TMPDIR/errors")" -eq 1 ]
}

@test "3: --wait-lock ends when its time is over; 130: and at Ctrl-C" {
    hold
    run --separate-stderr s7ppi read --port "$port" --wait-lock 1ms VB0
    [ "$status" -eq 3 ]
    [ "${stderr_lines[-2]}" = "s7ppi: $port cannot be opened: it is in use by s7ppi (process $holder)" ]
    s7ppi read --port "$port" --wait-lock 1h VB0 2>"$BATS_TEST_TMPDIR/errors" 3>&- &
    local reader=$!
    background+=("$reader")
    eventually grep -q "waiting for it, 1h at most" "$BATS_TEST_TMPDIR/errors"
    kill -INT "$reader"
    status=0
    wait "$reader" || status=$?
    [ "$status" -eq 130 ]
}

@test "2: a comment behind a setting is told as one" {
    local line
    for line in "port = sim # no adapter" "reconnect # always"; do
        settings "$line"
        run --separate-stderr s7ppi read --config "$settings" VB100
        [ "$status" -eq 2 ]
        [ "${stderr_lines[1]}" = "hint: a comment needs a line of its own: write ${line%% #*} alone" ]
    done
}

@test "variables that are no options are told with -v" {
    S7PPI_CONFIG='' S7PPI_BUAD=19200 run --separate-stderr s7ppi read -v --port sim VB100
    [ "$status" -eq 0 ]
    [ "$(grep -c "is no option" <<<"$stderr")" -eq 1 ]
    [ "${stderr_lines[0]}" = "s7ppi: S7PPI_BUAD is set, and is no option" ]
    S7PPI_BUAD=19200 run --separate-stderr s7ppi read --port sim VB100
    [ -z "$stderr" ]
}

@test "the line is set as the options say" {
    start s7ppi-sim
    S7PPI_CONFIG='' run --separate-stderr s7ppi read --port "$port" -v --baud 187500 --parity none --databits 8 --stopbits 2 VB100
    [ "$status" -eq 0 ]
    [ "${stderr_lines[0]}" = "s7ppi: $port: 187500 baud, no parity, 8 data bits, 2 stop bits" ]
}

@test "3: a port without RS-485 mode is refused with --rs485" {
    start s7ppi-sim
    run --separate-stderr s7ppi read --port "$port" --rs485 VB100
    [ "$status" -eq 3 ]
    [ "${stderr_lines[0]}" = "s7ppi: $port cannot be switched to RS-485: Inappropriate ioctl for device" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
}

@test "--rs485 takes pauses behind it, in the environment and in a file, too" {
    local refused="cannot be switched to RS-485" pauses
    start s7ppi-sim
    for pauses in --rs485=before=1 --rs485=before=1,after=2; do
        run --separate-stderr s7ppi read --port "$port" "$pauses" VB100
        [ "$status" -eq 3 ]
        [[ "${stderr_lines[0]}" == *"$refused"* ]]
    done
    run --separate-stderr s7ppi read --port "$port" --rs485 after=100,before=0 VB100
    [[ "${stderr_lines[0]}" == *"$refused"* ]]
    S7PPI_RS485=before=1,after=2 run --separate-stderr s7ppi read --port "$port" VB100
    [[ "${stderr_lines[0]}" == *"$refused"* ]]
    settings "rs485 = before=1,after=2" "low-latency = false" "gap = 1s"
    run --separate-stderr s7ppi read --config "$settings" --port "$port" VB100
    [[ "${stderr_lines[0]}" == *"$refused"* ]]
    run --separate-stderr s7ppi read --config "$settings" --port "$port" --rs485=false VB100
    [ "$status" -eq 0 ]
    [ "$output" = "VB100 17" ]
    for pauses in before=101 before=-1 before=1,before=2 before=1,aftr=2 "before=1," before; do
        run --separate-stderr s7ppi read --port "$port" "--rs485=$pauses" VB100
        [ "$status" -eq 2 ]
        [ "${stderr_lines[0]}" = "s7ppi: --rs485: $pauses is not before=N,after=N, in milliseconds from 0 to 100" ]
    done
}

@test "3: a port without a timer is refused with --low-latency" {
    start s7ppi-sim
    run --separate-stderr s7ppi read --port "$port" --low-latency VB100
    [ "$status" -eq 3 ]
    [ "${stderr_lines[0]}" = "s7ppi: $port has no latency timer that could be set" ]
    [[ "${stderr_lines[1]}" == "hint: leave out --low-latency"* ]]
}

@test "an adapter that hears itself works with --echo, and only then" {
    start s7ppi-sim --fault echo
    run --separate-stderr s7ppi read --port "$port" --echo VB100 VW100
    [ "$status" -eq 0 ]
    [ "$output" = "VB100 17
VW100 4386" ]
    run --separate-stderr s7ppi read --port "$port" --retries 0 --timeout 200 VB100
    [ "$status" -eq 5 ]
    start s7ppi-sim
    run --separate-stderr s7ppi read --port "$port" --retries 0 --timeout 200 --echo VB100
    [ "$status" -eq 5 ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
}

@test "delay and retries are kept" {
    start fake_controller
    local begin=$EPOCHREALTIME
    run --separate-stderr s7ppi read --port "$port" --timeout 50 --retries 2 --delay 200 -v VB0
    [ "$status" -eq 4 ]
    [ "$(grep -c '^-> request' <<<"$stderr")" -eq 3 ]
    [ $((${EPOCHREALTIME/./} - ${begin/./})) -ge 750000 ]
}

@test "the trace has a line for every frame, with time and direction" {
    local trace=$BATS_TEST_TMPDIR/trace
    echo "what an earlier run left" >"$trace"
    start s7ppi-sim
    run --separate-stderr s7ppi read --port "$port" --trace "$trace" 'VB100*4'
    [ "$status" -eq 0 ]
    [ -z "$stderr" ]
    [ "$(head -n 1 "$trace")" = "# $port, 9600 baud, even parity, 8 data bits, 1 stop bit" ]
    local time='[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\.[0-9]{3}Z'
    [ "$(grep -cE "^$time [<>]( [0-9a-f]{2})+$" "$trace")" -eq 4 ]
    [ "$(wc -l <"$trace")" -eq 5 ]
    [ "$(cut -d ' ' -f 2- <"$trace" | tail -n 3)" = "< e5
> 10 02 00 5c 5e 16
< 68 19 19 68 00 02 08 32 03 00 00 00 01 00 02 00 08 00 00 04 01 ff 04 00 20 11 22 33 44 1c 16" ]
}

@test "74: a trace that cannot be written, or no further, ends it" {
    run --separate-stderr s7ppi read --port sim --trace /no/such/directory/trace VB100
    [ "$status" -eq 74 ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
    run --separate-stderr s7ppi read --port sim --trace /dev/full VB100
    [ "$status" -eq 74 ]
}

@test "quiet leaves the errors" {
    run --separate-stderr s7ppi read --port sim -q VB100 VB20000
    [ "$status" -eq 1 ]
    [ "${#stderr_lines[@]}" -eq 2 ]
    run --separate-stderr s7ppi watch --port sim -q --count 1 VB100
    [ -z "$stderr" ]
    run --separate-stderr s7ppi read --port sim -q -v VB100
    [ "$status" -eq 2 ]
}

# on_terminal COMMAND: its stdout and stderr on a terminal.
on_terminal() {
    script -qec "$1" /dev/null </dev/null
}

@test "errors have colour on a terminal, unless NO_COLOR or TERM say otherwise" {
    export TERM=xterm
    [[ "$(on_terminal 's7ppi read vb1')" == *$'\e['* ]]
    [[ "$(NO_COLOR=1 on_terminal 's7ppi read vb1')" != *$'\e['* ]]
    [[ "$(TERM=dumb on_terminal 's7ppi read vb1')" != *$'\e['* ]]
    run s7ppi read vb1
    [[ "$output" != *$'\e['* ]]
}

@test "3: who holds a port is named" {
    start fake_controller
    s7ppi read --port "$port" --timeout 5000 VB0 3>&- 2>/dev/null &
    background+=($!)
    eventually grep -q unanswered "$BATS_TEST_TMPDIR/output"
    run --separate-stderr s7ppi read --port "$port" VB0
    [ "$status" -eq 3 ]
    [ "${stderr_lines[0]}" = "s7ppi: $port cannot be opened: it is in use by s7ppi (process ${background[-1]})" ]
}

# plug: a new controller behind the port /tmp/.../plc, in $plug.
plug() {
    rm -f "$BATS_TEST_TMPDIR/plc"
    start s7ppi-sim --link "$BATS_TEST_TMPDIR/plc"
    plug=${background[-1]}
}

# ticks PROCESS: its processor time so far, in hundredths of a second.
ticks() {
    local fields
    read -r -a fields <"/proc/$1/stat"
    echo $((fields[13] + fields[14]))
}

@test "a lost port is waited for with --reconnect, at no cost, and the watching goes on" {
    plug
    s7ppi watch --port "$BATS_TEST_TMPDIR/plc" --reconnect --interval 10 --count 100 --all \
        --trace "$BATS_TEST_TMPDIR/trace" VB100 >"$BATS_TEST_TMPDIR/values" 2>"$BATS_TEST_TMPDIR/errors" 3>&- &
    local watcher=$! before
    background+=("$watcher")
    eventually test -s "$BATS_TEST_TMPDIR/values"
    kill "$plug"
    eventually grep -q "is gone: waiting for it to come back" "$BATS_TEST_TMPDIR/errors"
    before=$(ticks "$watcher")
    sleep 1
    [ $(($(ticks "$watcher") - before)) -lt 20 ]
    plug
    wait "$watcher"
    grep -q "plc is back" "$BATS_TEST_TMPDIR/errors"
    grep -q "# .* the port is back" "$BATS_TEST_TMPDIR/trace"
    [ "$(grep -c ' VB100 17$' "$BATS_TEST_TMPDIR/values")" -eq 100 ]
}

@test "what keeps a port that is there again from being opened is told once" {
    plug
    s7ppi watch --port "$BATS_TEST_TMPDIR/plc" --reconnect --interval 10 --count 100 \
        VB100 >"$BATS_TEST_TMPDIR/values" 2>"$BATS_TEST_TMPDIR/errors" 3>&- &
    local watcher=$!
    background+=("$watcher")
    eventually test -s "$BATS_TEST_TMPDIR/values"
    kill "$plug"
    wait "$plug" || true
    echo "no port" >"$BATS_TEST_TMPDIR/plc"
    eventually grep -q "plc.*; still trying" "$BATS_TEST_TMPDIR/errors"
    sleep 2
    rm "$BATS_TEST_TMPDIR/plc"
    plug
    wait "$watcher"
    [ "$(grep -c "; still trying" "$BATS_TEST_TMPDIR/errors")" -eq 1 ]
    grep -q "plc is back" "$BATS_TEST_TMPDIR/errors"
}

@test "a port that is not there yet is waited for with --reconnect" {
    s7ppi read --port "$BATS_TEST_TMPDIR/plc" --reconnect VB100 \
        >"$BATS_TEST_TMPDIR/values" 2>"$BATS_TEST_TMPDIR/errors" 3>&- &
    local reader=$!
    background+=("$reader")
    eventually grep -q "plc is not there: waiting for it" "$BATS_TEST_TMPDIR/errors"
    plug
    wait "$reader"
    [ "$(cat "$BATS_TEST_TMPDIR/values")" = "VB100 17" ]
}

@test "130: Ctrl-C ends the waiting for a lost port" {
    plug
    s7ppi read --port "$BATS_TEST_TMPDIR/plc" --reconnect --timeout 60000 VB100 'VB0*2000' \
        >"$BATS_TEST_TMPDIR/values" 2>"$BATS_TEST_TMPDIR/errors" 3>&- &
    local reader=$!
    background+=("$reader")
    eventually test -s "$BATS_TEST_TMPDIR/values"
    kill "$plug"
    eventually grep -q "is gone" "$BATS_TEST_TMPDIR/errors"
    kill -INT "$reader"
    status=0
    wait "$reader" || status=$?
    [ "$status" -eq 130 ]
    [ "$(cat "$BATS_TEST_TMPDIR/values")" = "VB100  17" ]
}
