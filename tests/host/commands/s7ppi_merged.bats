#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# Items that come together with one request: what is sent for them, and what becomes of them when the controller
# refuses the request, answers too little or is silent.

# bats runs every test in a shell of its own and sets the variables of run; items have commas in them.
# shellcheck disable=SC2030,SC2031,SC2154,SC2054

load common

# tags LINE...: a tag file of these lines, in $tags.
tags() {
    tags=$BATS_TEST_TMPDIR/tags.csv
    printf '%s\n' "$@" >"$tags"
}

# get ITEM..., follow ITEM...: read and watch at $port without repetitions, with a trace.
get() {
    run --separate-stderr s7ppi read --port "$port" --retries 0 --trace "$BATS_TEST_TMPDIR/trace" "$@"
}
follow() {
    run --separate-stderr s7ppi watch --port "$port" --retries 0 --interval 1 --trace "$BATS_TEST_TMPDIR/trace" "$@"
}

# The reads of the trace in their order, on one line: number and count of each, by letters for some areas; @STATION
# unless it is 2. A byte is 02 in the frame, a word 04; bits of memory are read in bytes.
requests() {
    local word=() area number texts=()
    while read -r -a word; do
        case ${word[27]} in
        84) area=V ;;
        83) area=M ;;
        06) area=AI ;;
        1f) area=T ;;
        1e) area=C ;;
        20) area=HC ;;
        *) area=${word[27]}: ;;
        esac
        number=$((16#${word[28]}${word[29]}${word[30]}))
        case $area in
        T | C | HC) ;;
        *) number=$((number / 8)) ;;
        esac
        texts+=("$area$number*$((16#${word[23]}${word[24]}))$([ "${word[4]}" = 02 ] || echo "@$((16#${word[4]}))")")
    done < <(sed -n 's/^[^#][^ ]* > \(68.*\)/\1/p' "$BATS_TEST_TMPDIR/trace")
    echo "${texts[*]}"
}

# read_answer REFERENCE DATA: a good answer to a read of bytes.
read_answer() {
    frame "$(printf '00020832030000%04x0002%04x00000401ff04%04x%s' "$1" $((4 + ${#2} / 2)) $((${#2} * 4)) "$2")"
}

# refusals CODE N...: the simulator's options for item returns of that code to these requests.
refusals() {
    local code=$1 number
    shift
    refusals=()
    for number in "$@"; do
        refusals+=(--fault "$code@$number")
    done
}

@test "neighbours are one request, with the gap between them" {
    start s7ppi-sim
    get VB100 VW102:hex V103.2 VB100
    [ "$status" -eq 0 ]
    [ "$output" = "VB100  17
VW102  0x3344
V103.2 1
VB100  17" ]
    [ "$(requests)" = "V100*4" ]
}

@test "--no-merge reads every item by itself, in the order of the command line" {
    start s7ppi-sim
    get --no-merge VB101 VB100 T37 VB101
    [ "$status" -eq 0 ]
    [ "$(requests)" = "V101*1 V100*1 T37*1 V101*1" ]
    follow --no-merge --count 2 VB100 VB101
    [ "$(requests)" = "V100*1 V101*1 V100*1 V101*1" ]
    run --separate-stderr s7ppi write --port "$port" --verify --no-merge --trace "$BATS_TEST_TMPDIR/trace" VB0=1 VB1=2
    [ "$status" -eq 0 ]
    [ "$(requests)" = "V0*1 V1*1 V0*1 V1*1" ]
}

@test "--block bounds the bytes of every request" {
    cd "$BATS_TEST_TMPDIR"
    start s7ppi-sim
    get --block 1 'VB0*3'
    [ "$status" -eq 0 ]
    [ "$(requests)" = "V0*1 V1*1 V2*1" ]
    get --block 32 'VW0*8' 'VW16*9' 'VB34*40' 'T0*17'
    [ "$status" -eq 0 ]
    [ "$(requests)" = "V0*8 V16*32 V48*26 T0*16 T16*1" ]
    follow --block 32 --count 1 'VB0*64'
    [ "$(requests)" = "V0*32 V32*32" ]
    run --separate-stderr s7ppi write --port "$port" --verify --block 2 --trace trace VB0=1,2,3 VB3=4
    [ "$(requests)" = "V0*3 V3*1 V0*2 V2*2" ]
    run --separate-stderr s7ppi dump --port "$port" --block 32 --trace trace -q VB0..VB70 -o x.dump
    [ "$(requests)" = "V0*32 V32*32 V64*7" ]
    run --separate-stderr s7ppi load --port "$port" --verify --block 40 --trace trace -q x.dump
    [ "$status" -eq 0 ]
    [[ "$(requests)" == *" V0*40 V40*31" ]]
}

@test "2: a block of no bytes, or of more than a frame carries" {
    local command block
    for command in "read VB0" "watch VB0" "write VB0=1 --verify" "dump VB0..VB9 -o x" "load x --verify"; do
        for block in 0 223 -1 x; do
            # shellcheck disable=SC2086
            run --separate-stderr s7ppi $command --port sim --block "$block"
            [ "$status" -eq 2 ]
            [[ "${stderr_lines[0]}" == "s7ppi: "*"--block"* ]]
        done
    done
    [[ "$(s7ppi read --help)" == *"(1 to 222; default 222)"* ]]
    run --separate-stderr s7ppi dump --port sim --no-merge VB0..VB9 -o x
    [ "$status" -eq 2 ]
}

@test "items together bring what they bring one by one, in every form" {
    printf '%s' '{ "V": { "0": "0102030405060708090a0b0c0d0e0f10", "300": "4142c8f5c3" },
        "M": { "0": "a5" }, "AI": { "2": "fff6" }, "C": { "5": { "value": 9, "preset": 1, "status": true } },
        "T": { "37": { "value": 300, "preset": 100, "status": true } }, "HC": { "1": 77 } }' >"$BATS_TEST_TMPDIR/2.json"
    start s7ppi-sim --station "2:$BATS_TEST_TMPDIR/2.json" --station 3
    tags name,address,type,scale,unit,station A,VW0,i16,0.1,bar, B,VD1,u32,,, C,VW0,u8,,, D,V3.5,,,, E,VB300,str,,, \
        F,VD301,f32,,, G,M0.0,,,, H,AIW2,,,, I,AIW0,,,, J,T37,,,, K,T37,bool,,, L,C5,,,, M,HC1,,,, N,HC0,,,, O,VB100,hex,,,3 \
        P,VB103,,,,3 Q,VB20000,,,, R,VD8,bcd,,,
    local format merged
    for format in text json csv tsv ndjson; do
        get --format "$format" "@$tags" 'V0.6*20' 'C5:bool*3'
        [ "$status" -eq 1 ]
        [[ "$stderr" == *"Q: Invalid address"* ]]
        merged=$(timeless "$output")
        [ -n "$merged" ]
        get --no-merge --format "$format" "@$tags" 'V0.6*20' 'C5:bool*3'
        [ "$status" -eq 1 ]
        [ "$(timeless "$output")" = "$merged" ]
    done
}

@test "1: a request that is refused is taken apart, and each item's own answer counts" {
    local fault text
    while read -r fault text; do
        refusals "$fault" 1 3
        start s7ppi-sim "${refusals[@]}"
        get VB100 VB101 VB102
        [ "$status" -eq 1 ]
        [ "$output" = "VB100 17
VB102 51" ]
        [ "${stderr_lines[0]}" = "s7ppi: VB101: $text" ]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
        [ "${#stderr_lines[@]}" -eq 2 ]
        [ "$(requests)" = "V100*3 V100*1 V101*1 V102*1" ]
    done <<'FAULTS'
item-refused=05 Invalid address (incorrect variable address)
item-refused=0a Object does not exist or length error
item-refused=06 Data type is not supported
item-refused=03 Illegal object access
hardware-fault Hardware fault
error-class invalid request to PLC
FAULTS
}

@test "with -v it is told which request is taken apart, and why" {
    start s7ppi-sim
    run --separate-stderr s7ppi read -v --port "$port" --retries 0 VB10238 VB10239 VB10240
    [ "$status" -eq 1 ]
    [[ "$stderr" == *"VB10238*3 is refused (Invalid address (incorrect variable address)): its 3 items are read one by one"* ]]
}

@test "an item that reads as it is written has its own width again when it is read by itself" {
    start s7ppi-sim --fault item-refused@1
    get VW100 VD100:hex V100.4*4
    [ "$status" -eq 0 ]
    [ "$output" = "VW100  4386
VD100  0x11223344
V100.4 1 0 0 0" ]
}

@test "1: an item that watch finds refused is asked for alone, and does not disturb the others again" {
    start s7ppi-sim
    follow --count 3 VB10238 VB10239 VB10240
    [ "$status" -eq 1 ]
    [ "$(requests)" = "V10238*3 V10238*1 V10239*1 V10240*1 V10238*2 V10240*1 V10238*2 V10240*1" ]
    [ "$(grep -c "^s7ppi: VB10240: Invalid address" <<<"$stderr")" -eq 1 ]
}

@test "1: an item that is answered again comes with the others again" {
    refusals item-refused 1 3
    start s7ppi-sim "${refusals[@]}"
    follow --count 3 VB100 VB101 VB102
    [ "$status" -eq 1 ]
    [ "$(requests)" = "V100*3 V100*1 V101*1 V102*1 V100*1 V101*1 V102*1 V100*3" ]
    [[ "$output" == *" VB101 34" ]]
}

@test "1: an item of which only a part is refused stays alone" {
    start s7ppi-sim
    follow --block 4 --count 3 'VB10236*5' VB10241
    [ "$status" -eq 1 ]
    local alone="V10236*4 V10240*1 V10241*1"
    [ "$(requests)" = "V10236*4 V10240*2 V10240*1 V10241*1 $alone $alone" ]
}

@test "a gap that was the reason is not read again" {
    start s7ppi-sim --fault item-refused@1
    follow --count 3 VB100 VB102 VB103
    [ "$status" -eq 0 ]
    [ "$(requests)" = "V100*4 V100*1 V102*1 V103*1 V100*1 V102*2 V100*1 V102*2" ]
}

@test "where the length was the reason requests become shorter" {
    refusals item-refused=06 1 6
    start s7ppi-sim "${refusals[@]}"
    follow --count 3 VB100 VB101 VB102 VB103
    [ "$status" -eq 0 ]
    [ "$(requests)" = "V100*4 V100*1 V101*1 V102*1 V103*1 V100*2 V100*1 V101*1 V102*2 V100*1 V101*1 V102*1 V103*1" ]
}

@test "a refusal that tells of the controller and not of the request teaches nothing" {
    # The first is a negative frame, "no resource", the second an item's return code, "Hardware fault".
    local fault
    for fault in no-resource hardware-fault; do
        start s7ppi-sim --fault "$fault@1"
        follow --count 2 VB0 VB10
        [ "$(requests)" = "V0*11 V0*1 V10*1 V0*11" ]
    done
}

@test "what was learned of a station holds for no other, and for no other area" {
    start s7ppi-sim --station 2 --station 3 --fault item-refused@1
    follow --count 2 VB0 VB1 VB0@3 VB1@3 MB0 MB1
    [ "$status" -eq 0 ]
    [ "$(requests)" = "V0*2 V0*1 V1*1 V0*2@3 M0*2 V0*1 V1*1 V0*2@3 M0*2" ]
}

@test "5: of a request that brings too few bytes no value counts" {
    cd "$BATS_TEST_TMPDIR"
    start fake_controller e5 "$(read_answer 1 1122)"
    get --timeout 300 VB0 VB1 VB2
    [ "$status" -eq 5 ]
    [ -z "$output" ]
    local item
    for item in VB0 VB1 VB2; do
        [[ "$stderr" == *"s7ppi: $item: the answer holds 2 of 3 bytes"* ]]
    done
    [ "$(requests)" = "V0*3" ]

    start fake_controller e5 "$(read_answer 1 1122)"
    follow --timeout 300 --count 1 --format csv VB0 VB1 VB2
    [ "$status" -eq 5 ]
    [ "$(cut -d , -f 3,6,9 <<<"$output")" = "address,value,error
VB0,,the answer holds 2 of 3 bytes
VB1,,the answer holds 2 of 3 bytes
VB2,,the answer holds 2 of 3 bytes" ]

    start fake_controller e5 "$(write_answer 1)" e5 "$(write_answer 2)" e5 "$(read_answer 3 01)"
    run -5 --separate-stderr s7ppi write --verify --port "$port" --retries 0 --timeout 300 VB0=1 VB1=0
    [ -z "$output" ]
    [ "$(grep -c ': the answer holds 1 of 2 bytes$' <<<"$stderr")" -eq 2 ]

    start fake_controller e5 "$(read_answer 1 1122)" e5 "$(read_answer 2 33)"
    run -5 --separate-stderr s7ppi dump -q --port "$port" --retries 0 --timeout 300 --block 2 VB0..VB3 -o memory.dump
    [[ "$stderr" == *"VB2..VB3: the answer holds 1 of 2 bytes"* ]]
    run ! compgen -G "memory.dump*"
}

@test "4: a request that is not answered is told for each of its items, and asked once" {
    start fake_controller silence
    get --timeout 200 VB0 VB1
    [ "$status" -eq 4 ]
    [ "$(grep -c ': plc no response$' <<<"$stderr")" -eq 2 ]
    [ "$(requests)" = "V0*2" ]
}

@test "items of one request have its time and its answer time" {
    start s7ppi-sim
    follow --all --count 3 -o "$BATS_TEST_TMPDIR/x.csv" VB100 VB101 VB103 T37
    [ "$status" -eq 0 ]
    [ "$(awk -F , '$3 ~ /^VB/ { print $1, $8 }' "$BATS_TEST_TMPDIR/x.csv" | sort | uniq -c | awk '{ print $1 }')" = "3
3
3" ]
    [ "$(requests)" = "V100*4 T37*1 V100*4 T37*1 V100*4 T37*1" ]
}

@test "groups of tags are polled as often as their intervals say, each with a line in the summary" {
    start s7ppi-sim
    tags name,address,interval Slow,VB100,3600000 Fast,VB101,1 Fastest,VB102,1
    follow --all --count 8 --format csv "@$tags"
    [ "$status" -eq 0 ]
    [ "$(grep -c ,Slow, <<<"$output")" -eq 1 ]
    [ "$(grep -c ,Fast, <<<"$output")" -eq 8 ]
    [ "$(grep -c ,Fastest, <<<"$output")" -eq 8 ]
    [ "$(requests | tr ' ' '\n' | sort | uniq -c | xargs)" = "1 V100*1 8 V101*2" ]
    [ "$(grep -c '^s7ppi: every 1 ms: 8 polls, 8 late, by [0-9]* ms at most$' <<<"$stderr")" -eq 1 ]
    [ "$(grep -c '^s7ppi: every 3600000 ms: 1 poll, none late$' <<<"$stderr")" -eq 1 ]
}

@test "4: a station that does not answer is told once, asked in every tenth poll, and the other loses no poll" {
    start s7ppi-sim
    follow --timeout 1s --count 31 --all --format csv VB100 VB100@3
    [ "$status" -eq 4 ]
    [ "$(grep -c 'station 3 does not answer: it is asked in every tenth poll only$' <<<"$stderr")" -eq 1 ]
    [ "$(grep -c 'answers again' <<<"$stderr")" -eq 0 ]
    [ "$(requests | tr ' ' '\n' | sort | uniq -c | xargs)" = "31 V100*1 5 V100*1@3" ]
    [ "$(grep -c ',VB100,u8,0,17,.*,2$' <<<"$output")" -eq 31 ]
    [ "$(grep -c ',VB100,u8,.*plc no response,.*,3$' <<<"$output")" -eq 5 ]
}

@test "4: a station that is back is told once, and asked in every poll again" {
    refusals silent 2 4 6
    start s7ppi-sim --station 2 --station 3 "${refusals[@]}"
    follow --timeout 1s --count 16 --all --format csv VB100 VB100@3
    [ "$status" -eq 4 ]
    [ "$(grep -c 'station 3 does not answer: it is asked in every tenth poll only$' <<<"$stderr")" -eq 1 ]
    [ "$(grep -c '^s7ppi: station 3 answers again$' <<<"$stderr")" -eq 1 ]
    [ "$(requests | tr ' ' '\n' | sort | uniq -c | xargs)" = "16 V100*1 7 V100*1@3" ]
    [ "$(grep -c ',VB100,u8,0,17,.*,3$' <<<"$output")" -eq 4 ]
}

@test "4: one station alone is asked in every poll" {
    start fake_controller
    follow --timeout 50 --count 6 VB0 MB0
    [ "$status" -eq 4 ]
    [ "$(requests | wc -w)" -eq 12 ]
    [[ "$stderr" != *"tenth poll"* ]]
}

@test "what the plan expects of answer times follows them" {
    local times=' longest ([0-9]+) ms; the plan expected ([0-9]+) ms' late=() n
    for ((n = 10; n <= 25; n++)); do
        late+=(--fault "late=100@$n")
    done
    start s7ppi-sim "${late[@]}"
    run --separate-stderr s7ppi watch --port "$port" --count 25 --interval 1 VB0
    [[ "$stderr" =~ $times ]]
    [ "${BASH_REMATCH[2]}" -gt 100 ] # characters and pauses at 9600 baud, before the controller's time
    [ "${BASH_REMATCH[2]}" -le "${BASH_REMATCH[1]}" ]
}
