#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# A million exchanges on a line and a port that go wrong in every way, in simulated time; and that a soak can be
# repeated, which is what its seed and its digests are for. $SOAK is the program.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

bats_require_minimum_version 1.5.0

# chapter NUMBER: its line of $output.
chapter() {
    grep "^chapter $1: " <<<"$output"
}

@test "the driver does as its model in a million exchanges on a faulty line, and keeps no memory and no descriptor" {
    run -0 "$SOAK" 1000000
    echo "$output"
    [ "$(grep -c '^chapter [0-9]: 1*[09][0-9]*[0-9] exchanges, digest [0-9a-f]\{32\}$' <<<"$output")" -eq 10 ]
    [ "$(grep -cE '^  of (the line|a call): .* [1-9][0-9]{3,}$' <<<"$output")" -eq 15 ]
    [[ "${lines[-2]}" == 100000[0-9]' exchanges in '*' a second, none other than the model'\''s' ]]
    [[ "${lines[-1]}" == 'digest of the chapters '* ]]

    # The last chapter alone is the last one of all.
    local last
    last=$(chapter 9)
    local exchanges=${last#chapter 9: }
    run -0 "$SOAK" --seed 1 --from 9 "${exchanges%% *}"
    [ "$(chapter 9)" = "$last" ]
}

@test "it does so with any request and a controller that says anything, and keeps no memory and no descriptor" {
    run -0 "$SOAK" --model 200000
    echo "$output"
    [[ "${lines[-2]}" == 20000[0-9]' exchanges in '*' a second, none other than the model'\''s' ]]
}

@test "the same seed draws the same, and another one something else" {
    local kind first
    for kind in '' --model; do
        run -0 "$SOAK" ${kind:+"$kind"} --seed 7 2000
        first=$(chapter 0)
        run -0 "$SOAK" ${kind:+"$kind"} --seed 7 2000
        [ "$(chapter 0)" = "$first" ]
        run -0 "$SOAK" ${kind:+"$kind"} --seed 8 2000
        [ "$(chapter 0)" != "$first" ]
    done
}

@test "an interrupted soak tells what it has done" {
    "$SOAK" 1000000000 >"$BATS_TEST_TMPDIR/output" 3>&- &
    until grep -q '^chapter 0: ' "$BATS_TEST_TMPDIR/output"; do
        kill -0 $!
        sleep 0.1
    done
    kill -INT $!
    local status=0
    wait $! || status=$?
    [ "$status" -eq 130 ]
    grep -q ' none other than the model' "$BATS_TEST_TMPDIR/output"
}

@test "what is no number is refused" {
    local wrong
    for wrong in many -1 1.5 '--seed x' '--seed 4294967296' '--from y' '1 2' --seed --sead; do
        # shellcheck disable=SC2086 # some are two words
        run -2 "$SOAK" $wrong
    done
    run -2 "$SOAK" many
    [ "$output" = 'soak: many is no number from 0 to 1000000000000' ]
}
