#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What belongs to a fuzzer besides its source: its place in the build, the code that it is for, its inputs, its row in
# docs/testing.md. Without them scripts/fuzz would leave it out, or measure nothing.

# bats sets the variables of run.
# shellcheck disable=SC2154

bats_require_minimum_version 1.5.0

setup() {
    cd "$BATS_TEST_DIRNAME/../.." || return 1
}

fuzzers() {
    find fuzz -name 'fuzz_*.cpp' -printf '%f\n' | sed 's/\.cpp$//' | sort
}

@test "every fuzzer is built, has code, inputs and a row of what it asserts" {
    local fuzzer
    [ "$(fuzzers | wc -l)" -ge 14 ]
    for fuzzer in $(fuzzers); do
        echo "$fuzzer"
        grep -q "^s7ppi_add_fuzzer(${fuzzer}[ )]" fuzz/CMakeLists.txt
        grep -q "^$fuzzer " fuzz/code.txt
        [ -n "$(find "fuzz/corpus/${fuzzer#fuzz_}" -type f -print -quit)" ]
        [ "$(grep -c "^|.*| \`$fuzzer\` |" docs/testing.md)" -eq 1 ]
    done
}

@test "code, inputs and words are those of a fuzzer that is there" {
    local fuzzer file
    while read -r fuzzer file _; do
        echo "$fuzzer $file"
        [ -e "fuzz/$fuzzer.cpp" ]
        [ -e "$file" ]
    done < <(grep '^fuzz_' fuzz/code.txt)
    for file in fuzz/corpus/* fuzz/dictionaries/*; do
        echo "$file"
        file=${file##*/}
        [ -e "fuzz/fuzz_${file%.dict}.cpp" ]
    done
}

@test "the inputs that come with the sources take less than a megabyte" {
    [ "$(cat fuzz/corpus/*/* | wc -c)" -lt 1000000 ]
}

@test "a fuzzer or a time that is none is refused before anything is built" {
    run -2 scripts/fuzz 1 fuzz_nothing
    [[ "$output" == *"there is no fuzzer fuzz_nothing"*"hint: "* ]]
    run -2 scripts/fuzz soon
    [[ "$output" == *"soon is no number of seconds"*"hint: "* ]]
}
