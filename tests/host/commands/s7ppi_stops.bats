#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# A controller that is late: its answers come when nobody waits for them any more, or in two pieces. None of
# them may be taken for another one. The moments at which the simulated controller is stopped and continued
# are drawn; S7PPI_STOP_SEED draws others, S7PPI_STOP_RUNS more of them.

# shellcheck disable=SC2030,SC2031,SC2154

load common

setup_file() {
    local i
    memory=
    for ((i = 0; i < 600; i++)); do
        memory+=$(printf '%02x' $(((7 * i + i / 251 + 3) % 256)))
    done
    export memory
    export seed=${S7PPI_STOP_SEED:-1} runs=${S7PPI_STOP_RUNS:-4}
    unset S7PPI_STOP_SEED S7PPI_STOP_RUNS
}

# under_stops COUNT SHORTEST LONGEST ARGUMENT...: s7ppi on a line of 9600 baud whose controller is stopped so
# many times, for so many milliseconds each. Its exit code is then in $status, its data in the file data.
under_stops() {
    local stops=$1 shortest=$2 longest=$3 simulator command
    echo "{\"V\": {\"0\": \"$memory\"}}" >memory.json
    start s7ppi-sim --pace --memory memory.json
    simulator=${background[-1]}
    s7ppi --port "$port" --timeout 500 "${@:4}" >data 2>errors 3>&- &
    command=$!
    for ((; stops > 0; stops--)); do
        sleep "0.$(printf '%03d' $((RANDOM % 1000)))"
        kill -STOP "$simulator"
        sleep "0.$(printf '%03d' $((shortest + RANDOM % (longest - shortest + 1))))"
        kill -CONT "$simulator"
    done
    status=0
    wait "$command" || status=$?
    kill "$simulator"
    cat errors
}

# digits: what a command printed or wrote, without everything that is no byte of the memory.
digits_of_dump() {
    od -An -v -tx1 "$1" | tr -d ' \n'
}
digits_of_items() {
    sed -E 's/.*VB[0-9]+ //; s/0x| //g' data | tr -d '\n'
}

# Every line that a watch printed has the bytes from the address on that it names.
lines_are_right() {
    local address digits
    while read -r _ address digits; do
        digits=${digits// /}
        digits=${digits//0x/}
        [ "$digits" = "${memory:2 * ${address#VB}:${#digits}}" ] || return 1
    done <data
}

@test "one stop, up to the time-out, anywhere in a command changes nothing" {
    cd "$BATS_TEST_TMPDIR"
    RANDOM=$seed
    local run
    for ((run = 0; run < runs; run++)); do
        under_stops 1 250 500 dump VB0..VB599 --format raw -o dump
        [ "$status" -eq 0 ]
        [ "$(digits_of_dump dump)" = "$memory" ]
        under_stops 1 250 500 read 'VB0:hex*200' 'VB200:hex*100' 'VB300:hex*300'
        [ "$status" -eq 0 ]
        [ "$(digits_of_items)" = "$memory" ]
        under_stops 1 250 500 watch --all --count 4 --interval 1 'VB0:hex*90' 'VB90:hex*90'
        [ "$status" -eq 0 ]
        [ "$(wc -l <data)" -eq 96 ]
        lines_are_right
    done
}

@test "many stops never make a wrong byte" {
    cd "$BATS_TEST_TMPDIR"
    RANDOM=$seed
    local run
    for ((run = 0; run < runs / 2; run++)); do
        rm -f dump dump.part
        under_stops 6 5 700 dump VB0..VB599 --format raw -o dump
        [[ "$status" =~ ^[045]$ ]]
        [ "$status" -ne 0 ] || [ "$(digits_of_dump dump)" = "$memory" ]
        if [ -e dump.part ]; then
            part=$(sed -n 's/^VB[0-9]* *//p' dump.part | tr -d ' \n')
            [ "$part" = "${memory:0:${#part}}" ]
        fi
        under_stops 6 5 700 watch --all --count 8 --interval 1 'VB0:hex*90' 'VB90:hex*90'
        [[ "$status" =~ ^[045]$ ]]
        lines_are_right
    done
}

# long_answer REFERENCE: the answer to a read of 200 bytes from VB0 on.
long_answer() {
    frame "$(printf '00020832030000%04x000200cc00000401ff040640%s' "$1" "${memory:0:400}")"
}

# At 300 baud the answer takes seconds, so that its end is waited for a whole time-out.
@test "the rest of an answer that broke off is waited for before the request is repeated" {
    start fake_controller e5 "$(long_answer 1 | cut -c 1-100),1300:$(long_answer 1 | cut -c 101-)" e5 "$(long_answer 2)"
    run --separate-stderr s7ppi read --port "$port" --baud 300 --timeout 1000 --retries 1 'VB0:hex*200'
    [ "$status" -eq 0 ]
    [ "$(sed -E 's/^VB[0-9]+//; s/0x| //g' <<<"$output" | tr -d '\n')" = "${memory:0:400}" ]
}

@test "an answer that comes at all only after the time-out is waited for, too" {
    start fake_controller e5 "1300:$(long_answer 1)" e5 "$(long_answer 2)"
    run --separate-stderr s7ppi read --port "$port" --baud 300 --timeout 1000 --retries 1 'VB0:hex*200'
    [ "$status" -eq 0 ]
    [ "$(sed -E 's/^VB[0-9]+//; s/0x| //g' <<<"$output" | tr -d '\n')" = "${memory:0:400}" ]
}

@test "the first answer may be that to an earlier program's request: what comes behind it tells" {
    start fake_controller e5 "$(byte_answer 1 7)e5" e5 "$(byte_answer 2 9)"
    run --separate-stderr s7ppi read --port "$port" --timeout 5000 VB0
    [ "$status" -eq 0 ]
    [ "$output" = "VB0 9" ]
    start fake_controller e5 "$(write_answer 1)e5" e5 "$(write_answer 2)"
    run --separate-stderr s7ppi write -v --port "$port" --timeout 5000 VB0=1
    [ "$status" -eq 0 ]
    [ "$(grep -c -- '-> request' <<<"$stderr")" -eq 2 ]
}

@test "a line on which others speak all the time is read all the same" {
    start fake_controller e5 "$(byte_answer 1 7)00" e5 "$(byte_answer 2 8)00" e5 "$(byte_answer 3 9)00"
    run --separate-stderr s7ppi read --port "$port" --timeout 5000 VB0
    [ "$status" -eq 0 ]
    [ "$output" = "VB0 9" ]
}
