#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi write as a user meets it.

# bats runs every test in a shell of its own and sets the variables of run; items have commas in them.
# shellcheck disable=SC2030,SC2031,SC2154,SC2054

load common

# put ITEM..., get ITEM...: write and read at $port.
put() {
    run --separate-stderr s7ppi write --port "$port" "$@"
}
get() {
    run --separate-stderr s7ppi read --port "$port" "$@"
}

# impatient ITEM...: write at $port, one attempt, short time-out.
impatient() {
    put --retries 0 --timeout 200 "$@"
}

@test "a write prints nothing; what was written is read afterwards" {
    start s7ppi-sim
    put VB100=1,2,3 V10.3=on
    [ "$status" -eq 0 ]
    [ -z "$output" ]
    [ -z "$stderr" ]
    get VB100*4 V10.0*8
    [ "$output" = "VB100 1 2 3 68
V10.0 0 0 0 1 0 0 0 0" ]
}

@test "a string keeps what lies behind its text, and a length beyond its room is no text" {
    start s7ppi-sim
    put VB100:hex=ffffffffffffffff
    put --verify 'VB100:string*6=Hi' 'VB110:string*6=""'
    [ "$output" = 'VB100 "Hi"
VB110 ""' ]
    get VB100..VB107:hex VB100..VB106:string VB110:string*6
    [ "$output" = 'VB100 0x02 0x48 0x69 0xff 0xff 0xff 0xff 0xff
VB100 "Hi"
VB110 ""' ]
    get --format csv VB102:string*6 VB100:string*6
    [ "$status" -eq 2 ]
    [ "${lines[1]}" = ',VB102,string,,,,"the length byte is 105, and the string has room for 6 characters"' ]
    [ "${lines[2]}" = ',VB100,string,0,Hi,,' ]
    get --format json VB102:string*6
    [ "$(jq -r '.items[0].cause' <<<"$output")" = not_string ]
}

@test "every area takes every type of its width and gives the same back" {
    start s7ppi-sim
    local area items=() wanted=()
    for area in V M SM S I Q; do
        items+=("${area}0.1=1,0,1" "${area}B1:i8=-128" "${area}B2=255,1" "${area}W4=65535" "${area}W6:i16=-2"
            "${area}D8=4294967295" "${area}D12:i32=-3")
        wanted+=("${area}0.1*3 1 0 1" "${area}B1:i8 -128" "${area}B2*2 255 1" "${area}W4 65535" "${area}W6:i16 -2"
            "${area}D8 4294967295" "${area}D12:i32 -3")
    done
    items+=(VD20:f32=-1.5,3.25 MD20:f32=1e-3 VW30:bcd=1234,7 VB34:bcd=99 VD36:bcd=12345678 VB40:hex=0a0b0c
        VW44:hex=1122,0x3344 VD48:hex=deadbeef 'VB52:str=Hi, you' 'SMB100:str="a\x00b"' AQW0=-5,7 AQW4:u16=65535
        AQW6:hex=8001 AQW8:bcd=4321 T0=1,2 T37=300 T38:i16=-1 T39:hex=0102 C5=5 C6:i16=-7,8 C9:hex=ffff
        VB60:u32=0x11223344 VW64:u32=0x55667788 VD68:u16=0x1234
        VD80:u64=18446744073709551615,9007199254740993 VB96:i64=-9223372036854775808 VW104:f64=0.1 VB112:u64:swap=1
        VD120:u32:swap=0x11223344 VW124:f32:swap=-1.5,2.0 'VB140:string*20=Hi, you' VW170..VW172:i16=-1,2 V180.6..V181.1=1,0,1,1
        T50..T52=3,4,5)
    wanted+=("VD20:f32*2 -1.5 3.25" "MD20:f32 0.001" "VW30:bcd*2 1234 7" "VB34:bcd 99" "VD36:bcd 12345678"
        "VB40:hex*3 0x0a 0x0b 0x0c" "VW44:hex*2 0x1122 0x3344" "VD48:hex 0xdeadbeef" "VB52:str*7 \"Hi, you\""
        "SMB100:str*3 \"a\\x00b\"" "AQW0*2 -5 7" "AQW4:u16 65535" "AQW6:hex 0x8001" "AQW8:bcd 4321" "T0*2 1 2"
        "T37 300" "T38:i16 -1" "T39:hex 0x0102" "C5 5" "C6:i16*2 -7 8" "C9:hex 0xffff" "VB60:hex*4 0x11 0x22 0x33 0x44"
        "VW64:hex*2 0x5566 0x7788" "VB68:hex*2 0x12 0x34" "VD80:u64*2 18446744073709551615 9007199254740993"
        "VB96:i64 -9223372036854775808" "VW104:f64 0.1" "VD112:hex*2 0x00010000 0x00000000" "VD120:hex 0x33441122"
        "VW124:f32:swap*2 -1.5 2" "VB140:string*20 \"Hi, you\"" "VB140:hex*3 0x07 0x48 0x69" "VW170..VW172:i16 -1 2"
        "V180.6..V181.1 1 0 1 1" "T50..T52 3 4 5")
    put "${items[@]}"
    [ "$status" -eq 0 ]
    get "${wanted[@]%% *}"
    [ "$status" -eq 0 ]
    local i
    for ((i = 0; i < ${#wanted[@]}; i++)); do
        [ "$(sed -E 's/^[^ ]+ +//' <<<"${lines[i]}")" = "${wanted[i]#* }" ]
    done
    [ "${#lines[@]}" -eq "${#wanted[@]}" ]
}

@test "what read prints can be written, every value of it" {
    start s7ppi-sim
    local item value
    for item in VB100:hex*4 VW100:hex*2 VD100:hex VB100:str*4 VB100*4 VW100:i16*2 VD100:f32 VB100:bcd*2 V100.0*8 T37:hex; do
        get "$item"
        value=${output#* }
        [[ "$item" == *:str* ]] || value=${value// /,}
        put "${item%%\**}=$value"
        [ "$status" -eq 0 ]
        [ -z "$stderr" ]
        get "$item"
        [ "${output#* }" = "${value//,/ }" ]
    done
}

@test "no byte changes that was not named" {
    start s7ppi-sim
    put VB0:hex=ffffffffffffffffffffffff
    put VW1:u8=1 VD4:u16=0x0203 VD8:str=abc V0.3=0
    [ "$status" -eq 0 ]
    get VB0:hex*12
    [ "$output" = "VB0 0xf7 0x01 0xff 0xff 0x02 0x03 0xff 0xff
VB8 0x61 0x62 0x63 0xff" ]
}

@test "long items go in several requests and arrive whole" {
    start s7ppi-sim
    local values
    values=$(seq -s , 0 249)
    put -v "VB0=$values,$values" "VW1000=$(seq -s , 1000 1199)" "T0=$(seq -s , 1 100)"
    [ "$status" -eq 0 ]
    [ "$(grep -c '^-> request' <<<"$stderr")" -eq 8 ]
    [ "${stderr_lines[-1]}" = "s7ppi: T0: 100 of 100 values had been written" ]
    get VB0*500 VW1000*200 T0*100
    [ "$(sed -E 's/^[^ ]+ +//' <<<"$output" | tr -s '\n ' ' ')" = \
        "$(seq -s ' ' 0 249) $(seq -s ' ' 0 249) $(seq -s ' ' 1000 1199) $(seq -s ' ' 1 100) " ]

    put -v V10.5=1,0,0,1,1,0,1,0,1,1,1,0,0,1,0,1,1,1,1,0,0,0,0,1,0,1,1
    [ "$(grep -c '^-> request' <<<"$stderr")" -eq 3 ]
    get V10.5*27
    [ "$output" = "V10.5 1 0 0 1 1 0 1 0
V11.5 1 1 1 0 0 1 0 1
V12.5 1 1 1 0 0 0 0 1
V13.5 0 1 1" ]
}

@test "verify reads back and prints what it read" {
    run --separate-stderr s7ppi write --port sim --verify VB100=1,2 VD4:f32=0.1 V10.7=1,0,1 'VB20:str=a"b'
    [ "$status" -eq 0 ]
    [ "$output" = 'VB100 1 2
VD4   0.1
V10.7 1 0 1
VB20  "a\"b"' ]
    [ -z "$stderr" ]
}

@test "8: verify tells what was read and what was written; the others are still written" {
    start s7ppi-sim --fault ignore-writes@1
    put --verify VB100=17,99 VB200=5
    [ "$status" -eq 8 ]
    [ "$output" = "VB200 5" ]
    [ "${stderr_lines[0]}" = "s7ppi: VB100: value 2 of 2 is 34 and not 99" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]

    start s7ppi-sim --fault ignore-writes
    put --verify T37=5 VW0:bcd=12 V100.0=0
    [ "$status" -eq 8 ]
    [ -z "$output" ]
    [ "${stderr_lines[0]}" = "s7ppi: T37: reads 300 and not 5" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
    [ "${stderr_lines[2]}" = "s7ppi: VW0: reads 0x0000 and not 0x0012" ]
    [ "${stderr_lines[3]}" = "s7ppi: V100.0: reads 1 and not 0" ]
    put VB100=99
    [ "$status" -eq 0 ]
}

@test "dry-run prints the frames with their meaning and opens no port" {
    S7PPI_CONFIG='' run --separate-stderr s7ppi write --dry-run --port /dev/no-such-port -v VB100=1,2 V10.3=1,0
    [ "$status" -eq 0 ]
    [ "$output" = "\
request 1 to station 2: write 2 bytes at V byte 100: 68 21 21 68 02 00 6c 32 01 00 00 00 01 00 0e 00 06 05 01 12 0a 10 02 00 02 00 01 84 00 03 20 00 04 00 10 01 02 ab 16
poll of station 2: 10 02 00 5c 5e 16
request 2 to station 2: write 1 bit at V byte 10 bit 3, 1 bit at V byte 10 bit 4: 68 32 32 68 02 00 6c 32 01 00 00 00 02 00 1a 00 0b 05 02 12 0a 10 01 00 01 00 01 84 00 00 53 12 0a 10 01 00 01 00 01 84 00 00 54 00 03 00 01 01 00 00 03 00 01 00 e5 16
poll of station 2: 10 02 00 5c 5e 16" ]
    [ -z "$stderr" ]
}

@test "dry-run prints what is then sent" {
    local items=(VB0:hex="$(printf 'ab%.0s' {1..300})" VW10:i16=-5 T37=5 V10.6=1,0,1 AQW2=7)
    run --separate-stderr s7ppi write --dry-run --verify --station 7 "${items[@]}"
    [ "$status" -eq 0 ]
    local announced=$output
    start s7ppi-sim --station 7
    put -v --verify --station 7 "${items[@]}"
    [ "$status" -eq 0 ]
    [ "$(sed -n 's/^-> //p' <<<"$stderr")" = "$announced" ]
}

@test "1: dry-run tells what the driver refuses" {
    run --separate-stderr s7ppi write --dry-run HC0=1 VB0=1
    [ "$status" -eq 1 ]
    [ "${#lines[@]}" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: HC0: can not write data to HC0" ]
}

@test "1: what the driver does not write is refused with a hint, and nothing is sent" {
    start fake_controller hang-up
    put VB1=9 HC0=1 AIW0=1 T37:bool=1 C5:bool=0 VB0=7
    [ "$status" -eq 1 ]
    [ -z "$output" ]
    local address
    for address in HC0 AIW0 T37 C5; do
        grep -qxF "s7ppi: $address: can not write data to $address" <<<"$stderr"
    done
    [[ "${stderr_lines[1]}" == "hint: the driver writes no "* ]]
    [ "${#stderr_lines[@]}" -eq 5 ]
    kill -0 "${background[0]}"
    start s7ppi-sim
    put VB100=9 HC0=1 VB101=9
    [ "$status" -eq 1 ]
    get 'VB100*2'
    [ "$output" = "VB100 17 34" ]
}

@test "the driver's messages are shown with -v, not those of the look at what it would send" {
    start fake_controller
    impatient -v VB0=1
    [ "$status" -eq 4 ]
    [ "$(grep -c '^driver: .*plc no response' <<<"$stderr")" -eq 1 ]
}

@test "1: the controller refuses an item; of a long one the failing part is told" {
    start s7ppi-sim
    put VB20000=1 VB1=1
    [ "$status" -eq 1 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB20000: Invalid address (incorrect variable address)" ]
    put "VB10000:hex=$(printf 'ab%.0s' {1..300})"
    [ "$status" -eq 1 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB10000: Invalid address (incorrect variable address); \
this is the part from VB10212 on, 212 of 300 values had been written before it" ]
    get VB1 VB10211:hex*2
    [ "$output" = "VB1     1
VB10211 0xab 0x00" ]
}

@test "1: refused bits are told by their place, the others are written" {
    start s7ppi-sim
    put V10239.6=1,1,1,1
    [ "$status" -eq 1 ]
    [ "${stderr_lines[0]}" = "s7ppi: V10239.6: Invalid address (incorrect variable address) (bit 3, 4 of 4)" ]
    get VB10239
    [ "$output" = "VB10239 192" ]
}

@test "1: the controller refuses the frame" {
    start fake_controller 100002020416
    impatient VB0=1
    [ "$status" -eq 1 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: no resource" ]
}

@test "2: every wrong item is told with the nearest right one, and nothing is sent" {
    start fake_controller hang-up
    put VB0=1 VB100=300 vb10=1 V10.9=1 VB7 'VB8*2=1' VW0:hex=112233 T37:f32=1
    [ "$status" -eq 2 ]
    [ -z "$output" ]
    [ "$stderr" = "s7ppi: VB100=300: 300 is too large for u8: 0 to 255
hint: the nearest value is 255
s7ppi: vb10=1: not an address of the controller
hint: write VB10 instead of vb10
s7ppi: V10.9=1: not an address of the controller
hint: bits are 0 to 7: write V10.7 instead of V10.9
s7ppi: VB7: no value is given
hint: write VB7=VALUE
s7ppi: VB8*2=1: a count is not needed here
hint: write VB8=VALUE,VALUE with as many values as you mean
s7ppi: VW0:hex=112233: \"112233\" is no whole number of values
hint: hex is 4 digits for each value of VW0, as 0x1a2b
s7ppi: T37:f32=1: T37 cannot be taken as f32
hint: T37 can be taken as bool u16 i16 hex" ]
    kill -0 "${background[0]}"
}

@test "2: an item and its value in two words are told as one, and nothing is sent" {
    start fake_controller hang-up
    put VW100 5 VB1=1 @tags.csv:Boiler 1.5 'VB1:str*5' Hello VB6 VB7
    [ "$status" -eq 2 ]
    [ "$stderr" = "s7ppi: VW100: no value is given
hint: write VW100=5
s7ppi: @tags.csv:Boiler: no value is given
hint: write @tags.csv:Boiler=1.5
s7ppi: VB1:str*5: no value is given
hint: write VB1:str=Hello
s7ppi: VB6: no value is given
hint: write VB6=VALUE
s7ppi: VB7: no value is given
hint: write VB7=VALUE" ]
    kill -0 "${background[0]}"
}

@test "2: wrong command lines" {
    local arguments
    for arguments in "write" "write VB0=1 --nonsense" "write VB0=1 --count 2" "read VB0 --verify"; do
        # shellcheck disable=SC2086
        run --separate-stderr s7ppi $arguments
        [ "$status" -eq 2 ]
        [ -z "$output" ]
        [[ "${stderr_lines[0]}" == "s7ppi: "* ]]
    done
    run --separate-stderr s7ppi write --help
    [ "$status" -eq 0 ]
    [[ "$output" == *"ADDRESS[:TYPE][@STATION]=VALUE"*"--verify"*"--dry-run"* ]]
}

@test "3: the port cannot be opened" {
    port=/dev/no-such-port
    put VB0=1
    [ "$status" -eq 3 ]
}

@test "4: the controller is silent; every item is tried" {
    start fake_controller
    impatient VB0=1 VB1=1
    [ "$status" -eq 4 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: plc no response" ]
    [ "${stderr_lines[2]}" = "s7ppi: VB1: plc no response" ]
}

@test "5: what comes is no answer to the write" {
    start fake_controller e5 "$(write_answer 9)"
    put --retries 0 --timeout 60000 VB0=1
    [ "$status" -eq 5 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: invalid response1" ]
    start fake_controller e5 "$(frame 0002083203000000010002000100000401ff)"
    put --retries 0 --timeout 60000 VB0=1
    [ "$status" -eq 5 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: the driver gives no reason" ]
}

@test "6: the port goes away; no further item is tried" {
    start fake_controller e5 hang-up
    put --timeout 60000 VB0=1 VB1=1
    [ "$status" -eq 6 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: the port is gone" ]
    [ "${#stderr_lines[@]}" -eq 2 ]
}

@test "7: the plug-in cannot be loaded, for a dry run neither" {
    run --separate-stderr s7ppi write --port sim --plugin /no/such/file.so VB0=1
    [ "$status" -eq 7 ]
    run --separate-stderr s7ppi write --dry-run --plugin /no/such/file.so VB0=1
    [ "$status" -eq 7 ]
}

@test "5: a driver that writes nothing and says nothing is not believed" {
    run --separate-stderr s7ppi write --port sim --plugin "$S7PPI_TEST_DIR/libidle_plugin.so" VB0=1
    [ "$status" -eq 5 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: the driver gives no reason" ]
}

@test "130: Ctrl-C ends a long write and tells how far it got" {
    start fake_controller e5 "$(write_answer 1)"
    s7ppi write --port "$port" --timeout 60000 "VB0:hex=$(printf 'ab%.0s' {1..300})" VB1000=1 \
        2>"$BATS_TEST_TMPDIR/errors" 3>&- &
    local writer=$!
    background+=("$writer")
    eventually grep -q unanswered "$BATS_TEST_TMPDIR/output"
    kill -INT "$writer"
    status=0
    wait "$writer" || status=$?
    [ "$status" -eq 130 ]
    [ "$(cat "$BATS_TEST_TMPDIR/errors")" = "s7ppi: VB0: 212 of 300 values had been written" ]
}

@test "6: a port that goes away between the writes leaves nothing to read back" {
    start fake_controller e5 "$(write_answer 1)" e5 "$(write_answer 2)" hang-up
    run --separate-stderr s7ppi write --port "$port" --timeout 60000 --verify VB0=1 VB10=2 VB20=3
    [ "$status" -eq 6 ]
    [ -z "$output" ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: 2 of 3 items were written and not read back: the port is gone" ]
    [ "${#stderr_lines[@]}" -eq 2 ]
}
