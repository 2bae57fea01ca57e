#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# Captures, as Wireshark reads them: what carries data by its own dissector, the line by the one that comes with
# s7ppi.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

# dissect FILE FILTER FIELD...: the fields of the packets that the filter lets through, a line each.
dissect() {
    local file=$1 filter=$2 field fields=()
    shift 2
    for field in "$@"; do
        fields+=(-e "$field")
    done
    HOME=$BATS_TEST_TMPDIR tshark -X lua_script:"$S7PPI_DISSECTOR" -2 -r "$file" -Y "$filter" -T fields -E separator=, \
        "${fields[@]}" 2>"$BATS_TEST_TMPDIR/tshark.errors"
}

@test "every request opens in an unmodified Wireshark with its function, area, block, address, kind and count" {
    local capture=$BATS_TEST_TMPDIR/line.pcapng
    start s7ppi-sim
    s7ppi read -q --port "$port" --no-merge --trace "$capture" VB100*4 VW10 VD20*2 V10.3 I0.0 QB1 MW2 SMB0 S1.1 AIW4 T37 C5 HC0
    run --separate-stderr env HOME="$BATS_TEST_TMPDIR" tshark -r "$capture" -Y 's7comm.header.rosctr == 1' -T fields \
        -E separator=' ' -e s7comm.param.func -e s7comm.param.item.area -e s7comm.param.item.db \
        -e s7comm.param.item.address -e s7comm.param.item.transp_size -e s7comm.param.item.length
    [ "$status" -eq 0 ]
    [ "$output" = "0x04 0x84 1 0x000320 2 4
0x04 0x84 1 0x000050 4 1
0x04 0x84 1 0x0000a0 6 2
0x04 0x84 1 0x000050 2 1
0x04 0x81 0 0x000000 2 1
0x04 0x82 0 0x000008 2 1
0x04 0x83 0 0x000010 4 1
0x04 0x05 0 0x000000 2 1
0x04 0x04 0 0x000008 2 1
0x04 0x06 0 0x000020 4 1
0x04 0x1f 0 0x000025 31 1
0x04 0x1e 0 0x000005 30 1
0x04 0x20 0 0x000000 32 1" ]
}

@test "writes and answers have their data" {
    local capture=$BATS_TEST_TMPDIR/line.pcapng
    start s7ppi-sim --trace "$capture"
    s7ppi write -q --port "$port" --retries 0 --verify VB100=1,2,3 VW20000=1 || true
    run --separate-stderr dissect "$capture" 's7comm.param.func == 5 && s7comm.header.rosctr == 1 && !s7ppi' \
        s7comm.resp.data s7comm.param.item.address
    [ "${lines[0]}" = "010203,0x000320" ]
    run --separate-stderr dissect "$capture" 's7comm.header.rosctr == 3 && !s7ppi' s7comm.data.returncode
    [ "$output" = "0xff
0x05
0xff" ]
}

@test "the frames of an exchange are tied together, and the answer tells how long it took" {
    local capture=$BATS_TEST_TMPDIR/line.pcapng
    start s7ppi-sim --fault late=100
    s7ppi read -q --port "$port" --trace "$capture" VB100
    run --separate-stderr dissect "$capture" s7ppi frame.number s7ppi.kind s7ppi.request_in s7ppi.acknowledged_in \
        s7ppi.polled_in s7ppi.answer_in
    [ "$output" = "1,request,,3,4,5
3,acknowledgement,1,,4,5
4,poll,1,3,,5
5,answer,1,3,4," ]
    run --separate-stderr dissect "$capture" '!s7ppi' frame.len
    [ "$output" = $'44\n39' ] # 20 bytes, and what stands between addresses and check sum
    run --separate-stderr dissect "$capture" 's7ppi.answer_time >= 0.1 && s7ppi.answer_time < 60' s7ppi.kind
    [ "$output" = answer ]
}

@test "every field of the line is shown" {
    local capture=$BATS_TEST_TMPDIR/line.pcapng
    start s7ppi-sim --station 5
    s7ppi read -q --port "$port" --station 5 --trace "$capture" VB100
    run --separate-stderr dissect "$capture" 's7ppi.kind != "acknowledgement"' s7ppi.start s7ppi.length s7ppi.length_again \
        s7ppi.start_again s7ppi.destination s7ppi.source s7ppi.function s7ppi.fcs s7ppi.fcs_good s7ppi.end
    [ "$output" = "0x68,27,27,0x68,5,0,0x6c,0x8f,1,0x16
0x10,,,,5,0,0x5c,0x61,1,0x16
0x68,22,22,0x68,0,5,0x08,0x6b,1,0x16" ]
}

@test "every kind of damage is shown" {
    local capture fault filter number=0
    while read -r fault filter; do
        number=$((number + 1))
        capture=$BATS_TEST_TMPDIR/$number.pcapng
        start s7ppi-sim --seed 1 --fault "$fault@1" --trace "$capture" 2>"$BATS_TEST_TMPDIR/seed"
        s7ppi read -q --port "$port" --timeout 1000 VB100
        kill "${background[-1]}"
        run --separate-stderr dissect "$capture" "$filter" frame.number
        echo "# $fault: $filter: $output" >&2
        [ "$status" -eq 0 ]
        [ "$(wc -l <<<"$output")" -eq 1 ]
        [ -n "$output" ]
    done <<'FAULTS'
no-resource s7ppi.kind == "refusal" && s7ppi.function == 2
not-active s7ppi.kind == "refusal" && s7ppi.function == 3
wrong-ack s7ppi.noise
noise-ack=3 s7ppi.noise
not-ready s7ppi.kind == "acknowledgement" && frame.number == 5
truncated=3 s7ppi.kind == "answer" && s7ppi.wrong_length
short=6 s7ppi.noise && frame.len == 6
corrupt=1 s7ppi.kind == "answer" && s7ppi.wrong_length
corrupt=2 s7ppi.wrong_head
corrupt=10 s7ppi.wrong_fcs
noise=3 s7ppi.noise
bad-checksum s7ppi.kind == "answer" && s7ppi.fcs_good == 0
bad-end s7ppi.wrong_end
wrong-source=7 s7ppi.kind == "answer" && s7ppi.source == 7
wrong-destination=9 s7ppi.kind == "answer" && s7ppi.destination == 9
error-class s7comm.header.errcls != 0 && !s7ppi
item-refused=0a s7comm.data.returncode == 0x0a && !s7ppi
FAULTS
}

@test "a capture that is cut anywhere opens up to there" {
    local capture=$BATS_TEST_TMPDIR/line.pcapng size
    s7ppi read -q --port sim --trace "$capture" VB100
    for size in 100 300 "$(($(stat -c %s "$capture") - 1))"; do
        head -c "$size" "$capture" >"$BATS_TEST_TMPDIR/cut.pcapng"
        run s7ppi-sim --replay "$BATS_TEST_TMPDIR/cut.pcapng" --link /no/such/directory/link
        [[ "$output" == *"is damaged behind packet"* || "$output" == *"has no whole frame of a master in it"* ]]
    done
}

@test "8: a recording is played, and what is asked otherwise is told" {
    local form
    for form in txt pcapng; do
        s7ppi read -q --port sim --trace "$BATS_TEST_TMPDIR/then.$form" VB100*4 T37
        start s7ppi-sim --replay "$BATS_TEST_TMPDIR/then.$form" 2>"$BATS_TEST_TMPDIR/told"
        run --separate-stderr s7ppi read --port "$port" VB100*4 T37
        [ "$output" = "VB100 17 34 51 68
T37   300" ]
        run --separate-stderr s7ppi read --port "$port" --retries 0 --timeout 100 VB101
        [ "$status" -eq 4 ]
        kill "${background[-1]}"
        status=0
        wait "${background[-1]}" || status=$?
        [ "$status" -eq 8 ]
        grep -q 'read V101 (1 bytes): at .* of the recording stands .*read V100 (4 bytes); it is nowhere' "$BATS_TEST_TMPDIR/told"
    done
}

@test "0, 2: a replay that met nothing else, and files that are no recording" {
    s7ppi read -q --port sim --trace "$BATS_TEST_TMPDIR/then.txt" VB100
    start s7ppi-sim --replay "$BATS_TEST_TMPDIR/then.txt" --replay-speed 0
    s7ppi read -q --port "$port" VB100
    kill "${background[-1]}"
    wait "${background[-1]}"
    run --separate-stderr s7ppi-sim --replay "$BATS_TEST_TMPDIR/none.txt"
    [ "$status" -eq 2 ]
    echo "VB100 17" >"$BATS_TEST_TMPDIR/values.txt"
    run --separate-stderr s7ppi-sim --replay "$BATS_TEST_TMPDIR/values.txt"
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi-sim: $BATS_TEST_TMPDIR/values.txt: line 1 is no record of a trace" ]
    run --separate-stderr s7ppi-sim --replay "$BATS_TEST_TMPDIR/then.txt" --station 3
    [ "$status" -eq 2 ]
}

@test "a trace becomes a capture, and back, with all its frames" {
    cd "$BATS_TEST_TMPDIR"
    start s7ppi-sim --seed 1 --fault noise@1 --fault bad-checksum@3
    s7ppi read -q --port "$port" --trace line.txt VB100*4 T37 V10.3
    run -0 --separate-stderr s7ppi decode --trace line.txt -o line.pcapng
    [ -z "$output$stderr" ]
    s7ppi decode --trace line.txt >from-trace || true
    s7ppi decode --trace line.pcapng >from-capture || true
    cmp from-trace from-capture
    run --separate-stderr dissect line.pcapng s7ppi.wrong_fcs frame.number
    [ "$(wc -l <<<"$output")" -eq 1 ]
    [ -n "$output" ]
}

@test "2: what cannot become a capture" {
    cd "$BATS_TEST_TMPDIR"
    run -2 --separate-stderr s7ppi decode e5 -o line.pcapng
    [ "${stderr_lines[0]}" = "s7ppi: bytes have no times, and a capture is of frames with their times" ]
    [ ! -e line.pcapng ]
    printf 'noon > e5\n' >line.txt
    run -2 --separate-stderr s7ppi decode --trace line.txt -o line.pcapng
    [ "${stderr_lines[0]}" = 's7ppi: line.txt:1: "noon" is no time' ]
    echo junk >other.pcapng
    run --separate-stderr s7ppi decode --trace other.pcapng
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: other.pcapng is no capture, or is damaged: what is behind the last frame is left out" ]
}
