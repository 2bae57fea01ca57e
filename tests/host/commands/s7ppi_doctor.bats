#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi doctor as a user meets it.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

# doctor ARGUMENT...: looks at $port.
doctor() {
    run --separate-stderr s7ppi doctor --port "$port" "$@"
}

# without_settings: takes what stands behind the checks out of the output.
without_settings() {
    output=${output%%$'\n\n'settings$'\n'*}
    mapfile -t lines <<<"$output"
}

# checks: the names of the checks with their verdicts, in a line.
checks() {
    sed -n 's/^\(ok\|warning\|failed\)  *\([a-z-]*\( errors\)\{0,1\}\)  .*/\2:\1/p' <<<"$output" | tr '\n' ' '
}

@test "all is well with the simulated controller" {
    # More time than the default, of which a busy machine takes more than half.
    run --separate-stderr s7ppi doctor --port sim --timeout 10000
    [ "$status" -eq 0 ]
    [ -z "$stderr" ]
    [ "$(checks)" = "plug-in:ok port:ok line:ok echo:ok line errors:ok answers:ok retries:ok time-out:ok " ]
    [[ "${lines[0]}" == "ok      plug-in       Simatic S7-200 PPI 1.0.0, "*"libs7_200_ppi.so" ]]
    [ "${lines[1]}" = "ok      port          sim, a simulated controller" ]
    [[ "$output" =~ "20 of 20 reads: "[0-9]+" ms at least, "[0-9]+" ms median, "[0-9]+" ms at most" ]]
}

@test "a port is looked at from adapter to answers" {
    start s7ppi-sim
    doctor --reads 3 --timeout 10000
    [ "$status" -eq 0 ]
    [ "$(checks)" = "plug-in:ok port:ok adapter:ok rights:ok lock:ok line:ok echo:ok line errors:ok answers:ok retries:ok time-out:ok " ]
    [[ "$output" == *"no other program has the port open"* ]]
    [[ "$output" == *"9600 baud, even parity, 8 data bits, 1 stop bit; a pseudo-terminal has no speed and no parity"* ]]
    [[ "$output" == *"3 of 3 reads: "* ]]
}

@test "nothing is written to the controller" {
    start s7ppi-sim
    doctor --reads 3 -v
    [ "$(grep -c '^-> request [123] to station 2: read 1 byte at M byte 0: ' <<<"$stderr")" -eq 3 ]
    [ "$(grep -c '^-> request' <<<"$stderr")" -eq 3 ]
}

@test "the item that is named is read" {
    start s7ppi-sim
    doctor --reads 2 VW100:i16*2 -v
    [ "$status" -eq 0 ]
    [ "$(grep -c '^-> request [12] to station 2: read 2 words at V byte 100: ' <<<"$stderr")" -eq 2 ]
}

@test "checks have records" {
    start s7ppi-sim
    doctor --reads 1 --format ndjson
    [ "$status" -eq 0 ]
    [ "${#lines[@]}" -eq 11 ]
    [ "${lines[1]}" = '{"format":"s7ppi.doctor/1","check":"port","verdict":"ok","text":"'"$port"'","advice":""}' ]
}

