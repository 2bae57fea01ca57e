#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# With stdin, stdout and stderr closed the texts for people went to the controller. The port was given the number of a
# standard stream that was free.

# bats sets the variables of run.
# shellcheck disable=SC2154

load ../host/commands/common

@test "nothing but frames goes to the line when stdin, stdout and stderr are closed" {
    cd "$BATS_TEST_TMPDIR"
    start s7ppi-sim --trace sim.trace
    run -1 bash -c "s7ppi --port '$port' read VB20000 VB100 <&- 2>&-"
    [ "$output" = "VB100   17" ]
    run -74 bash -c "s7ppi --port '$port' read VB100 VB20000 <&- >&- 2>&-"
    run -74 --separate-stderr bash -c "s7ppi --port '$port' read VB100 <&- >&-"
    [ "${stderr_lines[0]}" = "s7ppi: VB100: stdout takes no more data: Bad file descriptor" ]
    run -2 --separate-stderr bash -c 's7ppi decode - <&-'
    [ "${stderr_lines[0]}" = "s7ppi: stdin cannot be read: Bad file descriptor" ]
    run ! grep -vE '^#| < | > (68 1b 1b 68 02 00 6c 32 01|10 02 00 5c 5e 16)' sim.trace
}
