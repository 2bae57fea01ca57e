#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi completion: the scripts, and in bash what they make of command lines.

# bats sets the variables of run, and the shell itself those of completion.
# shellcheck disable=SC2034,SC2154

load common

# completed WORD...: what bash makes of "s7ppi WORD..." with the cursor behind the last word.
completed() {
    eval "$(s7ppi completion bash)"
    COMP_WORDS=(s7ppi "$@")
    COMP_CWORD=$#
    _s7ppi s7ppi "${*: -1}" "${COMP_WORDS[$# - 1]}"
    printf '%s\n' "${COMPREPLY[@]}"
}

# What --help lists in a section: its names, without what they take.
listed() {
    sed -n "/^$1/,/^\$/p" | sed 1d | grep -oE '^ +(-., ?)?(--)?[a-z0-9-]+' | sed -E 's/.*[ ,]//'
}

@test "bash: every command that --help lists is completed" {
    local command
    mapfile -t commands < <(s7ppi --help | listed Commands:)
    [ "${#commands[@]}" -gt 8 ]
    for command in "${commands[@]}"; do
        [ "$(completed "${command%?}" | grep -cx -- "$command")" -eq 1 ]
    done
}

@test "bash: every option of every command that --help lists is completed" {
    local command option
    mapfile -t commands < <(s7ppi --help | listed Commands:)
    for command in "${commands[@]}"; do
        completed "$command" -- >"$BATS_TEST_TMPDIR/completed"
        mapfile -t options < <(s7ppi "$command" --help | grep -oE '^ +(-.,)?--[a-z0-9-]+' | sed 's/.*--/--/')
        [ "${#options[@]}" -gt 0 ]
        for option in "${options[@]}"; do
            grep -qx -- "$option" "$BATS_TEST_TMPDIR/completed"
        done
        grep -qx -- --port "$BATS_TEST_TMPDIR/completed"
    done
}

@test "bash: values of options are completed, the command is found behind options" {
    cd "$BATS_TEST_TMPDIR"
    [ "$(completed --parity e)" = "even" ]
    [ "$(completed --parity even read --format n)" = "ndjson" ]
    [ "$(completed --port s)" = "sim" ]
    [ "$(completed --port tc)" = "tcp:" ]
    [ "$(completed --trace read rea)" = "read" ]
    [ "$(completed completion z)" = "zsh" ]
    [ "$(completed help wa)" = "watch" ]
    [ "$(completed -b 19200 -p si)" = "sim" ]
    [ "$(completed -t 1s wat)" = "watch" ]
}

@test "bash: files are completed where files are named, with blanks in them" {
    cd "$BATS_TEST_TMPDIR"
    touch 'a b.so' 'c.so'
    [ "$(completed --plugin a)" = "a b.so" ]
    [ "$(completed plugin c)" = "c.so" ]
    [ "$(completed read a)" = "" ]
}

@test "bash: the script is sound" {
    s7ppi completion bash | bash -n
}

@test "zsh and fish: every command and option is in the script, and the shells take it" {
    local shell option command
    for shell in zsh fish; do
        s7ppi completion "$shell" >"$BATS_TEST_TMPDIR/$shell"
        mapfile -t commands < <(s7ppi --help | listed Commands:)
        for command in "${commands[@]}"; do
            grep -qw -- "$command" "$BATS_TEST_TMPDIR/$shell"
        done
        for option in port interval format verify; do
            grep -qE -- "(--|-l )$option\\b" "$BATS_TEST_TMPDIR/$shell"
        done
        "$shell" -n "$BATS_TEST_TMPDIR/$shell"
    done
}

@test "zsh: the names of an option leave each other out" {
    s7ppi completion zsh >"$BATS_TEST_TMPDIR/_s7ppi"
    grep -qF "'(-h --help)'{-h,--help}'[Show this and end]'" "$BATS_TEST_TMPDIR/_s7ppi"
    grep -qF "'*:word:(bash zsh fish)'" "$BATS_TEST_TMPDIR/_s7ppi"
    grep -qE -- "--parity'\[.*\]:word:\(none odd even mark space\)'" "$BATS_TEST_TMPDIR/_s7ppi"
}

@test "zsh: the script completes from the first time on, loaded as a function or run" {
    local stubs='compdef() { print -r -- "$@"; }; _arguments() { print -r -- asked; }; '
    s7ppi completion zsh -o "$BATS_TEST_TMPDIR/_s7ppi"
    run zsh -fc "$stubs fpath=('$BATS_TEST_TMPDIR' \$fpath); autoload -Uz _s7ppi; _s7ppi; _s7ppi"
    [ "$output" = "asked
asked" ]
    run zsh -fc "$stubs source '$BATS_TEST_TMPDIR/_s7ppi'"
    [ "$output" = "_s7ppi s7ppi" ]
}

@test "fish: commands, options and choices are completed" {
    s7ppi completion fish -o "$BATS_TEST_TMPDIR/s7ppi.fish"
    fish_completions() {
        HOME=$BATS_TEST_TMPDIR fish --no-config -c "source '$BATS_TEST_TMPDIR/s7ppi.fish'; complete -C '$1'" | cut -f 1
    }
    [ "$(fish_completions "s7ppi dec")" = decode ]
    [ "$(fish_completions "s7ppi watch --pl" | sort | paste -sd " ")" = "--plot --plugin" ]
    [ "$(fish_completions "s7ppi --parity e")" = even ]
}

@test "a file is written with -o" {
    s7ppi completion bash -o "$BATS_TEST_TMPDIR/file"
    s7ppi completion bash | cmp - "$BATS_TEST_TMPDIR/file"
}

@test "2: other shells are refused" {
    run --separate-stderr s7ppi completion tcsh
    [ "$status" -eq 2 ]
    [ "$output" = "" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
}
