#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# scripts/check-testing accepts the tree as it is, and refuses a copy of it with one error in docs/testing.md or
# in the tests.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

bats_require_minimum_version 1.5.0

setup() {
    cd "$BATS_TEST_DIRNAME/../.." || return 1
    tree=$BATS_TEST_TMPDIR/tree
    mkdir -p "$tree/scripts" "$tree/docs"
    cp scripts/check-testing "$tree/scripts"
    cp docs/testing.md "$tree/docs"
    cp -r tests "$tree"
    cd "$tree" || return 1
}

# row TEXT: a row at the page's end.
row() {
    printf '| a rule | | %s |\n' "$1" >>docs/testing.md
}

# refused TEXT...: by the check, which says all that and nothing else.
refused() {
    local text
    run -1 scripts/check-testing
    for text in "$@"; do
        [[ "$output" == *"$text"* ]] || return 1
    done
    [[ "$output" == *"docs/testing.md is wrong in 1 ways" ]]
}

last_line() {
    wc -l <docs/testing.md
}

@test "the tree passes" {
    run -0 scripts/check-testing
    [ -z "$output" ]
}

@test "a function that its class does not have is no test" {
    # shellcheck disable=SC2016
    row '`TestPack::packsTheMoon`'
    refused "docs/testing.md:$(last_line):TestPack::packsTheMoon" "there is no such test"
}

@test "a test of another class is no test of this one" {
    # shellcheck disable=SC2016
    row '`TestBits::packsOneValue`'
    refused "TestBits::packsOneValue" "there is no such test"
}

@test "a test that was renamed is missed" {
    sed -i 's/packsOneValue/packsAValue/' tests/unit/test_pack.cpp
    refused ":TestPack::packsOneValue" "there is no such test"
}

@test "a function that no class runs is no test" {
    sed -i 's/^private slots:/private:/' tests/unit/test_bytes.cpp
    refused ":TestBytes::shortHasASign" "there is no such test"
}

@test "a test of the programs is found by its words" {
    # shellcheck disable=SC2016
    row '`install.bats: "the programs find the moon"`'
    refused 'install.bats: "the programs find the moon"' "there is no such test"
}

@test "a test stands in one row" {
    # shellcheck disable=SC2016
    row '`TestPack::packsOneValue`'
    refused "docs/testing.md:$(last_line):TestPack::packsOneValue, as in line " "and in no other"
}

@test "a rule without a test is refused" {
    row 'to come'
    refused "docs/testing.md:$(last_line):a rule" "a rule needs a test"
}

@test "a class of tests that the page leaves out is refused" {
    sed -i '/TestTiming::/d' docs/testing.md
    refused TestTiming "these classes test the library"
}

@test "a new class of tests belongs on the page" {
    printf 'TEST_CLASS(TestPlanted)\n' >tests/fault/test_planted.cpp
    refused TestPlanted "these classes test the library"
}

@test "a page without tests is refused" {
    echo "All is well." >docs/testing.md
    run -1 scripts/check-testing
    [[ "$output" == *"no test is named in it"* ]]
}
