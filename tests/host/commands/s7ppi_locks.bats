#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# Lock files that a kill left behind, and what else has their names.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common
load locks

@test "an empty lock file that nobody holds is taken over at once, and told" {
    start_with_lock
    : >"$lock"
    run --separate-stderr s7ppi read --port "$port" VB100
    [ "$status" -eq 0 ]
    [ "$output" = "VB100 17" ]
    [ "$stderr" = "s7ppi: $lock was empty and held by nobody: a program that was killed left it, and it is removed" ]
    [ ! -e "$lock" ]
}

@test "3: an empty lock file that a program holds is left alone" {
    start_with_lock
    : >"$lock"
    hold "$lock"
    run --separate-stderr s7ppi read --port "$port" VB100
    [ "$status" -eq 3 ]
    [ -e "$lock" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
}

@test "3: a lock that is no file is left alone, and nothing waits for it" {
    start_with_lock
    local obstacle
    for obstacle in "$lock" "$lock.rmlock"; do
        rm -f "$obstacle" # a program that was killed may have left one for the terminal that had this number before
        mkfifo "$obstacle"
        run -3 --separate-stderr timeout 20 s7ppi read --port "$port" VB100
        [ "${stderr_lines[0]}" = "s7ppi: $port cannot be opened: $obstacle is no lock file, and is in the way" ]
        [[ "${stderr_lines[1]}" == "hint: "*": remove it" ]]
        [ -p "$obstacle" ]
        rm "$obstacle"
    done
}

@test "of many that take it over at the same moment one wins" {
    start fake_controller
    find_lock
    local i running
    for _ in 1 2 3; do
        start fake_controller
        lock=${lock%pts_*}pts_${port#/dev/pts/}
        : >"$lock"
        local programs=()
        for ((i = 0; i < 6; i++)); do
            s7ppi read --port "$port" --timeout 60000 VB0 2>/dev/null 3>&- &
            programs+=($!)
        done
        # The winner waits for an answer; all others end.
        eventually only_one_left
        eventually lock_is_there
        only_one_left
        running=$(jobs -r -p | grep -cxFf <(printf '%s\n' "${programs[@]}"))
        [ "$running" -eq 1 ]
        for i in "${programs[@]}"; do
            kill -KILL "$i" 2>/dev/null || true
            wait "$i" || true
        done
    done
}
only_one_left() {
    local count=0 program
    for program in "${programs[@]}"; do
        if kill -0 "$program" 2>/dev/null; then
            count=$((count + 1))
        fi
    done
    [ "$count" -eq 1 ]
}

@test "a lock that a kill left while the lock file was removed is removed, too" {
    start s7ppi-sim
    local name=${port#/dev/}
    local left=/var/lock/LCK..${name//\//_}.rmlock
    : >"$left"
    run --separate-stderr s7ppi read --port "$port" VB100
    [ "$status" -eq 0 ]
    [ "$output" = "VB100 17" ]
    [[ "$stderr" == *"$left was empty and held by nobody"* ]]
    [ ! -e "$left" ]
}
