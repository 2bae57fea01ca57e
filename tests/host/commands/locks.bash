# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What the tests of lock files share.

# $port is of common.bash.
# shellcheck disable=SC2154

load ../../support/locks

teardown() {
    end_test
    rm -f "$lock" "$lock.rmlock"
}

# Finds the lock file's name in $lock from a program that has the port of $port open, and kills that.
find_lock() {
    s7ppi read --port "$port" --timeout 60000 VB0 2>/dev/null 3>&- &
    local holder=$!
    eventually lock_is_there
    lock=$(lock_of "$port")
    kill -KILL "$holder"
    wait "$holder" || true
}
lock_is_there() {
    grep -q unanswered "$BATS_TEST_TMPDIR/output"
}

# A simulated controller, whose lock file's name is then in $lock.
start_with_lock() {
    start fake_controller
    find_lock
    start s7ppi-sim
    lock=${lock%pts_*}pts_${port#/dev/pts/}
}

# hold FILE: locks it up to the end of the test.
hold() {
    flock --no-fork "$1" sleep 600 3>&- &
    eventually is_held "$1"
}
is_held() {
    ! flock -n "$1" true
}
