#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi plugin as a user meets it: good plug-ins, odd ones, and files that are none.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

# The finding of one thing: its mark and its text.
finding() {
    grep -E "^[ !] $1 " <<<"$output" | sed -E "s/^(.) $1 +/\\1/"
}

@test "the driver has all that a panel needs" {
    run --separate-stderr s7ppi plugin "$S7PPI_PLUGIN_FILE"
    [ "$status" -eq 0 ]
    [ "$stderr" = "" ]
    [ "$(grep -c '^!' <<<"$output")" -eq 0 ]
    [ "$(finding CreateDriver)" = " exported" ]
    [ "$(finding qt_plugin_instance)" = " exported" ]
    [ "$(finding qt_plugin_query_verification_data)" = " exported" ]
    [[ "$(finding 'verification text')" == " version=4."*", debug=false, buildkey="* ]]
    [ "$(finding identity)" = " Simatic S7-200 PPI" ]
    [ "$(finding 'new drivers')" = " Simatic S7-200 PPI" ]
    [ "$(grep -c '^  serial line  *9600 baud, even parity, 8 data bits, 1 stop bit$' <<<"$output")" -eq 1 ]
}

@test "7: a plug-in without the panel's entry points is told what is missing" {
    run --separate-stderr s7ppi plugin "$S7PPI_TEST_DIR/libidle_plugin.so"
    [ "$status" -eq 7 ]
    [ "$(finding CreateDriver)" = "!missing" ]
    [ "$(finding qt_plugin_instance)" = " exported" ]
    [ "$(finding 'verification text')" = "!missing" ]
    [ "$(finding loading)" = " the driver is there" ]
    [[ "${stderr_lines[0]}" == "s7ppi: "*": not as a panel needs it: CreateDriver, "* ]]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
}

@test "7: a driver with odd defaults is told with the rest" {
    run --separate-stderr s7ppi plugin "$S7PPI_TEST_DIR/libodd_plugin.so"
    [ "$status" -eq 7 ]
    [[ "$(finding defaults)" == "!"?* ]]
    [ "$(finding identity)" = " Not Assigned" ]
}

@test "7: a plug-in that makes one driver for all is told" {
    run --separate-stderr s7ppi plugin "$S7PPI_TEST_DIR/libsingle_plugin.so"
    [ "$status" -eq 7 ]
    [ "$(finding 'new drivers')" = "!CreateDriver makes no new driver on every call" ]
}

@test "7: a plug-in of another interface, and one that only claims the driver's" {
    run --separate-stderr s7ppi plugin "$S7PPI_TEST_DIR/libforeign_plugin.so"
    [ "$status" -eq 7 ]
    [[ "$(finding interface)" == "!org.example.Foreign/1.0, not "* ]]
    [[ "$(finding loading)" == "!"* ]]
    run --separate-stderr s7ppi plugin "$S7PPI_TEST_DIR/libhollow_plugin.so"
    [ "$status" -eq 7 ]
    [[ "$(finding loading)" == "!"* ]]
}

@test "7: a plug-in that crashes takes nothing with it" {
    # The sanitizer would turn the crash into an exit of its own.
    ASAN_OPTIONS=handle_segv=0 run --separate-stderr s7ppi plugin "$S7PPI_TEST_DIR/libcrashing_plugin.so"
    [ "$status" -eq 7 ]
    [ "$(finding loading)" = "!it crashes: Segmentation fault" ]
    [ "$(finding qt_plugin_instance)" = " exported" ]
}

@test "7: a library for another machine is read and not loaded" {
    cp "$S7PPI_PLUGIN_FILE" "$BATS_TEST_TMPDIR/other.so"
    printf '\x15\x00' | dd of="$BATS_TEST_TMPDIR/other.so" bs=1 seek=18 conv=notrunc status=none
    run --separate-stderr s7ppi plugin "$BATS_TEST_TMPDIR/other.so"
    [ "$status" -eq 7 ]
    [[ "$(finding machine)" == "!machine 21, "*"; this one is "* ]]
    [ "$(finding CreateDriver)" = " exported" ]
    [ "$(finding loading)" = "" ]
}

@test "7: files that are no libraries, and libraries that are cut" {
    printf '' >"$BATS_TEST_TMPDIR/empty"
    printf 'some text' >"$BATS_TEST_TMPDIR/text"
    head -c 2000 "$S7PPI_PLUGIN_FILE" >"$BATS_TEST_TMPDIR/cut"
    local file
    for file in empty text cut; do
        run --separate-stderr s7ppi plugin "$BATS_TEST_TMPDIR/$file"
        [ "$status" -eq 7 ]
        [ "$(grep -c '^!' <<<"$output")" -gt 0 ]
    done
    run --separate-stderr s7ppi plugin "$BATS_TEST_TMPDIR/text"
    [ "$output" = "! file                               no shared library: it begins with 73 6f 6d 65" ]
}

@test "2: a file that is not there" {
    run --separate-stderr s7ppi plugin /nonexistent.so
    [ "$status" -eq 2 ]
    [ "$output" = "" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
}

@test "json has the findings and what the driver says" {
    s7ppi plugin --format json "$S7PPI_PLUGIN_FILE" >"$BATS_TEST_TMPDIR/json"
    grep -q '{"what":"CreateDriver","good":true,"text":"exported"}' "$BATS_TEST_TMPDIR/json"
    grep -q '"station":2' "$BATS_TEST_TMPDIR/json"
}
