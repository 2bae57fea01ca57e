# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What the tests of the command line share.
# S7PPI_BIN_DIR holds s7ppi and s7ppi-sim, S7PPI_TEST_DIR the fake controller and the test plug-ins.

bats_require_minimum_version 1.5.0

load "${BASH_SOURCE[0]%/*}/../../support/jobs"

setup() {
    PATH="$S7PPI_BIN_DIR:$S7PPI_TEST_DIR:$PATH"
    unset S7PPI_PLUGIN S7PPI_PORT S7PPI_STATION S7PPI_FORMAT S7PPI_VERBOSE S7PPI_QUIET NO_COLOR
    export S7PPI_CONFIG=$BATS_FILE_TMPDIR/patient # not the developer's own; answers are late on a busy machine
    echo "timeout = 20s" >"$S7PPI_CONFIG"
    export -n S7PPI_BIN_DIR S7PPI_TEST_DIR S7PPI_PLUGIN_FILE S7PPI_DISSECTOR # no options: --verbose would tell of them
    background=() # by which tests find what they started, in its order
}

teardown() {
    end_test
}

# start COMMAND...: in the background; its first line of output, a port's name, is then in $port.
start() {
    : >"$BATS_TEST_TMPDIR/output"
    "$@" >>"$BATS_TEST_TMPDIR/output" 3>&- &
    background+=($!)
    local i
    for ((i = 0; i < 600; i++)); do
        port=$(head -n 1 "$BATS_TEST_TMPDIR/output")
        [ -n "$port" ] && return
        sleep 0.05
    done
    return 1
}

# eventually COMMAND...: waits until it succeeds, for half a minute at most.
eventually() {
    local i
    for ((i = 0; i < 600; i++)); do
        "$@" && return
        sleep 0.05
    done
    return 1
}

# frame HEX: the bytes from DA to the end of the PDU as a whole frame.
frame() {
    local i length=$((${#1} / 2)) sum=0
    for ((i = 0; i < ${#1}; i += 2)); do
        sum=$((sum + 16#${1:i:2}))
    done
    printf '68%02x%02x68%s%02x16' "$length" "$length" "$1" $((sum % 256))
}

# byte_answer REFERENCE VALUE: the good answer to a read of one byte.
byte_answer() {
    frame "$(printf '00020832030000%04x0002000500000401ff040008%02x' "$1" "$2")"
}

# write_answer REFERENCE: the good answer to a write of one item.
write_answer() {
    frame "$(printf '00020832030000%04x0002000100000501ff' "$1")"
}

# settings LINE...: a configuration file of these lines, in $settings.
settings() {
    settings=$BATS_TEST_TMPDIR/settings
    printf '%s\n' "$@" >"$settings"
}

# timeless TEXT: records of json without what is another with every run, the time and the port, which must be there.
timeless() {
    sed -E 's/"time":"[-0-9]{10}T[0-9:.]{12}[^"]+","port":"(sim|\/dev\/[^"]+)",//' <<<"$1"
}
