#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# Answers that hold less, or more, than was asked for: the driver fits them, and no value that the controller
# did not send may be shown, recorded or written to a file.

# shellcheck disable=SC2030,SC2031,SC2154

load common

# read_answer REFERENCE KIND LENGTH DATA: a good answer to a read but for its item's length and data.
read_answer() {
    frame "$(printf '00020832030000%04x0002%04x00000401ff%s%s%s' "$1" "$((4 + ${#4} / 2))" "$2" "$3" "$4")"
}

# Items; kind, length and data of the answer; what came of what was asked.
SHORT='VB100*4       04 0010 1122           2 of 4
VB100:u32     04 0018 112233         3 of 4
MB0*3         04 000c 1122           1 of 3
VW100*2       04 0010 1122           2 of 4
VW100*2       04 0018 112233         3 of 4
AIW0*2        04 0010 1122           2 of 4
VD100*2       04 0020 11223344       4 of 8
VD100*2       04 0030 112233445566   6 of 8
VD100:f32*2   04 0038 11223344556677 7 of 8
V100.4*12     04 0008 11             1 of 2
T37*2         09 0005 020000012c     5 of 10
T37           09 0003 020000         3 of 5
T37:bool*2    09 0005 020000012c     5 of 10
C5*2          09 0003 100005         3 of 6
C5            09 0002 1000           2 of 3
HC0*2         09 0005 00000186a0     5 of 10
HC0           09 0004 000001         3 of 5'

@test "5: an answer that holds less than was asked for gives no value, whatever the width" {
    local item kind length data shortage
    while read -r item kind length data shortage; do
        start fake_controller e5 "$(read_answer 1 "$kind" "$length" "$data")"
        run -5 --separate-stderr s7ppi read --port "$port" --retries 0 --timeout 300 "$item"
        [ -z "$output" ]
        [[ "${stderr_lines[0]}" == "s7ppi: "*": the answer holds $shortage bytes" ||
            "${stderr_lines[0]}" == "s7ppi: "*": invalid response" ]]
    done <<<"$SHORT"
    start fake_controller e5 "$(read_answer 1 04 0030 112233445566)"
    run -5 --separate-stderr s7ppi read --port "$port" --retries 0 --format json 'VD100*2'
    [ "$(jq -c '.items[0] | .values, .error' <<<"$output")" = $'null\n"the answer holds 6 of 8 bytes"' ]
    [ "${stderr_lines[0]}" = "s7ppi: VD100: the answer holds 6 of 8 bytes" ]
    [[ "${stderr_lines[1]}" == "hint: the controller sent less than it was asked for"* ]]
}

@test "5: such an answer is an error of a watched item, and is not recorded" {
    local item kind length data shortage
    while read -r item kind length data shortage; do
        start fake_controller e5 "$(read_answer 1 "$kind" "$length" "$data")"
        run -5 --separate-stderr s7ppi watch --port "$port" --retries 0 --timeout 300 --count 1 --format csv "$item"
        [ "${#lines[@]}" -eq 2 ]
        [[ "${lines[1]}" == *,,,,"the answer holds $shortage bytes,$port,2" || "${lines[1]}" == *",,,,invalid response,$port,2" ]]
    done <<<"$SHORT"
}

@test "5: a dump of such an answer has nothing of it" {
    cd "$BATS_TEST_TMPDIR"
    local range kind length data shortage
    while read -r range kind length data shortage; do
        start fake_controller e5 "$(read_answer 1 "$kind" "$length" "$data")"
        run -5 --separate-stderr s7ppi dump -q --port "$port" --retries 0 --timeout 300 "$range" -o memory.dump
        [ "${stderr_lines[0]}" = "s7ppi: $range: the answer holds $shortage bytes" ]
        run ! compgen -G "memory.dump*"
    done <<'RANGES'
VB100..VB103 04 0010 1122 2 of 4
VW100..VW102 04 0018 112233 3 of 4
VD100..VD104 04 0030 112233445566 6 of 8
T37..T38 09 0005 020000012c 5 of 10
C5..C6 09 0003 100005 3 of 6
HC0..HC1 09 0005 00000186a0 5 of 10
RANGES
}

@test "5: what is read back of a write or a load counts only when it is whole" {
    cd "$BATS_TEST_TMPDIR"
    start fake_controller e5 "$(write_answer 1)" e5 "$(read_answer 2 04 0008 01)"
    run -5 --separate-stderr s7ppi write --verify --port "$port" --retries 0 VB0=1,0
    [ -z "$output" ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: the answer holds 1 of 2 bytes" ]

    printf 's7ppi-dump 1\narea VB0..VB1\nstation 2\nVB0 01 00\n' >press.dump
    start fake_controller e5 "$(write_answer 1)" e5 "$(read_answer 2 04 0008 01)"
    run -5 --separate-stderr s7ppi load -q --verify --port "$port" --retries 0 press.dump
    [ "${stderr_lines[0]}" = "s7ppi: VB0..VB1: the answer holds 1 of 2 bytes" ]
}

@test "more than was asked for changes no value" {
    local item kind length data value
    while read -r item kind length data value; do
        start fake_controller e5 "$(read_answer 1 "$kind" "$length" "$data")"
        run --separate-stderr s7ppi read --port "$port" --retries 0 --timeout 300 "$item"
        [ "$status:$output" = "0:$item $value" ] || [ "$status:$output" = "5:" ]
    done <<'ANSWERS'
VB100 04 0010 1122 17
VW100 04 0020 11223344 4386
VD100 04 0040 1122334455667788 287454020
V100.0 04 0010 0100 1
T37 09 000a 020000012c0200000001 300
T37:bool 09 000a 020000012c0000000001 1
C5 09 0006 100005000001 5
HC0 09 000a 00000186a00000000001 100000
ANSWERS
    # A second item behind the one that was asked for.
    start fake_controller e5 "$(frame 0002083203000000010002000b00000402ff0400081100ff04000822)"
    run --separate-stderr s7ppi read --port "$port" --retries 0 --timeout 300 VB100
    [ "$status:$output" = "0:VB100 17" ] || [ "$status:$output" = "5:" ]
}
