#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# A text of the controller lost what stands behind its first character 0, in JSON and CSV and when it was written. Its bytes
# passed through a string that ends there.

# bats sets the variables of run.
# shellcheck disable=SC2154

load ../host/commands/common

@test "a text has a character for every byte, the character 0 too" {
    start s7ppi-sim
    local text='["AB\u0000C\n\u0080ÿ\"\\\t"]'
    run --separate-stderr s7ppi write --port "$port" --verify --format json VB50:str='AB\x00C\x0a\x80\xff\"\\\x09'
    [ "$(jq -c '.items[0].values == '"$text" <<<"$output")" = true ]
    run --separate-stderr s7ppi read --port "$port" --format json 'VB50:str*10'
    [ "$(jq -c '.items[0].values == '"$text" <<<"$output")" = true ]
    run --separate-stderr s7ppi read --port "$port" --format ndjson 'VB50:str*10'
    [ "$(jq -c '.values == '"$text" <<<"$output")" = true ]
    s7ppi read --port "$port" -o "$BATS_TEST_TMPDIR/text.csv" 'VB50:str*10'
    [ "$(tail -n +2 "$BATS_TEST_TMPDIR/text.csv" | tr '\0' '0')" = $',VB50,str,0,"AB0C\n\u0080ÿ""\\\t",,' ]
    s7ppi read --port "$port" -o "$BATS_TEST_TMPDIR/text.tsv" 'VB50:str*10'
    [ "$(tail -n +2 "$BATS_TEST_TMPDIR/text.tsv" | tr '\0' '0')" = $'\tVB50\tstr\t0\tAB0C\\n\u0080ÿ"\\\\\\t\t\t' ]
}

@test "2: a text that is read does not end at a character 0" {
    printf 'e5\0e5' >"$BATS_TEST_TMPDIR/frames"
    run --separate-stderr s7ppi decode - <"$BATS_TEST_TMPDIR/frames"
    [ "$status" -eq 2 ]
    printf '2026-01-31T12:00:00.000Z < e5\0e5\n' >"$BATS_TEST_TMPDIR/trace"
    run --separate-stderr s7ppi decode --trace "$BATS_TEST_TMPDIR/trace"
    [ "$status" -eq 2 ]
    printf 'name,address\nA,VB0\nB\0,VB1\nC,VB2\n' >"$BATS_TEST_TMPDIR/tags.csv"
    run --separate-stderr s7ppi read --port sim --timeout 60000 "@$BATS_TEST_TMPDIR/tags.csv"
    [ "${#lines[@]}" -eq 3 ]
    s7ppi dump --port sim --timeout 60000 VB0..VB3 -o "$BATS_TEST_TMPDIR/dump" 2>/dev/null
    sed -i 's/^area VB0..VB3/&\x000/' "$BATS_TEST_TMPDIR/dump"
    run --separate-stderr s7ppi load --dry-run "$BATS_TEST_TMPDIR/dump"
    [ "$status" -eq 2 ]
}