@test "repetitions and slow answers are warnings, and no failure" {
    start s7ppi-sim --fault bad-checksum@2 --fault late=1100@4
    doctor --reads 5 --timeout 2000
    [ "$status" -eq 0 ]
    [[ "$output" == *"warning retries       1 in 5 reads
        -> answers get lost or damaged: "* ]]
    without_settings
    [[ "${lines[-2]}" == "warning time-out      2000 ms, and answers began and ended within 1"???" ms" ]]
    [[ "${lines[-1]}" == "        -> that is close: choose --timeout "???? ]]
}

@test "7 and 3: what stands on something that failed is not looked at" {
    run --separate-stderr s7ppi doctor --port sim --plugin /no/such.so
    [ "$status" -eq 7 ]
    [ "$(checks)" = "plug-in:failed " ]
    [[ "${lines[1]}" == "        -> "* ]]
    [ -z "$stderr" ]
    run --separate-stderr s7ppi doctor --port /dev/no-such-port
    [ "$status" -eq 3 ]
    [ "$(checks)" = "plug-in:ok port:ok adapter:failed " ]
    [[ "${lines[3]}" == "        -> "* ]]
    run --separate-stderr s7ppi doctor --port /dev/null
    [ "$status" -eq 3 ]
    [ "$(checks)" = "plug-in:ok port:ok adapter:failed " ]
}

@test "3: a port in use" {
    start fake_controller
    s7ppi read --port "$port" --timeout 60000 VB0 3>&- 2>/dev/null &
    background+=($!)
    eventually grep -q unanswered "$BATS_TEST_TMPDIR/output"
    doctor
    [ "$status" -eq 3 ]
    [[ "$output" == *"in use by s7ppi (process ${background[1]})"* ]]
    [[ "$(checks)" == *" rights:ok lock:failed " ]]
    without_settings
    [ "${lines[-1]}" = "        -> end the other program, or use another port" ]
}

@test "4: a silent controller is not asked for ever" {
    start fake_controller
    doctor --retries 0 --timeout 50
    [ "$status" -eq 4 ]
    [[ "$output" == *"nothing was heard at all"* ]]
    [[ "$output" == *"failed  answers       plc no response
        -> check cable, power, --station and --baud; "* ]]
    run grep -c unanswered "$BATS_TEST_TMPDIR/output"
    [ "$output" -eq 3 ]
}

@test "4: some answers that stay away are a failure" {
    start s7ppi-sim --fault silent@3
    doctor --reads 4 --retries 0
    [ "$status" -eq 4 ]
    [[ "$output" == *"failed  answers       3 of 4 reads: "*"; plc no response"* ]]
}

@test "5: an adapter that hears itself is found, and the rest is looked at without the echo" {
    start s7ppi-sim --fault echo
    doctor --reads 3
    [ "$status" -eq 5 ]
    [ "$(checks)" = "plug-in:ok port:ok adapter:ok rights:ok lock:ok line:ok echo:failed line errors:ok answers:ok retries:ok time-out:ok " ]
    [[ "$output" == *"the adapter hears what it sends
        -> use --echo, or "* ]]
    doctor --reads 3 --echo
    [ "$status" -eq 0 ]
    [[ "$output" == *"taken out, as --echo says"* ]]
}

@test "6: a port that goes away" {
    start fake_controller hang-up
    doctor
    [ "$status" -eq 6 ]
    [[ "$output" == *"failed  answers       the port is gone
        -> was the adapter unplugged? "* ]]
}

@test "every setting is told, and where it comes from" {
    start s7ppi-sim --station 5
    settings "port = /dev/no-such-port" "retries = 0" "station = 4" "verbose = off" \
        "[press]" "station = 5" "timeout = 10s" "[mixer]" "station = 6"
    S7PPI_PARITY=none S7PPI_PROFILE=mixer run --separate-stderr \
        s7ppi doctor --config "$settings" --profile press --reads 1 -p "$port" --echo=false
    [ "$status" -eq 0 ]
    local line
    while IFS='|' read -r line; do
        grep -qxE " +$line" <<<"$output"
    done <<LINES
port +$port +command line
station +5 +profile, $settings:6, \\[press\\]
timeout +10s +profile, $settings:7, \\[press\\]
gap +none +default
retries +0 +file, $settings:2
delay +[0-9]+m?s +plug-in
reconnect +false +default
wait-lock +0s +default
baud +9600 +plug-in
parity +none +environment, S7PPI_PARITY
databits +8 +plug-in
stopbits +1 +plug-in
rs485 +false +default
low-latency +false +default
echo +false +command line
format +text +default
trace +none +default
quiet +false +default
verbose +off +file, $settings:4
plugin +/.*/libs7_200_ppi.so +default
LINES
    [ "$(sed '1,/^settings$/d' <<<"$output" | wc -l)" -eq 21 ]
    run -0 s7ppi doctor --port "$port" --station 5 --reads 1
    grep -qxE " +parity +even +plug-in" <<<"$output"
    run --separate-stderr s7ppi doctor --port sim --plugin /no/such.so --json
    [ "$status" -eq 7 ]
    [ "$(jq -c '.settings[] | select(.setting == "baud" or .setting == "plugin")' <<<"$output")" = \
        '{"setting":"baud","value":"unknown","source":"plug-in","place":""}
{"setting":"plugin","value":"/no/such.so","source":"command line","place":""}' ]
    settings "format = text"
    run -0 s7ppi doctor --config "$settings" --port "$port" --station 5 --reads 1
    grep -qxE " +format +text +file, $settings:1" <<<"$output"
    run -0 s7ppi doctor --config "$settings" --port "$port" --station 5 --reads 1 --json
    [ "$(jq -c '.settings[] | select(.setting == "format") | [.value, .source]' <<<"$output")" = '["json","command line"]' ]
}

@test "130: Ctrl-C keeps what was found out" {
    start fake_controller
    s7ppi doctor --port "$port" --timeout 60000 --format json >"$BATS_TEST_TMPDIR/findings" 3>&- &
    background+=($!)
    eventually grep -q unanswered "$BATS_TEST_TMPDIR/output"
    kill -INT "${background[1]}"
    status=0
    wait "${background[1]}" || status=$?
    [ "$status" -eq 130 ]
    [[ "$(cat "$BATS_TEST_TMPDIR/findings")" == *'"check":"line","verdict":"ok"'*'
  ]
}' ]]
}

@test "2: wrong command lines" {
    local arguments
    for arguments in "--reads 0" "--reads x" "VB0 VB1" VX0 VB0:foo "--format raw"; do
        # shellcheck disable=SC2086
        run --separate-stderr s7ppi doctor --port /dev/no-such-port $arguments
        [ "$status" -eq 2 ]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
    done
}
