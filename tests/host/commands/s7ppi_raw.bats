#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# Any driver through s7ppi: the one of the weighing terminal, which is an example, and --raw-address.

# bats sets the variables of run.
# shellcheck disable=SC2154

load common

# A net weight of 1234, a tare of 250, a refusal for reason 3.
net=06054e01000004d26599
tare=06055401000000fa657d
refusal=1505035295

# scale ARGUMENT...: s7ppi with the terminal's driver, at $port.
scale() {
    run --separate-stderr s7ppi --plugin "$S7PPI_TEST_DIR/libweighing_terminal.so" --port "$port" "$@"
}

# tells CODE TEXT HINT-PART: the last run ended so.
tells() {
    [ "$status" -eq "$1" ]
    [ "${stderr_lines[0]}" = "s7ppi: $2" ]
    [[ "${stderr_lines[1]}" == "hint: $3"* ]]
}

@test "the driver of another device reads what its addresses say" {
    start fake_controller "$net" "$net"
    scale read N1:i32 N1:i32 -v
    [ "$status" -eq 0 ]
    [ "$output" = "N1 1234
N1 1234" ]
    [ "$(grep '^[<-][->] ' <<<"$stderr")" = "-> 02 05 52 4e 01 2c bd
<- 06 05 4e 01 00 00 04 d2 65 99
-> 02 05 52 4e 01 2c bd
<- 06 05 4e 01 00 00 04 d2 65 99" ]
}

@test "its plug-in may be named in the environment, its items in a tag file" {
    start fake_controller "$net"
    printf '%s\n' name,address,type,scale,unit Net,N1,i32,0.001,kg >"$BATS_TEST_TMPDIR/tags.csv"
    export S7PPI_PLUGIN=$S7PPI_TEST_DIR/libweighing_terminal.so
    run --separate-stderr s7ppi --port "$port" read --quiet "@$BATS_TEST_TMPDIR/tags.csv" --format json
    [ "$status" -eq 0 ]
    [[ "$output" == *'"name":"Net","address":"N1","type":"i32","unit":"kg","values":[1.234]'* ]]
}

@test "it writes, and shows what it would write" {
    start fake_controller "$tare" "$tare"
    scale write T1:i32=250 --verify
    [ "$status" -eq 0 ]
    [ "$output" = "T1 250" ]
    scale write --dry-run T1:i32=250
    [ "$status" -eq 0 ]
    [ "$output" = "02 05 57 54 01 00 00 00 fa 4f cd" ]
}

@test "nothing is written when the driver refuses one of the items" {
    start fake_controller "$tare"
    scale write T1:i32=250 T5:i32=1
    tells 1 "T5: the terminal has one double word each in G1 to G4, N1 to N4 and T1 to T4" "the driver refuses that and has sent nothing"
    [ "$(wc -l <"$BATS_TEST_TMPDIR/output")" -eq 1 ] # the port's name, and no frame
}

@test "watch polls it, and no plan is told of" {
    start fake_controller "$net" "$net"
    scale watch N1:i32 --all --count 2 --interval 100
    [ "$status" -eq 0 ]
    [ "$(cut -d ' ' -f 2- <<<"$output")" = "N1 1234
N1 1234" ]
    grep -q '^s7ppi: answer time: p50 .*, longest [0-9.]* ms$' <<<"$stderr"
    grep -q '^s7ppi: 2 requests, 2 values; ' <<<"$stderr"
}

@test "the line is not blamed for what was not sent, and is for silence" {
    start fake_controller silence silence
    scale read N5:i32
    tells 1 "N5: the terminal has one double word each in G1 to G4, N1 to N4 and T1 to T4" "the driver refuses that and has sent nothing"
    [[ "$stderr" != *cable* ]]
    scale read N1:i32 --retries 1 --timeout 50
    tells 4 "N1: the terminal does not answer" "nothing came back: check cable, "
}

@test "what the driver says of an answer is told in its words alone" {
    start fake_controller "$refusal" 0605
    scale read N1:i32 --retries 0 --timeout 1000
    tells 5 "N1: the terminal refuses, reason 3" "this is what the driver makes of what came; -v shows the bytes"
    scale read N1:i32 --retries 0 --timeout 1000
    tells 5 "N1: the answer ends early" "this is what the driver makes of what came"
}

@test "doctor reads what is named" {
    start fake_controller silence "$net" "$net"
    scale doctor N1:i32 --reads 2 --timeout 1000
    [[ "$output" == *"raw-address true             plug-in"* ]]
    [ "$(sed -n '/^settings/,$d; s/^\([a-z]*\)  *\(answers\|retries\|echo\)  .*/\2:\1/p' <<<"$output" | tr '\n' ' ')" = "answers:ok retries:warning " ]
    [[ "$output" == *"answers       2 of 2 reads: "* ]]
    [[ "$output" == *"retries       1 in 2 reads"* ]]
}

@test "doctor says nothing of the line when nothing was sent, or nothing was to be read" {
    start fake_controller
    scale doctor N5:i32
    [ "$status" -eq 1 ]
    [[ "$output" == *"
failed  answers       the terminal has one double word each in G1 to G4, N1 to N4 and T1 to T4
        -> the driver refuses that and has sent nothing: "* ]]
    [[ "$output" != *"line errors"* ]]
    scale doctor
    [ "$status" -eq 0 ]
    [[ "$output" == *"
warning answers       nothing was read
        -> name an item to read, as doctor TEXT:i32"$'\n'* ]]
}

@test "commands that know the controller's memory say so" {
    local command
    port=/dev/null
    for command in "check VB0" "dump VB0..3" "load $BATS_TEST_TMPDIR/none" "diff $BATS_TEST_TMPDIR/none" scan; do
        # shellcheck disable=SC2086
        scale $command
        tells 2 "${command%% *} knows the addresses of the S7-200 only" "with the plug-in of another driver there are read, "
        # shellcheck disable=SC2086
        run --separate-stderr s7ppi --raw-address $command
        tells 2 "${command%% *} knows the addresses of the S7-200 only" "leave out --raw-address, or use read, "
    done
}

@test "the simulated controller is no other device" {
    port=sim
    scale read N1:i32
    tells 2 "the simulated controller is an S7-200, and the plug-in is for something else: Weighing terminal" "name the port"
}

@test "--raw-address hands over what this driver would not be asked for" {
    run --separate-stderr s7ppi --port sim --raw-address read VB100:u8*4 VW100:u16 VD100:hex*4 V100.0:bool*2 --trace "$BATS_TEST_TMPDIR/frames"
    [ "$status" -eq 0 ]
    [ "$output" = "VB100  17 34 51 68
VW100  4386
VD100  0x44 0x33 0x22 0x11
V100.0 1 0" ]
    [ "$(grep -c ' > 68' "$BATS_TEST_TMPDIR/frames")" -eq 4 ] # none is merged
    run --separate-stderr s7ppi --port sim --raw-address read XY7:u8
    [ "$status" -eq 5 ]
    [[ "$stderr" != *"not an address"* ]]
}
