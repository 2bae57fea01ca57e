#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# One allocation that fails, at any moment: every command ends in order, tells why in two lines, and leaves files
# whole. S7PPI_MOMENTS moments of each command are tried, drawn with a seed that is told; a command
# has a few thousand.

# bats sets the variables of run.
# shellcheck disable=SC2154

load common

moments=${S7PPI_MOMENTS:-12}

# How long a command may take, as arguments of timeout.
limit=(--signal KILL 20)

# limited VARIABLE... COMMAND...: with the memory that the variables leave.
limited() {
    timeout "${limit[@]}" env LD_PRELOAD="$S7PPI_TEST_DIR/libfailing_memory.so" "$@"
}

# allocations COMMAND...: how many it makes.
allocations() {
    limited FAIL_COUNT=1 "$@" 9>"$BATS_TEST_TMPDIR/count" >/dev/null
    cat "$BATS_TEST_TMPDIR/count"
}

# ends_in_order STATUS STDERR: the lack of memory is told, and nobody else is blamed.
ends_in_order() {
    [ "$1" -eq 70 ] && [[ "$2" == *": internal failure: no memory is left"$'\n'"hint: "* ]]
}

# without_memory CHECK COMMAND...: at drawn moments. CHECK is run after each.
without_memory() {
    local check=$1 count seed=${S7PPI_SEED:-$RANDOM} moment tried
    shift
    count=$(($(allocations "$@") * 9 / 10)) # it takes a few more or fewer each time
    RANDOM=$seed
    for ((tried = 0; tried < moments; tried++)); do
        moment=$(((RANDOM << 15 | RANDOM) % count + 1))
        run --separate-stderr limited "FAIL_AT=$moment" "$@"
        if ! ends_in_order "$status" "$stderr" || ! "$check"; then
            echo "S7PPI_SEED=$seed FAIL_AT=$moment: exit code $status: $stderr"
            return 1
        fi
    done
}

controller() {
    start s7ppi-sim
}

@test "read, write, watch, scan and publish end in order" {
    controller
    without_memory true s7ppi read --port "$port" VB0 VW10*4
    without_memory true s7ppi write --port "$port" VB0=1 VW10=5
    without_memory true s7ppi watch --port "$port" --count 3 --interval 10 VB0
    without_memory true s7ppi scan --port "$port" --timeout 50 --stations 2
    without_memory true s7ppi publish --port "$port" --broker mqtt://127.0.0.1:1 --spool "$BATS_TEST_TMPDIR/spool" --for 100ms \
        --interval 10ms VB0
}

@test "what reads only files ends in order" {
    without_memory true s7ppi check VB0 VW10
    without_memory true s7ppi decode 10 02 00 5c 5e 16
    without_memory true s7ppi describe
    without_memory true s7ppi --help
}

whole_or_absent() {
    [ ! -e "$BATS_TEST_TMPDIR/values.json" ] || jq -e . "$BATS_TEST_TMPDIR/values.json" >/dev/null
}

@test "a document is whole or not there" {
    controller
    without_memory whole_or_absent s7ppi read --port "$port" -o "$BATS_TEST_TMPDIR/values.json" VB0 VW10*4
}

@test "74: why a file takes no more is told, whatever allocations behind the write leave in errno" {
    cd "$BATS_TEST_TMPDIR"
    trap '' XFSZ
    local arguments
    for arguments in "dump -o whole.dump VB0..VB999" "watch -o run.csv VB0*40 --count 10 --interval 1 --all" \
        "read --trace frames VB0*600"; do
        run -74 --separate-stderr bash -c "ulimit -f 1; exec timeout 20 env FAIL_NONE=1 \
            LD_PRELOAD='$S7PPI_TEST_DIR/libfailing_memory.so' s7ppi -q --port sim $arguments"
        [[ "${stderr_lines[0]}" == *" cannot be written: File too large" ]]
    done
}

@test "the simulated controller ends in order" {
    limit=(--preserve-status --kill-after 20 0.5)
    without_memory true s7ppi-sim --station 3
}
