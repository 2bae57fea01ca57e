#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# SECURITY.md names the tests that hold its promises; a test that was moved takes its row with it.

bats_require_minimum_version 1.5.0

@test "every test that SECURITY.md names is there" {
    cd "$BATS_TEST_DIRNAME/../.."
    local name count=0
    while read -r name; do
        case $name in
        s7ppi_*.bats) name=tests/host/commands/$name ;;
        *.bats | */) ;;
        *) name=$name.cpp ;;
        esac
        echo "$name"
        [ -e "$name" ]
        count=$((count + 1))
    done < <(sed -n '/^| threat/,/^$/p' SECURITY.md | grep -oE '`(fuzz|tests)/[^`]*`|`s7ppi_[a-z_]*\.bats`' | tr -d '`')
    [ "$count" -ge 20 ]
}
