# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What the tests of s7ppi-sim as a user meets it share. S7PPI_BIN_DIR holds it.

# bats sets the variables of run, and the tests those that are for them.
# shellcheck shell=bash disable=SC2034,SC2154

bats_require_minimum_version 1.5.0

load "${BASH_SOURCE[0]%/*}/../../support/jobs"

read_vb100=681b1b6802006c320100000001000e00000401120a10020001000184000320
request=${read_vb100}8c16
poll=1002005c5e16
answer=681616680002083203000000010002000500000401ff040008116816

setup() {
    PATH="$S7PPI_BIN_DIR:$PATH"
    cd "$BATS_TEST_TMPDIR" || return 1
    simulator=
}

teardown() {
    end_test
}

# start OPTION...: a simulator in the background; its port is then open as $line, its messages are in the
# file messages.
start() {
    : >output
    s7ppi-sim "$@" >>output 2>messages 3>&- &
    simulator=$!
    local i
    for ((i = 0; i < 600; i++)); do
        port=$(head -n 1 output)
        [ -n "$port" ] && break
        sleep 0.05
    done
    exec {line}<>"$port"
}

# stop [SIGNAL]: $status is then its exit code.
stop() {
    kill -s "${1:-TERM}" "$simulator"
    ended
}

# ended: waits until it has ended by itself; $status is then its exit code.
ended() {
    status=0
    wait "$simulator" || status=$?
    simulator=
}

send() {
    local i escaped=
    for ((i = 0; i < ${#1}; i += 2)); do
        escaped+="\\x${1:i:2}"
    done
    printf '%b' "$escaped" >&"$line"
}

# hear COUNT: that many bytes in hex, or fewer when five seconds are over.
hear() {
    timeout 5 head -c "$1" <&"$line" | od -An -v -tx1 | tr -d ' \n'
}

# ask HEX COUNT: what comes back.
ask() {
    send "$1"
    hear "$2"
}

# exchange: acknowledgement and answer of one read of VB100.
exchange() {
    ask "$request" 1
    ask "$poll" 28
}

# byte_of STATION AREA ADDRESS: one byte of an area in hex, by a read job with reference 1.
byte_of() {
    local body sum=0 i
    body=$(printf '%02x006c320100000001000e00000401120a1002000100%02x%s%06x' \
        "$1" $(($2 == 84 ? 1 : 0)) "$2" $(($3 * 8)))
    for ((i = 0; i < ${#body}; i += 2)); do
        sum=$((sum + 16#${body:i:2}))
    done
    ask "$(printf '681b1b68%s%02x16' "$body" $((sum % 256)))" 1 >/dev/null
    ask "$(printf '10%02x005c%02x16' "$1" $(($1 + 0x5c)))" 28 | cut -c 51-52
}

# fails CODE OPTION... : ends with that code and nothing but a message, which is then in $output, and a hint.
fails() {
    run "-$1" --separate-stderr timeout 10 s7ppi-sim "${@:2}"
    [ -z "$output" ]
    [ "${#stderr_lines[@]}" -eq 2 ]
    [[ ${stderr_lines[1]} == 'hint: '* ]]
    output=${stderr_lines[0]}
}

usage_error() {
    fails 2 "$@"
}

# messages_are TEXT: that message, and a hint, are all that was told.
messages_are() {
    [ "$(head -n 1 messages)" = "$1" ]
    [[ $(tail -n +2 messages) == 'hint: '* ]]
    [ "$(wc -l <messages)" -eq 2 ]
}

milliseconds() {
    date +%s%3N
}
