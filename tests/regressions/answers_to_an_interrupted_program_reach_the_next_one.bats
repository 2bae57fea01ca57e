#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# A watch that followed an interrupted read was one request late for ever, with the values of the wrong items. The answer
# that the first had not waited for met the first request of the second, and each answer after it the next request.

# bats sets the variables of run.
# shellcheck disable=SC2154

load ../host/commands/common

# interrupt_while_answered: a dump from $port that is stopped while an answer is under way.
interrupt_while_answered() {
    local trace=$BATS_TEST_TMPDIR/interrupted.trace
    rm -f "$trace"
    s7ppi dump --port "$port" -q --trace "$trace" -o "$BATS_TEST_TMPDIR/dump" VB0..VB999 3>&- &
    local dump=$!
    eventually grep -qs " > 10 02 " "$trace"
    kill -INT "$dump"
    status=0
    wait "$dump" || status=$?
    [ "$status" -eq 130 ]
}

# A simulator that a busy machine keeps from the processor leaves a gap in its answer, which costs an attempt; a program
# that begins before the line is silent loses all of them.
@test "the answer to a program that was interrupted is not taken for the next one's" {
    start s7ppi-sim --pace 9600
    interrupt_while_answered
    run --separate-stderr s7ppi dump --port "$port" -q -o "$BATS_TEST_TMPDIR/dump" VB0..VB299 --restart
    [ "$status" -eq 0 ]
    interrupt_while_answered
    run --separate-stderr s7ppi watch --port "$port" -q --interval 1 --count 3 VB100
    [ "$status" -eq 0 ]
    [[ "$output" == *" VB100 17" ]]
    [ -z "$stderr" ]
}
