#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# A configuration or tag file that was saved with a byte order mark was refused for its first word. The mark was read as a
# letter of it.

# bats sets the variables of run.
# shellcheck disable=SC2154

load ../host/commands/common

@test "a file may begin with a byte order mark" {
    settings $'\xef\xbb\xbfport = sim' "format = csv"
    run --separate-stderr s7ppi read --config "$settings" VB100
    [ "${lines[1]}" = ",VB100,u8,0,17,,,1" ]
}
