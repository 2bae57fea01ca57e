#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi watch --plot as a user meets it: curves on a terminal.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

setup_file() {
    export TMUX_TMPDIR=$BATS_FILE_TMPDIR
}

terminal() {
    tmux -L "plot-$BATS_TEST_NUMBER" -f /dev/null "$@" 3>&-
}

teardown() {
    terminal kill-server 2>/dev/null || true
    end_test
}

# on_terminal LOCALE COMMAND: in a terminal of 80 columns and 24 rows.
on_terminal() {
    terminal -u new-session -d -x 80 -y 24 "LC_ALL=$1 bash --norc"
    terminal send-keys "PS1='ready> '; clear" Enter
    terminal send-keys "$2" Enter
}

screen() {
    terminal capture-pane -p
}

shows() {
    screen | grep -qE -- "$1"
}

# Characters from U+2800 to U+28FF.
shows_dots() {
    screen | LC_ALL=C grep -qP '\xe2[\xa0-\xa3]'
}

fills_the_picture() {
    screen | LC_ALL=C grep -qP '\xe2\x94\x82 ?(\xe2[\xa0-\xa3][\x80-\xbf]){60}'
}

@test "curves are drawn in dots, with the values and the time" {
    on_terminal C.UTF-8 "s7ppi watch --port sim --plot --interval 20 VW100 V100.4"
    eventually shows '^VW100  4386'
    eventually shows '^V100.4  1'
    eventually shows_dots
    shows '-[0-9]+ s +now$'
    shows '^ +[0-9]+ │'
    shows '^ +└(─|┬)+┬$'
}

@test "the curves fill the picture from the beginning, and then their span" {
    on_terminal C.UTF-8 "s7ppi watch --port sim --plot --interval 20 VW100"
    eventually fills_the_picture
    eventually shows '(-2 s +-1|-4 s +-2|-10 s +-5|-20 s +-10) s +now$' # a slow machine draws some of these only
}

@test "2: a span of less than a second, or of more than a day" {
    local span
    for span in 999ms 86401s 0; do
        run --separate-stderr s7ppi watch --port sim --plot --span "$span" VW100
        [ "$status" -eq 2 ]
        [[ "${stderr_lines[0]}" == *"--span"* ]]
    done
}

@test "without dots in the locale the curves are ASCII" {
    on_terminal C "s7ppi watch --port sim --plot --span 1 --interval 20 VW100"
    eventually shows '^VW100  4386'
    shows "\\|.*[.':]"
    shows '-[0-9]+ s +now$'
    [ "$(screen | grep -cP '[^\x00-\x7f]')" -eq 0 ]
}

@test "the curves follow the terminal's size, and the last ones stay at Ctrl-C" {
    on_terminal C.UTF-8 "s7ppi watch --port sim --plot --interval 20 VW100"
    eventually shows 'now$'
    terminal resize-window -x 60 -y 12
    eventually shows '^.{57}now$'
    terminal send-keys C-c
    eventually shows '^s7ppi: VW100: [0-9]+ attempts, 0 errors$'
    eventually shows '^ready> *$'
    run terminal capture-pane -p -S -
    [[ "${output//$'\n'/ }" == *" (simulated) every 20 ms, "*" polls until "20* ]] # where it breaks depends on the figures
    [[ "$output" == *$'\nVW100  4386'* ]]
    [ "$(grep -c 'now$' <<<"$output")" -eq 1 ]
    [[ "${lines[-1]}" == "ready>"* ]]
}

@test "values at the same place have a curve each, called by their addresses" {
    on_terminal C.UTF-8 "s7ppi watch --port sim --plot --interval 20 VW100 'VW100*2' 'V100.7*2'"
    eventually shows '^V101.0  0'
    [ "$(screen | grep -c '^VW100  4386')" -eq 2 ]
    shows '^VW102  13124'
    shows '^V100.7  0'
}

@test "every value of an item without an answer says so, and the reason is told" {
    on_terminal C.UTF-8 "s7ppi watch --port sim --plot --interval 20 VW100 'VW20000*2'"
    eventually shows '^VW100  4386'
    eventually shows '^VW20000  no answer'
    eventually shows '^VW20002  no answer'
    eventually shows '^VW20000: Invalid address \(incorrect variable address\)$'
}

shows_now_at_the_bottom() {
    [[ "$(screen | grep -n 'now$')" == 24:* ]]
}

@test "the items to draw can be chosen" {
    on_terminal C.UTF-8 "s7ppi watch --port sim --plot --select V100.4 VW100 V100.4"
    eventually shows '^V100.4  1'
    eventually shows ' every 500 ms, '
    eventually shows_now_at_the_bottom
    run ! shows '^VW100'
}

@test "2: without a terminal, without anything to draw, or with an unknown name it is refused" {
    run --separate-stderr s7ppi watch --port sim --plot VB0
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: --plot needs the terminal to itself" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
    on_terminal C.UTF-8 "s7ppi watch --port sim --plot VB0:str*4; s7ppi watch --port sim --plot --select X VB0"
    eventually shows '^s7ppi: texts and hexadecimal digits cannot be drawn$'
    eventually shows '^s7ppi: "X" is none of the watched items$'
    eventually shows '^hint: choose from VB0$'
}
