#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# The program as a user meets it: what it prints where, and how it exits. Writing and watching have files
# of their own.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

# impatient ITEM...: read from $port, one attempt, short time-out.
impatient() {
    run --separate-stderr s7ppi read --port "$port" --retries 0 --timeout 200 "$@"
}

# amid_babble COMMAND...: as run, once more whenever the babbler was late: its line was silent for a moment then.
amid_babble() {
    local i late
    for ((i = 0; i < 100; i++)); do
        late=$(times_late)
        run --separate-stderr "$@"
        sleep 0.1
        [ "$(times_late)" -eq "$late" ] && return
    done
    return 1
}
times_late() {
    grep -c late "$BATS_TEST_TMPDIR/output" || true
}

@test "describe shows identity, defaults and sizes of the plug-in" {
    run --separate-stderr s7ppi describe
    [ "$status" -eq 0 ]
    [ "${lines[0]}" = "name                 Simatic S7-200 PPI" ]
    [[ "$output" == *"vendor               Siemens"* ]]
    [[ "$output" == *"version              1.0.0"* ]]
    [[ "$output" == *"serial line          9600 baud, even parity, 8 data bits, 1 stop bit"* ]]
    [[ "$output" == *"serial line as text  RS485,9600,EVEN,8,1"* ]]
    [[ "$output" == *"time-out             500 ms"* ]]
    [[ "$output" == *"retries              3"* ]]
    [[ "$output" == *"station              2"* ]]
    [[ "$output" == *"delay                0 ms"* ]]
    [[ "$output" == *"total size           12250 bytes"* ]]
    [[ "$output" == *"block size           32 bytes"* ]]
    [[ "$output" == *"bit block size       32 bits"* ]]
    [[ "$output" == *"communication        112 = 16 + 32 + 64 (RS-485)"* ]]
    [ -z "$stderr" ]
    [ "$(s7ppi describe --format json | jq -c '[.communication, .totalSize, .blockSize, .bitBlockSize]')" = "[112,12250,32,32]" ]
}

@test "help and version go to stdout" {
    run --separate-stderr s7ppi --help
    [ "$status" -eq 0 ]
    [ "${lines[0]}" = "Reads and writes the memory of Simatic S7-200 controllers through their driver plug-in." ]
    [[ "$output" == *"read"*"write"*"watch"*"dump"*"load"*"scan"*"ports"*"doctor"*"describe"*"Exit codes: 0 done, "*"8 read back is not what was"* ]]
    [[ "$output" == *"70 internal failure, 74 output takes no more data; after a signal 128 and its number." ]]
    [[ "$output" == *"  --config FILE "* ]]
    [ -z "$stderr" ]
    run --separate-stderr s7ppi read --help
    [ "$status" -eq 0 ]
    [[ "$output" == *"ADDRESS[:TYPE][*COUNT]"* ]]
    run --separate-stderr s7ppi --version
    [ "$status" -eq 0 ]
    [[ "$output" =~ ^s7ppi\ [0-9]+\.[0-9]+\.[0-9]+$ ]]
}

