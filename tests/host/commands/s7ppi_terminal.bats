#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# Texts of controllers and files on a terminal: none of them steers it.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

# on_terminal COMMAND: what it sends to a terminal, both streams, in $output.
on_terminal() {
    run script --quiet --return --command "$1" /dev/null
}

is_harmless() {
    ! grep -qP '\x1b|\x07|\xc2\x9b' <<<"$output"
}

@test "what a controller holds is written out on a terminal, in every form, and kept elsewhere" {
    local format
    export NO_COLOR=1
    start s7ppi-sim
    s7ppi write --port "$port" VB0:hex=1b5b324a
    for format in text csv tsv json ndjson raw; do
        on_terminal "s7ppi read --port $port --format $format VB0:str*4"
        [ "$status" -eq 0 ]
        is_harmless
        [[ "$output" == *"[2J"* ]]
    done
    [ "$(s7ppi read --port "$port" --format raw VB0:str*4 | xxd -p)" = 1b5b324a ]
    s7ppi read --port "$port" --format csv VB0:str*4 | grep -qP '\x1b\[2J'
}

@test "escapes are dim where the terminal has colours, in text alone" {
    start s7ppi-sim
    s7ppi write --port "$port" VB0:hex=41001b225c42
    export TERM=xterm
    on_terminal "s7ppi read --port $port VB0:str*6"
    local dim=$'\e[2m' usual=$'\e[22m'
    [ "${output%$'\r'}" = "VB0 \"A$dim\\x00$usual$dim\\x1b$usual$dim\\\"$usual$dim\\\\${usual}B\"" ]
    on_terminal "s7ppi read --port $port VB0:str*6 </dev/null"
    [ "${output%$'\r'}" = "VB0 \"A$dim\\x00$usual$dim\\x1b$usual$dim\\\"$usual$dim\\\\${usual}B\"" ]
    for form in csv json; do
        on_terminal "s7ppi read --port $port --format $form VB0:str*6"
        is_harmless
    done
    NO_COLOR=1 on_terminal "s7ppi read --port $port VB0:str*6"
    is_harmless
    [ "$(s7ppi read --port "$port" VB0:str*6)" = 'VB0 "A\x00\x1b\"\\B"' ]
}

@test "names and units of a tag file are written out on a terminal" {
    printf 'name,address,unit\nBoiler\e]0;mine\a,VB100,\xc2\x9b2J\n' >"$BATS_TEST_TMPDIR/tags.csv"
    local format
    export NO_COLOR=1
    for format in text csv tsv json; do
        on_terminal "s7ppi read --port sim --format $format @$BATS_TEST_TMPDIR/tags.csv"
        [ "$status" -eq 0 ]
        is_harmless
        [[ "$output" == *"mine"* ]]
    done
}

@test "errors never steer a terminal, wherever they go, and quote no more than fits" {
    printf 'name,address\nBoiler,"V\e[2J%100000s"\n' x >"$BATS_TEST_TMPDIR/tags.csv"
    run s7ppi read --port sim "@$BATS_TEST_TMPDIR/tags.csv"
    [ "$status" -eq 2 ]
    is_harmless
    [ "${#output}" -lt 3000 ]
    run s7ppi read --port sim $'VB0\e[2J' $'@\e[2J'
    [ "$status" -eq 2 ]
    is_harmless
    run s7ppi-sim --memory $'/no/\e[2J'
    [ "$status" -ne 0 ]
    is_harmless
}
