#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi publish as a service: what it tells systemd, whose socket each test has for itself. No broker is there.

# port is set by start.
# shellcheck disable=SC2154

load common

# The manager listens, and has what it was told in $BATS_TEST_TMPDIR/told.
manager() {
    socat -u "UNIX-RECV:$BATS_TEST_TMPDIR/notify" "OPEN:$BATS_TEST_TMPDIR/told,creat,append" 3>&- &
    eventually test -S "$BATS_TEST_TMPDIR/notify"
}

# serve ARGUMENT...: a service whose watchdog waits a fifth of a second.
serve() {
    NOTIFY_SOCKET=$BATS_TEST_TMPDIR/notify WATCHDOG_USEC=200000 S7PPI_TIMEOUT=20 S7PPI_RETRIES=0 s7ppi publish \
        --broker mqtt://127.0.0.1:1 --topic t --no-spool --interval 20 "$@" >/dev/null 2>&1 3>&- &
    service=$!
}
stop_service() {
    kill -TERM "$service"
    status=0
    wait "$service" || status=$?
    [ "$status" -eq 143 ]
}
told() {
    grep -qx -- "$1" "$BATS_TEST_TMPDIR/told"
}
signs() {
    grep -cx WATCHDOG=1 "$BATS_TEST_TMPDIR/told" || true
}
has_signs() {
    [ "$(signs)" -ge "$1" ]
}
lives() {
    eventually has_signs "$(($(signs) + 3))"
}

@test "a service has begun though its broker is away, gives signs of life, and tells its end" {
    manager
    serve --port sim --timeout 200 VB100
    eventually told READY=1
    lives
    eventually told 'STATUS=1 item; waiting for mqtt://127.0.0.1:1, [0-9]* messages\? kept'
    run ! told STOPPING=1
    stop_service
    [ "$(tail -n 1 "$BATS_TEST_TMPDIR/told")" = STOPPING=1 ]
    [ "$(grep -c READY=1 "$BATS_TEST_TMPDIR/told")" -eq 1 ]
}

@test "a controller that is silent is no reason to take the service for hung" {
    manager
    start s7ppi-sim
    local simulator=$!
    serve --port "$port" VB100 VB102
    eventually told 'STATUS=2 items; waiting for .*'
    kill -STOP "$simulator"
    eventually told 'STATUS=2 of 2 items cannot be read; waiting for .*'
    lives
    kill -CONT "$simulator"
}

@test "a service has begun though its port is not there yet, and waits for it again when it goes" {
    manager
    local link=$BATS_TEST_TMPDIR/port
    serve --reconnect --port "$link" VB100
    eventually told READY=1
    told 'STATUS=waiting for the port'
    lives
    start s7ppi-sim --link "$link"
    local simulator=$!
    eventually told 'STATUS=1 item; waiting for .*'
    rm "$link"
    kill "$simulator"
    eventually told "STATUS=$link is gone; waiting for .*"
    lives
    start s7ppi-sim --link "$link"
    back() {
        [[ "$(grep STATUS "$BATS_TEST_TMPDIR/told" | tail -n 1)" == 'STATUS=1 item; waiting for '* ]]
    }
    eventually back
}

@test "a request that hangs gives no sign of life" {
    manager
    start s7ppi-sim
    serve --plugin "$S7PPI_TEST_DIR/libhanging_plugin.so" --port "$port" VB100
    eventually told READY=1
    sleep 1 # five times the watchdog's patience
    [ "$(signs)" -eq 0 ]
    stop_service
}

@test "a watchdog that is less patient than the longest request waits longer" {
    manager
    serve --port sim --timeout 30s VB100
    eventually told WATCHDOG_USEC=240000000
}