@test "every type and width of the same memory gives what the controller holds" {
    run --separate-stderr s7ppi read --port sim VB100 VW100 VD100 VB100:u16 VW100:u32 VD100:u16*3 VW100:u8*3 \
        VB100:hex*4 VW100:hex*2 VD100:hex VB102:str*2 VB100:bcd*2 VB100:i8 VW100:i16 VD100:i32
    [ "$status" -eq 0 ]
    [ "$output" = "VB100 17
VW100 4386
VD100 287454020
VB100 4386
VW100 287454020
VD100 4386 13124 0
VW100 17 34 51
VB100 0x11 0x22 0x33 0x44
VW100 0x1122 0x3344
VD100 0x11223344
VB102 \"3D\"
VB100 11 22
VB100 17
VW100 4386
VD100 287454020" ]
    [ -z "$stderr" ]
}

@test "bits come out right, straddling or not" {
    run --separate-stderr s7ppi read --port sim V100.0*8 V101.0*8 V100.4 V100.4*8 V100.7*10
    [ "$status" -eq 0 ]
    [ "$output" = "V100.0 1 0 0 0 1 0 0 0
V101.0 0 1 0 0 0 1 0 0
V100.4 1
V100.4 1 0 0 0 0 1 0 0
V100.7 0 0 1 0 0 0 1 0
V101.7 0 1" ]
}

@test "timers, counters and high-speed counters have values and status bits" {
    run --separate-stderr s7ppi read --port sim T37 T37:bool T37:hex C5 C5:i16 HC0 HC0:i32 T36*3
    [ "$status" -eq 0 ]
    [ "$output" = "T37 300
T37 1
T37 0x012c
C5  5
C5  5
HC0 100000
HC0 100000
T36 0 300 0" ]
}

@test "an item longer than one frame is read in pieces" {
    run --separate-stderr s7ppi read --port sim VB0*500
    [ "$status" -eq 0 ]
    [ "${#lines[@]}" -eq 63 ]
    [ "$(wc -w <<<"$output")" -eq 563 ]
    [ "${lines[12]}" = "VB96  0 0 0 0 17 34 51 68" ]
    [ "${lines[62]}" = "VB496 0 0 0 0" ]
    run --separate-stderr s7ppi read --port sim VD0*100
    [ "$(wc -w <<<"$output")" -eq 113 ]
    [[ "${lines[3]}" =~ ^VD96\ +0\ +287454020\ +0 ]]
    run --separate-stderr s7ppi read --port sim T0*100
    [ "$(wc -w <<<"$output")" -eq 113 ]
    [[ "${lines[4]}" =~ ^T32\ +0\ +0\ +0\ +0\ +0\ 300\  ]]
}

# A test without --port must not talk to a controller that happens to be connected to this machine.
refuse_adapters() {
    if compgen -G "/dev/ttyUSB*" || compgen -G "/dev/ttyACM*"; then
        echo "unplug the USB serial adapters: this test would use them"
        return 1
    fi
}

@test "3: without a port and an adapter no command finds a controller, and none makes one up" {
    refuse_adapters
    cd "$BATS_TEST_TMPDIR"
    printf 's7ppi-dump 1\narea VB0..VB1\nstation 2\nVB0 01 02\n' >press.dump
    local arguments
    for arguments in "-q read VB100" "--reconnect read VB100" "read --format json VB100" "write VB100=1" \
        "write --verify VB100=1" "watch --count 1 VB100" "watch --count 1 VB100 -o log.csv" \
        "dump VB0..VB9 -o new.dump" "load --verify press.dump" "diff press.dump" "scan --stations 2" "doctor"; do
        # shellcheck disable=SC2086
        run -3 --separate-stderr s7ppi $arguments
        [[ "$output$stderr" == *"no port is named, and there is no USB serial adapter"* ]]
        [[ "$output$stderr" == *"--port sim (or S7PPI_PORT=sim) is a simulated controller"* ]]
        [[ "$output" != *17* ]]
    done
    run ! compgen -G "new.dump*"
}

@test "what comes of a simulated controller says so, and what comes of another does not" {
    cd "$BATS_TEST_TMPDIR"
    start s7ppi-sim
    local command
    for command in "read VB100" "write VB0=1" "watch --count 1 VB100" "scan --stations 2" "doctor"; do
        # shellcheck disable=SC2086
        [ "$(s7ppi $command --port sim --timeout 5000 --format json 2>/dev/null | jq .simulated)" = true ]
        # shellcheck disable=SC2086
        [ "$(s7ppi $command --port "$port" --timeout 5000 --format json 2>/dev/null | jq .simulated)" = null ]
    done
    run --separate-stderr s7ppi watch --port sim --count 1 VB100
    [[ "${stderr_lines[0]}" == "s7ppi: 1 poll of a simulated controller, 1 answer: "* ]]
    run --separate-stderr s7ppi scan --port sim --stations 2 --timeout 5000
    [[ "$output" == "station 2 at 9600 baud (simulated): answers within "* ]]
    run --separate-stderr s7ppi dump --port sim VB100..VB101 -o sim.dump
    [[ "$stderr" == "s7ppi: VB100..VB101 (simulated): 2 bytes in "* ]]
    [ "$(cat sim.dump)" = $'s7ppi-dump 1\narea VB100..VB101\nstation 2\n# simulated\nVB100 11 22' ]
    run --separate-stderr s7ppi load --port sim sim.dump
    [[ "$stderr" == "s7ppi: VB100..VB101 (simulated): 2 bytes in "* ]]
    run --separate-stderr s7ppi load --port "$port" sim.dump
    [ "${stderr_lines[0]}" = "s7ppi: the dump is of a simulated controller" ]
    s7ppi dump -q --port "$port" VB100..VB101 -o other.dump
    run ! grep simulated other.dump
    s7ppi read -q --port sim --trace sim.trace VB100
    [[ "$(head -n 1 sim.trace)" == *" (simulated), 9600 baud"* ]]
}

@test "a simulator started by hand is read through its port, at the station named" {
    start s7ppi-sim --station 7
    run --separate-stderr s7ppi read --port "$port" --station 7 VW100
    [ "$status" -eq 0 ]
    [ "$output" = "VW100 4386" ]
}

@test "verbose shows every frame in hex and words on stderr, and the driver's messages" {
    S7PPI_CONFIG='' run --separate-stderr s7ppi read --port sim -v VB100*4
    [ "$status" -eq 0 ]
    [ "$output" = "VB100 17 34 51 68" ]
    [[ "${stderr_lines[0]}" == *": 9600 baud, even parity, 8 data bits, 1 stop bit" ]]
    [[ "${stderr_lines[1]}" == *" is a pseudo-terminal: no parity instead of even parity" ]]
    [ "${stderr_lines[2]}" = "-> request 1 to station 2: read 4 bytes at V byte 100: 68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00 04 01 12 0a 10 02 00 04 00 01 84 00 03 20 8f 16" ]
    [ "${stderr_lines[3]}" = "<- acknowledgement: e5" ]
    [ "${stderr_lines[4]}" = "-> poll of station 2: 10 02 00 5c 5e 16" ]
    [ "${stderr_lines[5]}" = "<- answer to request 1 from station 2: 4 bytes of data: 68 19 19 68 00 02 08 32 03 00 00 00 01 00 02 00 08 00 00 04 01 ff 04 00 20 11 22 33 44 1c 16" ]
    [ "${#stderr_lines[@]}" -eq 6 ]

    start fake_controller
    impatient -v VB0
    [[ "$stderr" == *"driver: "*":plc no response"* ]]
    impatient VB0
    [[ "$stderr" != *"driver: "* ]]
}

@test "1: the controller refuses an item, the others are still read" {
    run --separate-stderr s7ppi read --port sim VB100 VB20000 VB101
    [ "$status" -eq 1 ]
    [ "$output" = "VB100   17
VB101   34" ]
    [ "${stderr_lines[0]}" = "s7ppi: VB20000: Invalid address (incorrect variable address)" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
}

@test "1: the controller answers with a negative frame" {
    start fake_controller 100002020416
    impatient VB0
    [ "$status" -eq 1 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: no resource" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
    [ -z "$output" ]
}

@test "the first of several failures gives the exit code" {
    start fake_controller 100002020416 silence
    impatient VB0 VB1000
    [ "$status" -eq 1 ]
    [ "${stderr_lines[2]}" = "s7ppi: VB1000: plc no response" ]
    start fake_controller silence 100002020416
    impatient VB0 VB1000
    [ "$status" -eq 4 ]
    [ "${stderr_lines[2]}" = "s7ppi: VB1000: no resource" ]
}

@test "1: the controller does not take the request" {
    start fake_controller e5 680f0f68000208320200000001000000008104c416
    impatient VB0
    [ "$status" -eq 1 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: invalid request to PLC" ]
}

@test "2: every wrong item is told with the right one, and nothing is sent" {
    start fake_controller hang-up
    run --separate-stderr s7ppi read --port "$port" VB0 vb100 AI0 V10.9 VW0:INT
    [ "$status" -eq 2 ]
    [ -z "$output" ]
    [ "${stderr_lines[0]}" = "s7ppi: vb100: not an address of the controller" ]
    [ "${stderr_lines[1]}" = "hint: write VB100 instead of vb100" ]
    [ "${stderr_lines[3]}" = "hint: write AIW0 instead of AI0" ]
    [ "${stderr_lines[5]}" = "hint: bits are 0 to 7: write V10.7 instead of V10.9" ]
    [ "${stderr_lines[7]}" = "hint: write i16 instead of INT" ]
    kill -0 "${background[0]}"
}

@test "2: wrong command lines" {
    local arguments
    for arguments in "" "rread" "read" "read VB0 --station 0" "read VB0 --station 127" "read VB0 --timeout x" \
        "read VB0 --parity both" "read VB0 --databits 9" "read VB0 --port" "describe VB0" "read VB0 --nonsense"; do
        # shellcheck disable=SC2086
        run --separate-stderr s7ppi $arguments
        [ "$status" -eq 2 ]
        [ -z "$output" ]
        [[ "${stderr_lines[0]}" == "s7ppi: "* ]]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
    done
    run --separate-stderr s7ppi
    [ "${stderr_lines[0]}" = "s7ppi: a command is missing" ]
    run --separate-stderr s7ppi rread
    [ "${stderr_lines[0]}" = "s7ppi: rread is not a command" ]
    [ "${stderr_lines[1]}" = "hint: s7ppi help lists commands and options; the nearest to rread is read" ]
    run --separate-stderr s7ppi read
    [ "${stderr_lines[0]}" = "s7ppi: read needs at least one ITEM" ]
    [[ "${stderr_lines[1]}" == "hint: ITEM: ADDRESS[:TYPE][*COUNT][@STATION], "*"; for example s7ppi read VB100 VW102:i16 T37" ]]
}

@test "2: what is wrong with a command line is told as it was typed, with what helps" {
    local arguments text hint
    while IFS='|' read -r arguments text hint; do
        # shellcheck disable=SC2086
        run --separate-stderr s7ppi $arguments
        [ "$status" -eq 2 ]
        [ -z "$output" ]
        [ "${stderr_lines[0]}" = "s7ppi: $text" ]
        # shellcheck disable=SC2053
        [[ "${stderr_lines[1]}" == "hint: "$hint ]]
        [ "${#stderr_lines[@]}" -eq 2 ]
    done <<'LINES'
-z /tmp/x read VB0|there is no option -z|s7ppi help lists commands and options
read -z 5 VB0|read has no option -z|s7ppi help read tells what it takes
read VB0 -xyz|read has no option -xyz|s7ppi help read tells what it takes
--baud read VB0|--baud needs a value; read behind it is the command|write --baud N: *
-b read VB0|-b needs a value; read behind it is the command|write -b N: *
read VB0 --baud|--baud needs a value|write --baud N: *
check VB0 --baud 49|--baud: 49 is not a whole number from 50 to 4000000|s7ppi help lists commands and options
check VB0 --baud 4000001|--baud: 4000001 is not a whole number from 50 to 4000000|s7ppi help lists commands and options
read VB0 --port --verbose|--port needs a value; --verbose behind it is an option|write --port DEV: *
read VB0 -vp|-p needs a value|write -p DEV: *
read VB0 --station 2 -s 3|-s is given twice: 2 and 3|leave one of the two out
read VB0 --no-merge=3|--no-merge takes no value, and is given 3|write --no-merge alone, *
read VB0 --json --format csv|--json and --format csv contradict each other|leave one of the two out: *
--interval 5 watch VB0|--interval stands in front of the command|it is an option of watch and publish: *
read --interval 5 VB0|read has no option --interval|s7ppi help read tells what it takes; watch and publish have it
shell|shell is not a command|s7ppi help lists commands and options
VB0 read|VB0 stands in front of the command read|only options may stand there: write VB0 behind read
baud 9600|baud is not a command|the option is --baud, with two hyphens
help shell|shell is not a command|s7ppi help lists commands and options
dump VB0 VB3|VB3 is too much: dump takes one argument|s7ppi help dump tells what it takes
scan VB0|VB0 is too much: scan takes options only|s7ppi help scan tells what it takes
scan read VB0|there are two commands, scan and read|one command is run at a time; *
dump|dump needs a RANGE|RANGE: FIRST..LAST, *; for example s7ppi dump VB0..VB4095 -o press.dump
load|load needs a FILE|FILE: *; for example s7ppi load --verify press.dump
completion|completion needs a SHELL|SHELL: The shell (bash, zsh, fish); for example *
completion tcsh|SHELL: tcsh is not one of bash, zsh, fish|s7ppi help completion tells what it takes
read VB0 --station 200|--station: 200 is not a whole number from 1 to 126|s7ppi help lists *
read VB0 -t soon|--timeout: soon is not a time from 1ms to 10min, as 500ms, 1s or 2min|s7ppi help lists *
watch VB0 --interval 0|--interval: 0 is not a time from 1ms to 1h, as 500ms, 1s or 2min|s7ppi help watch *
watch VB0 --count 1.5|--count: 1.5 is not a whole number from 1 to 1000000000|s7ppi help watch *
watch VB0 --keep 2|--keep requires --rotate|add --rotate, or leave --keep out
-q -v read VB0|--quiet excludes --verbose|leave one of the two out
read VB0 --trace=|--trace needs a value; nothing stands behind =|write --trace FILE: *
--trace= read VB0|--trace needs a value; nothing stands behind =|write --trace FILE: *
LINES
    run --separate-stderr s7ppi '' read
    [ "${stderr_lines[0]}" = 's7ppi: "" stands in front of the command read' ]
    run --separate-stderr s7ppi read ''
    [ "${stderr_lines[0]}" = 's7ppi: "": not an address of the controller' ]
}

@test "a hint that helps against several errors is told once" {
    run --separate-stderr s7ppi read FOO1 V10.9 FOO2 V10.9 FOO3
    [ "$status" -eq 2 ]
    [ "${#stderr_lines[@]}" -eq 7 ]
    [ "$(grep -c '^hint: areas are ' <<<"$stderr")" -eq 1 ]
    [ "${stderr_lines[3]}" = "hint: bits are 0 to 7: write V10.7 instead of V10.9" ]
}

@test "short options stand for port, station, time-out and rate, and times have units" {
    run --separate-stderr s7ppi read -p sim -s3 -t 1.5s -b 19200 -v VB100
    [ "$status" -eq 0 ]
    [ "$output" = "VB100 17" ]
    [[ "$stderr" == *": 19200 baud, "* ]]
    [[ "$stderr" == *"-> poll of station 3"* ]]
    run -0 s7ppi check --baud 50 VB100
    run -0 s7ppi check --baud 4000000 VB100
    run --separate-stderr s7ppi watch -psim --interval 1ms --for 0.01s VB100
    [ "$status" -eq 0 ]
    [[ "${lines[0]}" == *" VB100 17" ]]
}

@test "--json is the same as --format json" {
    local command
    for command in "read VB100" "describe" "check VB100" "decode 10 02 00 5c 5e 16"; do
        # shellcheck disable=SC2086
        [ "$(timeless "$(s7ppi -p sim $command --json)")" = "$(timeless "$(s7ppi -p sim $command --format json)")" ]
    done
    [ "$(S7PPI_FORMAT=csv s7ppi describe --json)" = "$(s7ppi describe --format json)" ]
    [ "$(s7ppi describe --json --format json)" = "$(s7ppi describe --format json)" ]
}

# What an option is for stands behind its name, or where that is long, in the next line.
tells_of_every_option() {
    awk 'isNext && !/^          +[^ -]/ { isMissing = 1 }
         { isNext = /^ +-/ && !/[^ ]  +[^ ]/ }
         END { exit isMissing || isNext }' "$1"
}

@test "help tells of every command what --help does, with examples, and nothing of another" {
    local command
    [ "$(s7ppi help)" = "$(s7ppi --help)" ]
    mapfile -t commands < <(s7ppi help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p')
    [ "${#commands[@]}" -ge 15 ]
    for command in "${commands[@]}"; do
        s7ppi help "$command" >"$BATS_TEST_TMPDIR/help"
        s7ppi "$command" --help | cmp - "$BATS_TEST_TMPDIR/help"
        tells_of_every_option "$BATS_TEST_TMPDIR/help"
        grep -q "^Usage: s7ppi $command " "$BATS_TEST_TMPDIR/help"
        [ "$(grep -c '^Examples:$' "$BATS_TEST_TMPDIR/help")" -eq 1 ]
        run ! grep -nE ' $' "$BATS_TEST_TMPDIR/help" # an example or a word that is empty
        grep -qE "^  (cat .* \\| )?s7ppi .*\b$command\b" "$BATS_TEST_TMPDIR/help"
        sed -n '/^Examples:$/,/^$/{/^  /p}' "$BATS_TEST_TMPDIR/help" >"$BATS_TEST_TMPDIR/examples"
        run ! grep -vE '^  (cat .* \| )?s7ppi [^ ]' "$BATS_TEST_TMPDIR/examples"
        # S7PPI_MQTT_USER and the like are for one command.
        run grep -E 'Exit codes:|S7PPI_[^M]|Excludes:|Needs:|REQUIRED|, else ' "$BATS_TEST_TMPDIR/help"
        [ -z "$output" ]
    done
    run grep -E 'Excludes:|Needs:|REQUIRED|, else ' <(s7ppi help; s7ppi-sim --help)
    [ -z "$output" ]
}

@test "every example of the help is a command line that is right" {
    cd "$BATS_TEST_TMPDIR"
    local example
    s7ppi help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p' >names
    while read -r example; do
        # Nothing is run: help tells what a command takes, once the words in front of it are right.
        run --separate-stderr bash -c "${example%%[|>]*} --help"
        [ "$status" -eq 0 ]
    done < <(while read -r name; do s7ppi help "$name" | sed -n '/^Examples:/,/^$/s/^  \(s7ppi .*\)/\1/p'; done <names)
}

@test "2: what is no command, option or choice is told with the nearest that is" {
    local arguments nearest
    while IFS='|' read -r arguments nearest; do
        # shellcheck disable=SC2086
        run --separate-stderr s7ppi $arguments
        [ "$status" -eq 2 ]
        [[ "${stderr_lines[0]}${stderr_lines[1]}" == *"; the nearest $nearest"* ]]
    done <<'LINES'
raed VB0|to raed is read
hlep|to hlep is help
-V|to -V is -v
read --prot sim VB0|to --prot is --port
--prot=sim read VB0|to --prot is --port
watch --intervall 5 VB0|to --intervall is --interval
read --format JSON VB0|is json
read --parity E VB0|is even
LINES
    run --separate-stderr s7ppi describe VB0
    [[ "$stderr" != *nearest* ]]
}

@test "2: memory that is no BCD cannot be read as such" {
    start fake_controller e5 681717680002083203000000010002000600000401ff0400101a3fb916
    impatient VW0:bcd
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: VW0: 0x1a3f is not BCD" ]
    [ "${stderr_lines[1]}" = "hint: read it with :hex to see what it is" ]
}

@test "3: the port cannot be opened" {
    run --separate-stderr s7ppi read --port /dev/no-such-port VB0
    [ "$status" -eq 3 ]
    [[ "${stderr_lines[0]}" == "s7ppi: /dev/no-such-port cannot be opened: "* ]]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
    run --separate-stderr s7ppi read --port /dev/null VB0
    [ "$status" -eq 3 ]
}

@test "3: a port in use is refused with the reason" {
    start fake_controller
    s7ppi read --port "$port" --timeout 5000 VB0 3>&- 2>/dev/null &
    background+=($!)
    eventually grep -q unanswered "$BATS_TEST_TMPDIR/output"
    impatient VB0
    [ "$status" -eq 3 ]
    [ "${stderr_lines[1]}" = "hint: another program has the port open: end it, or use another port, or let --wait-lock 1min wait for it" ]
}

@test "5: a line that is never silent is told as such, with what babbles, and is no echo" {
    local byte
    for byte in 68 55 e5; do
        start fake_controller "babble:$byte"
        amid_babble s7ppi read --port "$port" --retries 1 --timeout 300 VB0
        [ "$status" -eq 5 ]
        [ -z "$output" ]
        [ "${stderr_lines[0]}" = "s7ppi: VB0: the line is never silent" ]
        [[ "${stderr_lines[1]}" =~ ^"hint: "[0-9]+" bytes in "[0-9]+" ms, as $byte".*": something keeps sending" ]]
        [ "${#stderr_lines[@]}" -eq 2 ]
        kill %% # before the next one writes where it did
        wait %% || true
    done
    start fake_controller babble:1005007c8116
    amid_babble s7ppi read --port "$port" --retries 0 --timeout 200 VB0
    [ "$status" -eq 5 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: the line is never silent; on it: poll of station 5" ]
    [[ "${stderr_lines[1]}" == "hint: "*" bytes in "*" ms, as 10 05 00 7c 81 16: something keeps sending"* ]]
    amid_babble s7ppi watch --port "$port" --timeout 100 --retries 0 --interval 1 --count 3 VB0
    [ "$status" -eq 5 ]
    [ "$(grep -c '^hint' <<<"$stderr")" -eq 1 ]
    [[ "$stderr" == *"s7ppi: 3 times: the line is never silent; on it: poll of station 5"* ]]
}

@test "5: a node that babbles behind a request is no echo, either" {
    start fake_controller 68686868 68686868 68686868
    impatient VB0
    [ "$status" -eq 5 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: invalid response" ]
    start fake_controller 68
    impatient VB0
    [ "${stderr_lines[0]}" = "s7ppi: VB0: invalid response" ]
}

@test "3: there is no simulator to start" {
    mkdir "$BATS_TEST_TMPDIR/bin"
    cp "$S7PPI_BIN_DIR/s7ppi" "$BATS_TEST_TMPDIR/bin"
    run --separate-stderr env PATH="$BATS_TEST_TMPDIR/bin" "$BATS_TEST_TMPDIR/bin/s7ppi" \
        read --port sim --plugin "$S7PPI_PLUGIN_FILE" VB0
    [ "$status" -eq 3 ]
    [ "${stderr_lines[0]}" = "s7ppi: there is no simulator to start" ]
}

@test "4: the controller is silent; every item is tried, every attempt waits its time-out" {
    start fake_controller
    impatient VB0 VB1
    [ "$status" -eq 4 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: plc no response" ]
    [ "${stderr_lines[2]}" = "s7ppi: VB1: plc no response" ]
    run --separate-stderr s7ppi read --port "$port" --retries 2 --timeout 50 -v VB0
    [ "$status" -eq 4 ]
    [ "$(grep -c '^-> request' <<<"$stderr")" -eq 3 ]
}

@test "4: another station does not answer" {
    start s7ppi-sim --station 7
    impatient --station 3 VB0
    [ "$status" -eq 4 ]
}

@test "5: what comes is no answer" {
    local reactions
    while read -r text reactions; do
        # shellcheck disable=SC2086
        start fake_controller $reactions
        impatient VB100*4
        [ "$status" -eq 5 ]
        [ "${stderr_lines[0]}" = "s7ppi: VB100: ${text//_/ }" ]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
    done <<'REACTIONS'
invalid_response ff
first_NAK_packet_loss 100002
invalid_response9 100003020516
packet_length_<_minimum_second_response e5 silence
invalid_response e5 68191968000318
packet_loss e5 681919680002083203
checksum_error e5 681919680002083203000000010002000800000401ff040020112233441d16
invalid_response e5 681919680002083203000000090002000800000401ff040020112233442416
REACTIONS
}

@test "5: an adapter that hears itself is told, whatever was asked" {
    start s7ppi-sim --fault echo
    [ "$(s7ppi --port "$port" --echo read VB100)" = "VB100 17" ]
    printf '%s\n' "s7ppi-dump 1" "area VB100..VB101" "station 2" "VB100 a0 a1" >"$BATS_TEST_TMPDIR/two.dump"
    local arguments
    while read -r -a arguments; do
        run --separate-stderr s7ppi --port "$port" -q "${arguments[@]}"
        [ "$status" -eq 5 ]
        [[ "${stderr_lines[0]}" == "s7ppi: "*": the adapter hears what it sends" ]]
        [ "${stderr_lines[1]}" = "hint: use --echo, or switch the adapter's receiver off while it sends" ]
    done <<COMMANDS
read VB100
write VB100=1
watch --count 1 VB100
dump VB100..VB110 -o $BATS_TEST_TMPDIR/dump
load $BATS_TEST_TMPDIR/two.dump
COMMANDS
}

@test "6: the port goes away; no further item is tried" {
    start fake_controller e5 hang-up
    run --separate-stderr s7ppi read --port "$port" --timeout 60000 VB0 VB1
    [ "$status" -eq 6 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: the port is gone" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
    [ "${#stderr_lines[@]}" -eq 2 ]
}

@test "7: the plug-in cannot be loaded or is no driver" {
    local file
    for file in /no/such/file.so /dev/null "$S7PPI_BIN_DIR/s7ppi" "$S7PPI_TEST_DIR/libforeign_plugin.so" \
        "$S7PPI_TEST_DIR/libhollow_plugin.so" "$S7PPI_TEST_DIR/libodd_plugin.so"; do
        run --separate-stderr s7ppi describe --plugin "$file"
        [ "$status" -eq 7 ]
        [[ "${stderr_lines[1]}" == "hint: "* ]]
        run --separate-stderr s7ppi read --port sim --plugin "$file" VB0
        [ "$status" -eq 7 ]
        [ -z "$output" ]
    done
}

@test "7: an interface of another host is named" {
    run --separate-stderr s7ppi describe --plugin "$S7PPI_TEST_DIR/libforeign_plugin.so"
    [[ "${stderr_lines[0]}" == *"its interface is org.example.Foreign/1.0, not "*".drivers.DriverInterface/1.1" ]]
}

@test "74: a full stdout ends it at once, whatever prints" {
    local arguments
    for arguments in --version --help "read --help" describe "read --port sim VB100 VB101" \
        "write --port sim --verify VB100=1 VB101=2" "write --dry-run VB100=1 VB101=2" \
        "watch --port sim --interval 1 VB100 VB101"; do
        # shellcheck disable=SC2086
        run --separate-stderr on_full_stdout s7ppi $arguments
        [ "$status" -eq 74 ]
        [ "$(grep -c ': No space left on device$' <<<"$stderr")" -eq 1 ]
        [ "${stderr_lines[-1]}" = "hint: the rest was not printed: make room, or send the output elsewhere" ]
    done
}
on_full_stdout() {
    "$@" >/dev/full
}

@test "74: a stdout that became full leaves what fitted, and the error names the item" {
    run --separate-stderr bash -c "trap '' XFSZ; ulimit -f 1; s7ppi read --port sim VB0*600 VB100 >'$BATS_TEST_TMPDIR/values'"
    [ "$status" -eq 74 ]
    [ "$(stat -c %s "$BATS_TEST_TMPDIR/values")" -eq 1024 ]
    [ "${stderr_lines[0]}" = "s7ppi: VB0: stdout takes no more data: File too large" ]
    [ "${#stderr_lines[@]}" -eq 2 ]
}

@test "74: a watch whose stdout is full still sums up" {
    run --separate-stderr on_full_stdout s7ppi watch --port sim VB100
    [ "$status" -eq 74 ]
    [[ "${stderr_lines[0]}" == "s7ppi: 0 polls of a simulated controller, 1 answer: "* ]]
    [ "${stderr_lines[3]}" = "s7ppi: VB100: 1 attempt, 0 errors" ]
    [ "${stderr_lines[4]}" = "s7ppi: stdout takes no more data: No space left on device" ]
}

@test "70: what nobody expected is told, and the embedded simulator ends" {
    run --separate-stderr s7ppi read --port sim --plugin "$S7PPI_TEST_DIR/libthrowing_plugin.so" VB0 VB1
    [ "$status" -eq 70 ]
    [ -z "$output" ]
    [ "${stderr_lines[0]}" = "s7ppi: internal failure: std::bad_alloc" ]
    [ "${stderr_lines[1]}" = "hint: run it again with --verbose, and report what that shows" ]
    [ "${#stderr_lines[@]}" -eq 2 ]
}

@test "the plug-in is found by option, then by environment, then beside the program" {
    export S7PPI_PLUGIN=/no/such/file.so
    run --separate-stderr s7ppi describe
    [ "$status" -eq 7 ]
    run --separate-stderr s7ppi describe --plugin "$S7PPI_PLUGIN_FILE"
    [ "$status" -eq 0 ]
    unset S7PPI_PLUGIN

    mkdir -p "$BATS_TEST_TMPDIR/alone" "$BATS_TEST_TMPDIR/installed/bin" "$BATS_TEST_TMPDIR/installed/lib/s7ppi"
    cp "$S7PPI_BIN_DIR/s7ppi" "$BATS_TEST_TMPDIR/alone"
    run --separate-stderr "$BATS_TEST_TMPDIR/alone/s7ppi" describe
    [ "$status" -eq 7 ]
    [[ "${stderr_lines[0]}" == "s7ppi: no plug-in found; looked for $BATS_TEST_TMPDIR/alone/"* ]]
    cp "$S7PPI_PLUGIN_FILE" "$BATS_TEST_TMPDIR/alone"
    run --separate-stderr "$BATS_TEST_TMPDIR/alone/s7ppi" describe
    [ "$status" -eq 0 ]

    cp "$S7PPI_BIN_DIR/s7ppi" "$BATS_TEST_TMPDIR/installed/bin"
    cp "$S7PPI_PLUGIN_FILE" "$BATS_TEST_TMPDIR/installed/lib/s7ppi"
    run --separate-stderr "$BATS_TEST_TMPDIR/installed/bin/s7ppi" describe
    [ "$status" -eq 0 ]
    [[ "$output" == *"plug-in              $BATS_TEST_TMPDIR/installed/lib/s7ppi/libs7_200_ppi.so"* ]]
}

@test "an answer that comes too late is not taken for the next one" {
    start fake_controller e5 \
        200:681919680002083203000000010002000800000401ff040020aabbccdd8016 \
        e5 681919680002083203000000020002000800000401ff040020112233441d16
    run --separate-stderr s7ppi read --port "$port" --timeout 100 --delay 300 --retries 1 VB100*4
    [ "$status" -eq 0 ]
    [ "$output" = "VB100 17 34 51 68" ]
}

# interrupt SIGNAL: a read whose second item waits forever; its exit code is then in $status.
interrupt() {
    start fake_controller e5 681919680002083203000000010002000800000401ff040020112233441c16
    s7ppi read --port "$port" --timeout 60000 VB100*4 VB900 \
        >"$BATS_TEST_TMPDIR/values" 2>"$BATS_TEST_TMPDIR/errors" 3>&- &
    local reader=$!
    background+=("$reader")
    eventually grep -q unanswered "$BATS_TEST_TMPDIR/output"
    kill "-$1" "$reader"
    status=0
    wait "$reader" || status=$?
}

@test "a signal ends a read that waits; what was read is printed" {
    interrupt TERM
    [ "$status" -eq 143 ]
    [ "$(cat "$BATS_TEST_TMPDIR/values")" = "VB100 17 34 51 68" ]
    [ ! -s "$BATS_TEST_TMPDIR/errors" ]
    interrupt INT
    [ "$status" -eq 130 ]
    [ "$(cat "$BATS_TEST_TMPDIR/values")" = "VB100 17 34 51 68" ]
    [ ! -s "$BATS_TEST_TMPDIR/errors" ]
}

# read_on_simulator: a read of some seconds with its simulator; their processes are then in $reader and
# $simulator.
read_on_simulator() {
    s7ppi read --port sim VB0*10000 3>&- >/dev/null 2>&1 &
    reader=$!
    background+=("$reader")
    local i
    for ((i = 0; i < 600; i++)); do
        simulator=$(pgrep -x -P "$reader" s7ppi-sim) && return
        sleep 0.05
    done
    return 1
}

# A process that nobody has waited for yet counts as ended.
has_ended() {
    local i
    for ((i = 0; i < 600; i++)); do
        [[ ! -d "/proc/$1" || $(ps -o stat= -p "$1") == Z* ]] && return
        sleep 0.05
    done
    return 1
}

@test "the embedded simulator ends with the program, however that ends" {
    read_on_simulator
    kill -INT "$reader"
    status=0
    wait "$reader" || status=$?
    [ "$status" -eq 130 ]
    has_ended "$simulator"

    read_on_simulator
    kill -KILL "$reader"
    has_ended "$simulator"
}
