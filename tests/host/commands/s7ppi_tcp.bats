#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi with a line behind a serial server: socat and ser2net, on this machine.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

# serve ADDRESS [OPTION...]: what connects to $server, tcp:127.0.0.1:PORT, is connected by socat to that address,
# one connection after the other.
serve() {
    local log=$BATS_TEST_TMPDIR/socat.${#background[@]} address=$1 listen=TCP-LISTEN:0,bind=127.0.0.1
    : >"$log"
    shift
    socat -d -d -t 0 -lf "$log" "$@" "$listen,fork,max-children=1,backlog=0" "$address" 3>&- &
    background+=($!)
    eventually grep -q 'listening on' "$log"
    server=tcp:127.0.0.1:$(sed -n 's/.*listening on .*:\([0-9]*\)$/\1/p' "$log" | head -n 1)
}

# serve_script COMMANDS [OPTION...]: every connection is answered by these commands of the shell.
serve_script() {
    local script=$BATS_TEST_TMPDIR/script.${#background[@]}
    printf '#!/bin/sh\n%s\n' "$1" >"$script"
    chmod +x "$script"
    shift
    serve "EXEC:$script,pipes" "$@"
}

# A simulated controller behind a serial server.
serve_simulator() {
    start s7ppi-sim
    serve "FILE:$port,raw,echo=0"
}

# free_port: a TCP port in $free that nobody listens at. Others may take it before it is used.
free_port() {
    free=$((20000 + RANDOM % 20000))
    while (exec 4<>"/dev/tcp/127.0.0.1/$free") 2>/dev/null; do
        free=$((20000 + RANDOM % 20000))
    done
}

@test "a name is looked up, and a silent connection is asked for life after seconds" {
    start fake_controller e5 "$(byte_answer 1 7)"
    serve "FILE:$port,raw,echo=0"
    s7ppi watch --port "${server/127.0.0.1/localhost}" --interval 1 --timeout 60000 VB0 3>&- >"$BATS_TEST_TMPDIR/lines" &
    background+=($!)
    eventually grep -q 'VB0 7' "$BATS_TEST_TMPDIR/lines"
    eventually has_keepalive "${server##*:}"
}

# has_keepalive PORT: a connection to it waits for its keepalive timer, 10 seconds at most. /proc/net/tcp has, in
# hexadecimal digits, the timer's kind, which is 2, and when it ends, in hundredths of a second.
has_keepalive() {
    local when
    when=$(sed -nE "s/^ *[0-9]+: [0-9A-F]+:[0-9A-F]+ [0-9A-F]+:$(printf '%04X' "$1") 01 [^ ]+ 02:([0-9A-F]+) .*/\1/p" \
        /proc/net/tcp)
    [ -n "$when" ] && [ $((16#$when)) -le 1000 ]
}

# ser2net DEVICE: a serial server at TCP port $free, with its process in ${background[-1]}. False when it ends at
# once, as when another program has the port.
serial_server() {
    cat >"$BATS_TEST_TMPDIR/ser2net.yaml" <<CONFIG
connection: &line
  accepter: tcp,127.0.0.1,$free
  connector: serialdev,$1,9600n81,local
CONFIG
    ser2net -d -c "$BATS_TEST_TMPDIR/ser2net.yaml" >"$BATS_TEST_TMPDIR/ser2net.log" 2>&1 3>&- &
    background+=($!)
    eventually listens_or_ended "${background[-1]}"
    kill -0 "${background[-1]}"
}

# What listens is not asked by connecting: that would be the one connection that it takes.
listens_or_ended() {
    ! kill -0 "$1" 2>/dev/null || grep -qi "^ *[0-9]*: 0100007F:$(printf '%04X' "$free") 00000000:0000 0A" /proc/net/tcp
}

serial_server_somewhere() {
    local i
    for ((i = 0; i < 20; i++)); do
        free_port
        serial_server "$1" && return
    done
    return 1
}

# Whether something waits for an answer from the port: the state is that of a connection asked for.
connects() {
    grep -qi " 0100007F:$(printf '%04X' "$1") 02 " /proc/net/tcp
}

# has_more_lines COUNT FILE
has_more_lines() {
    [ "$(wc -l <"$2")" -gt "$1" ]
}

@test "every command works through a serial server" {
    serve_simulator
    cd "$BATS_TEST_TMPDIR"
    run --separate-stderr s7ppi read --port "$server" VB100 VW102:i16
    [ "$status" -eq 0 ]
    [ "$output" = $'VB100 17\nVW102 13124' ]
    [ -z "$stderr" ]
    run --separate-stderr s7ppi write --port "$server" --verify VB200=42
    [ "$status" -eq 0 ]
    [ "$output" = "VB200 42" ]
    run --separate-stderr s7ppi watch --port "$server" --all --interval 10ms --count 3 VB200
    [ "$status" -eq 0 ]
    [ "$(grep -c 'VB200 42$' <<<"$output")" -eq 3 ]
    run --separate-stderr s7ppi dump --port "$server" VB0..VB499 -o memory.dump
    [ "$status" -eq 0 ]
    run --separate-stderr s7ppi load --port "$server" --verify memory.dump
    [ "$status" -eq 0 ]
    run --separate-stderr s7ppi scan --port "$server" --stations 1..3 --timeout 1s
    [ "$status" -eq 0 ]
    [[ "$output" =~ ^"station 2: answers within "[0-9]+" ms"$ ]]
    run --separate-stderr s7ppi read --port "$server" --raw-address VB200:u8
    [ "$status" -eq 0 ]
    [ "$output" = "VB200 42" ]
}

@test "data name the serial server as their port" {
    serve_simulator
    run --separate-stderr s7ppi read --port "$server" --format ndjson VB100
    [ "$(jq -r .port <<<"$output")" = "$server" ]
    run --separate-stderr s7ppi scan --port "$server" --timeout 1s --stations 2 --json -o "$BATS_TEST_TMPDIR/found.json"
    [ "$(jq -c '.stations[] | [.port, .station, .baud]' "$BATS_TEST_TMPDIR/found.json")" = "[\"$server\",2,null]" ]
    run --separate-stderr s7ppi read --port "$server" --trace "$BATS_TEST_TMPDIR/trace" VB100
    grep -q "$server, baud rate, parity, data and stop bits as set at the serial server" "$BATS_TEST_TMPDIR/trace"
}

@test "doctor looks at address and connection, and leaves the line to the server" {
    serve_simulator
    run --separate-stderr s7ppi doctor --port "$server" --reads 2
    [ "$status" -eq 0 ]
    [ "$(sed -n '3,5p' <<<"$output" | sed -E 's/[0-9]+ ms/N ms/')" = \
        "ok      address       127.0.0.1 is 127.0.0.1
ok      connection    made within N ms
ok      line          baud rate, parity, data and stop bits as set at the serial server" ]
    [[ "$output" != *"adapter"* ]]
    [[ "$output" != *"line errors"* ]]
    local name
    for name in baud parity databits stopbits; do
        grep -Eq "^  $name +unknown +set at the serial server\$" <<<"$output"
    done
    run --separate-stderr s7ppi doctor --port tcp:no-such-host.invalid:4001
    [ "$status" -eq 3 ]
    [[ "${lines[2]}" == "failed  address       no-such-host.invalid cannot be looked up: "* ]]
}

@test "what the server sets itself is told when the command line sets it" {
    serve_simulator
    run --separate-stderr s7ppi read --port "$server" --baud 19200 --parity none VB100
    [ "$status" -eq 0 ]
    [ "$stderr" = "s7ppi: the serial server runs its line as it is set itself: --baud does not reach it" ]
    S7PPI_BAUD=19200 run --separate-stderr s7ppi read --port "$server" VB100
    [ -z "$stderr" ]
    run --separate-stderr s7ppi scan --port "$server" --stations 2 --timeout 1s --baud all -q
    [ "$status" -eq 0 ]
    [ "${#lines[@]}" -eq 1 ]
    run --separate-stderr s7ppi scan --port "$server" --stations 2 --timeout 1s --baud all
    [[ "$stderr" == *"the serial server runs its line as it is set itself: --baud does not reach it"* ]]
}

@test "2: what names no serial server, and what only a port of this machine has" {
    local arguments text
    while IFS='|' read -r arguments text; do
        # shellcheck disable=SC2086
        run --separate-stderr s7ppi $arguments read VB100
        [ "$status" -eq 2 ]
        [ "${stderr_lines[0]}" = "s7ppi: $text" ]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
    done <<'LINES'
--port tcp:gateway|tcp:gateway: that names no TCP port of a host
--port tcp:::1:4001|tcp:::1:4001: an IPv6 address needs brackets
--port tcp:gateway:70000|tcp:gateway:70000: TCP ports have the numbers 1 to 65535
--port tcp:gateway:4001 --rs485|--rs485 is for a port of this machine, and tcp:gateway:4001 is a serial server's
--port tcp:gateway:4001 --rs485 before=1,after=2|--rs485 is for a port of this machine, and tcp:gateway:4001 is a serial server's
--port tcp:gateway:4001 --low-latency|--low-latency is for a port of this machine, and tcp:gateway:4001 is a serial server's
LINES
    run --separate-stderr s7ppi ports tcp:gateway:4001
    [ "$status" -eq 3 ]
    [ "${stderr_lines[0]}" = "s7ppi: ports: tcp:gateway:4001 is no port of this machine" ]
    [ "${stderr_lines[1]}" = "hint: s7ppi doctor --port tcp:gateway:4001 looks at the port of a serial server" ]
}

@test "3: nobody listens, and nobody has the name" {
    free_port
    run --separate-stderr s7ppi read --port "tcp:127.0.0.1:$free" VB100
    [ "$status" -eq 3 ]
    [ "${stderr_lines[0]}" = "s7ppi: tcp:127.0.0.1:$free cannot be reached: Connection refused" ]
    [[ "${stderr_lines[1]}" == "hint: nothing listens at TCP port $free there: "* ]]
    run --separate-stderr s7ppi read --port tcp:no-such-host.invalid:4001 VB100
    [ "$status" -eq 3 ]
    [[ "${stderr_lines[0]}" == "s7ppi: no-such-host.invalid cannot be looked up: "* ]]
    [[ "${stderr_lines[1]}" == "hint: check the name "* ]]
}

# A queue that is full: the one connection that the server has, and the one that may wait for it.
@test "3: a server that does not answer is given up, and sooner with Ctrl-C" {
    serve_script "exec cat >/dev/null"
    local number=${server##*:} how
    exec 5<>"/dev/tcp/127.0.0.1/$number"
    eventually pgrep -P "${background[0]}" >/dev/null # it has taken the first one
    exec 6<>"/dev/tcp/127.0.0.1/$number"
    for how in stopped patient; do
        s7ppi read --port "$server" --timeout 2s VB100 2>"$BATS_TEST_TMPDIR/messages" 3>&- &
        background+=($!)
        eventually connects "$number"
        [ "$how" = patient ] || kill -INT "${background[-1]}"
        status=0
        wait "${background[-1]}" || status=$?
        [ "$status" -eq "$([ "$how" = patient ] && echo 3 || echo 130)" ]
    done
    [ "$(head -n 1 "$BATS_TEST_TMPDIR/messages")" = "s7ppi: $server cannot be reached: no answer within 5000 ms" ]
}

@test "a serial server has an IPv6 address" {
    grep -q '^00000000000000000000000000000001 ' /proc/net/if_inet6 || skip "this machine has no IPv6"
    start s7ppi-sim
    serve "FILE:$port,raw,echo=0"
    socat -d -d -t 0 -lf "$BATS_TEST_TMPDIR/six" "TCP6-LISTEN:0,bind=[::1]" "TCP:${server#tcp:}" 3>&- &
    background+=($!)
    eventually grep -q 'listening on' "$BATS_TEST_TMPDIR/six"
    local number
    number=$(sed -n 's/.*listening on .*:\([0-9]*\)$/\1/p' "$BATS_TEST_TMPDIR/six")
    run --separate-stderr s7ppi read --port "tcp:[::1]:$number" --timeout 5s --format ndjson VB100
    [ "$status" -eq 0 ]
    [ "$(jq -r .port <<<"$output")" = "tcp:[::1]:$number" ]
}

@test "4: a server that takes the connection and says nothing" {
    serve_script "exec cat >/dev/null"
    run --separate-stderr s7ppi read --port "$server" --timeout 200ms --retries 1 VB100
    [ "$status" -eq 4 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB100: plc no response" ]
}

@test "5: a server that sends what is no answer" {
    serve_script "head -c 1 >/dev/null; printf garbage; exec cat >/dev/null"
    run --separate-stderr s7ppi read --port "$server" --timeout 500ms --retries 0 VB100
    [ "$status" -eq 5 ]
    serve_script "exec cat /dev/zero"
    run --separate-stderr s7ppi read --port "$server" --timeout 1s --retries 2 VB100
    [ "$status" -eq 5 ]
    # On a busy machine the server pauses for as long as a silent line does.
    [[ "${stderr_lines[0]}" =~ ^"s7ppi: VB100: "("the line is never silent"|"invalid response") ]]
}

@test "6: a server that closes the connection, or its side of it" {
    serve_script "exec head -c 1 >/dev/null"
    run --separate-stderr s7ppi read --port "$server" --timeout 1min --retries 0 VB100
    [ "$status" -eq 6 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB100: the port is gone: the serial server closed the connection" ]
    [[ "${stderr_lines[1]}" == "hint: "*"--reconnect"* ]]
    serve OPEN:/dev/null -t 60
    run --separate-stderr s7ppi read --port "$server" --timeout 1min --retries 0 VB100
    [ "$status" -eq 6 ]
}

@test "an answer in any pieces is one" {
    start s7ppi-sim
    serve "SYSTEM:socat -b 1 - FILE\\:$port\\,raw\\,echo=0" -b 1
    run --separate-stderr s7ppi read --port "$server" --timeout 10s --gap 10s VB100*100
    [ "$status" -eq 0 ]
    [[ "${lines[0]}" == "VB100 17 34 "* ]]
}

@test "an answer that breaks off ends with the gap" {
    serve_script "head -c 33 >/dev/null; printf '\\345'; head -c 6 >/dev/null; printf '\\150\\026\\026'; exec cat >/dev/null"
    run --separate-stderr s7ppi read --port "$server" --timeout 5min --gap 100ms --retries 0 VB100
    [ "$status" -eq 5 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB100: packet length < minimum second response" ]
}

@test "130: Ctrl-C ends a wait for an answer and one for a server" {
    local how
    serve_script "exec cat >/dev/null"
    free_port
    for how in "--port $server --timeout 5min" "--port tcp:127.0.0.1:$free --reconnect"; do
        # What the one before told would look as if this one had begun, and did not ignore the signal any more.
        : >"$BATS_TEST_TMPDIR/messages"
        # shellcheck disable=SC2086
        s7ppi read $how -v VB100 2>"$BATS_TEST_TMPDIR/messages" 3>&- &
        background+=($!)
        eventually grep -Eq -- "-> request|still trying" "$BATS_TEST_TMPDIR/messages"
        kill -INT "${background[-1]}"
        status=0
        wait "${background[-1]}" || status=$?
        [ "$status" -eq 130 ]
    done
}

@test "a watch goes on when the serial server is killed and comes back" {
    start s7ppi-sim
    serial_server_somewhere "$port"
    server=tcp:127.0.0.1:$free
    s7ppi watch --port "$server" --all --reconnect --interval 50ms --timeout 2s VB100 >"$BATS_TEST_TMPDIR/values" \
        2>"$BATS_TEST_TMPDIR/messages" 3>&- &
    background+=($!)
    local watch=${background[-1]} first=${background[-2]} before
    eventually grep -q 'VB100 17' "$BATS_TEST_TMPDIR/values"
    kill -KILL "$first"
    eventually grep -q "$server is gone: waiting for it to come back" "$BATS_TEST_TMPDIR/messages"
    eventually grep -q "$server cannot be reached: Connection refused; still trying" "$BATS_TEST_TMPDIR/messages"
    before=$(wc -l <"$BATS_TEST_TMPDIR/values")
    eventually serial_server "$port"
    eventually grep -q "$server is back" "$BATS_TEST_TMPDIR/messages"
    eventually has_more_lines "$before" "$BATS_TEST_TMPDIR/values"
    [[ "$(tail -n 1 "$BATS_TEST_TMPDIR/values")" == *"VB100 17" ]]
    kill -INT "$watch"
    status=0
    wait "$watch" || status=$?
    [ "$status" -eq 130 ]
}

@test "6: without --reconnect a serial server that is killed ends the watch" {
    start s7ppi-sim
    serial_server_somewhere "$port"
    s7ppi watch --port "tcp:127.0.0.1:$free" --interval 50ms --timeout 2s VB100 >"$BATS_TEST_TMPDIR/values" \
        2>"$BATS_TEST_TMPDIR/messages" 3>&- &
    background+=($!)
    eventually grep -q 'VB100 17' "$BATS_TEST_TMPDIR/values"
    kill -KILL "${background[-2]}"
    status=0
    wait "${background[-1]}" || status=$?
    [ "$status" -eq 6 ]
    grep -q "the port is gone: the serial server closed the connection" "$BATS_TEST_TMPDIR/messages"
}

@test "6: a connection that is closed between two polls is told as one" {
    local answer
    answer=$(byte_answer 1 7 | sed 's/../\\x&/g')
    serve_script "head -c 33 >/dev/null; printf '\\345'; head -c 6 >/dev/null; /usr/bin/printf '$answer'; sleep 1"
    run -6 --separate-stderr s7ppi watch --port "$server" --interval 1h --timeout 1min VB100
    [[ "$output" == *" VB100 7" ]]
    [[ "$stderr" == *$'\n'"s7ppi: the port is gone: the serial server closed the connection"$'\n'* ]]
}

@test "a server that is not there yet is waited for" {
    start s7ppi-sim
    local i
    free_port
    s7ppi read --port "tcp:127.0.0.1:$free" --reconnect --timeout 5s VB100 >"$BATS_TEST_TMPDIR/values" \
        2>"$BATS_TEST_TMPDIR/messages" 3>&- &
    background+=($!)
    local read=${background[-1]}
    eventually grep -q "Connection refused; still trying" "$BATS_TEST_TMPDIR/messages"
    serial_server "$port"
    wait "$read"
    [ "$(cat "$BATS_TEST_TMPDIR/values")" = "VB100 17" ]
    [ "$(grep -c 'still trying' "$BATS_TEST_TMPDIR/messages")" -eq 1 ]
}
