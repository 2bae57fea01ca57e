#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What s7ppi reads and writes besides the line: stdin, stdout and stderr, and files.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

# Every file of a test lies in a directory of its own.
enter_directory() {
    mkdir "$BATS_TEST_TMPDIR/directory"
    cd "$BATS_TEST_TMPDIR/directory" || return 1
}

# refused MESSAGE S7PPI_ARGUMENT...: exit code 2 with this message, and no file is changed.
refused() {
    local message=$1 before
    shift
    before=$(ls; cat ./*.*)
    run --separate-stderr s7ppi "$@"
    [ "$status" -eq 2 ]
    [[ "${stderr_lines[-2]}" == *"$message" ]]
    [ "${stderr_lines[-1]}" = "hint: name another file" ]
    [ "$(ls; cat ./*.*)" = "$before" ]
}

@test "2: an output does not take the place of what the command reads" {
    enter_directory
    start s7ppi-sim --link plc
    printf '%s\n' "name,address" "Pump,VB100" >t.csv
    s7ppi watch --port plc -q --interval 1 --count 2 @t.csv -o run.csv --trace l.txt
    s7ppi dump --port plc -q VB100..VB103 -o a.dump
    echo "retries = 1" >config.ini
    ln -s t.csv link.csv
    ln t.csv other.csv
    local suffix="is read by this command and cannot take its output"
    refused "s7ppi: run.csv $suffix" report run.csv -o run.csv
    refused "s7ppi: ./run.csv $suffix" report run.csv -o ./run.csv
    refused "s7ppi: a.dump $suffix" load --port plc a.dump --trace a.dump
    refused "s7ppi: a.dump.loading would take two outputs of this command" \
        load --port plc a.dump --trace a.dump.loading
    refused "s7ppi: @t.csv: t.csv $suffix" read --port plc @t.csv -o t.csv
    refused "s7ppi: @link.csv: $PWD/t.csv $suffix" read --port plc @link.csv -o "$PWD/t.csv"
    refused "s7ppi: @t.csv: other.csv $suffix" read --port plc @t.csv --trace other.csv
    refused "s7ppi: @t.csv:Pump: t.csv $suffix" watch --port plc --count 1 --interval 1 @t.csv:Pump -o t.csv
    refused "s7ppi: l.txt $suffix" decode --trace l.txt -o l.txt
    refused "s7ppi: config.ini $suffix" read --port plc --config config.ini VB100 -o config.ini
    run -2 --separate-stderr s7ppi decode - -o l.txt <./l.txt
    [ "${stderr_lines[0]}" = "s7ppi: l.txt $suffix" ]
    grep -q ' > ' l.txt
}

@test "2: two outputs do not take the same place, nor that of the port" {
    enter_directory
    start s7ppi-sim --link plc --trace ../sim.trace
    ln -s "$(readlink plc)" second
    echo before >there.txt
    local suffix="would take two outputs of this command"
    refused "s7ppi: same.txt $suffix" read --port plc VB100 -o same.txt --trace same.txt
    refused "s7ppi: there.txt $suffix" read --port plc VB100 -o there.txt --trace ./there.txt
    refused "s7ppi: there.txt $suffix" watch --port plc --count 1 VB100 -o there.txt --trace there.txt
    refused "s7ppi: there.txt $suffix" dump --port plc VB100..VB110 -o there.txt --trace there.txt
    echo before >there.txt.part
    refused "s7ppi: there.txt.part $suffix" dump --port plc VB100..VB110 -o there.txt --trace there.txt.part
    run -2 --separate-stderr bash -c "s7ppi read --port plc VB100 --trace there.txt >>there.txt"
    [ "$(cat there.txt)" = before ]
    refused "s7ppi: second is the port of this command and cannot take its output" \
        read --port plc VB100 --trace second
    [ "$(cat ../sim.trace)" = "$(head -n 1 ../sim.trace)" ]
    s7ppi read --port plc VB100 --trace /dev/null >/dev/null
}

# without_room S7PPI_ARGUMENT...: where files take no more than a kilobyte, as on a full disk.
without_room() {
    run -74 --separate-stderr bash -c "trap '' XFSZ; ulimit -f 1; s7ppi -q $*"
}

@test "74: the system's reason is told when a file takes no more" {
    enter_directory
    without_room dump --port sim -o a.dump VB0..VB999
    [[ "${stderr_lines[0]}" == *"a.dump.part cannot be written: File too large" ]]
    [ "${stderr_lines[1]}" = "hint: check the directory, its rights and its room" ]
    without_room read --port sim -o values VB0*600
    [ "${stderr_lines[0]}" = "s7ppi: values cannot be written: File too large" ]
    [ "${stderr_lines[1]}" = "hint: check the directory, its rights and its room; nothing was left there" ]
    without_room watch --port sim -o run.csv VB0*40 --count 10 --interval 1 --all
    [ "${stderr_lines[0]}" = "s7ppi: run.csv cannot be written: File too large" ]
    [ "${stderr_lines[1]}" = "hint: check the directory, its rights and its room; the records before are in the file" ]
    without_room read --port sim --trace trace VB0*600
    [[ "${stderr_lines[0]}" == *"trace cannot be written: File too large" ]]
    [ "${stderr_lines[1]}" = "hint: check the trace file's directory, its rights and its room" ]
    run -74 --separate-stderr s7ppi read --port sim --trace /dev/full VB100
    [ "${stderr_lines[0]}" = "s7ppi: /dev/full cannot be written: No space left on device" ]
}

@test "stdout under another name is no file to be replaced" {
    enter_directory
    start s7ppi-sim --link plc
    local name
    for name in - /dev/stdout /dev/fd/1 /proc/self/fd/1 log; do
        (
            echo before
            s7ppi --port plc read VB100 -o "$name"
            echo after
        ) >>log
        [ "$(cat log)" = $'before\nVB100 17\nafter' ]
        [ "$(s7ppi --port plc read VB100 -o "$name" | cat)" = "$([ "$name" = log ] || echo "VB100 17")" ]
        rm log
    done
    run -2 --separate-stderr s7ppi --port plc dump VB100..VB110 -o /dev/stdout
    [ "${stderr_lines[0]}" = "s7ppi: a dump needs a file" ]
}

@test "2: a name that is none" {
    enter_directory
    local option
    for option in --port --output --trace --plugin; do
        run -2 --separate-stderr s7ppi read VB100 "$option" ''
        [ "${stderr_lines[0]}" = "s7ppi: no name is given with $option" ]
        [ "${stderr_lines[1]}" = "hint: name one, or leave the option out" ]
    done
    echo "port =" >config.ini
    run -2 --separate-stderr s7ppi read VB100 --config config.ini
    [ "${stderr_lines[0]}" = "s7ppi: config.ini:1: port has no value" ]
    run -2 --separate-stderr s7ppi read --port sim @
    [ "${stderr_lines[0]}" = "s7ppi: @: no name is given" ]
    run -2 --separate-stderr s7ppi report ''
    [ "${stderr_lines[0]}" = "s7ppi: no name is given" ]
}

# gives_way SIGNAL CODE S7PPI_ARGUMENT...: a wait for a pipe through which nothing comes ends with one signal.
gives_way() {
    local signal=$1 code=$2 reader
    shift 2
    s7ppi "$@" <&0 2>errors 3>&- 4>&- &
    reader=$!
    eventually awaits "$reader"
    kill "-$signal" "$reader"
    status=0
    wait "$reader" || status=$?
    [ "$status" -eq "$code" ]
    [ ! -s errors ]
}

# awaits PROCESS: whether s7ppi runs in it, has opened the pipe, be it as stdin, and catches SIGINT. Before it does, that
# signal is lost, since a shell starts what it does not wait for with SIGINT ignored.
awaits() {
    local caught
    [ "$(cat "/proc/$1/comm")" = s7ppi ] || return 1
    caught=$(awk '$1 == "SigCgt:" { print $2 }' "/proc/$1/status")
    (((0x$caught & 1 << (2 - 1)) != 0)) && [ -n "$(find "/proc/$1/fd" -lname "$PWD/pipe")" ]
}

@test "130, 143: a pipe through which nothing comes gives way to the first signal" {
    enter_directory
    mkfifo pipe
    local writing
    for writing in no yes; do
        # A writer that stays silent; this is one of its readers, too, or it would wait for them.
        if [ "$writing" = yes ]; then
            exec 4<>pipe
        fi
        gives_way TERM 143 report pipe
        gives_way INT 130 decode --trace pipe
        gives_way TERM 143 read --port sim @pipe
        gives_way TERM 143 check @pipe:Pump
        gives_way INT 130 load --port sim pipe
        gives_way TERM 143 load --port sim --format raw --to VB0 pipe
        gives_way TERM 143 plugin pipe
        gives_way TERM 143 --config pipe read --port sim VB100
    done
    # A stdin is open from the start on. SIGTERM comes through even before the program catches it, in the emulator, too.
    gives_way TERM 143 report - <pipe
    gives_way TERM 143 decode - <pipe
    gives_way TERM 143 decode --trace - <pipe
    exec 4<&-
}

@test "a pipe is read to its end, however late that comes" {
    enter_directory
    mkfifo pipe
    (
        exec 3>&- >pipe
        printf 'name,add'
        sleep 0.3
        printf 'ress\nPump,VB100\n'
    ) &
    run -0 --separate-stderr s7ppi read --port sim @pipe
    [ "$output" = "Pump 17" ]
}

@test "2: what has no end is told by name" {
    enter_directory
    local arguments
    while read -r arguments; do
        # shellcheck disable=SC2086
        run -2 --separate-stderr s7ppi $arguments </dev/zero
        [[ "${stderr_lines[0]}" =~ ^"s7ppi: ".*("is too large: it has more than "[0-9]+" MiB"|"the line has more than 1 MiB")$ ]]
        [ "${stderr_lines[1]}" = "hint: check the name: it may be another file, or a device" ]
    done <<'ARGUMENTS'
report /dev/zero
report -
decode --trace /dev/zero
decode -
read --port sim @/dev/zero
load --port sim /dev/zero
load --port sim --format raw --to VB0 /dev/zero
--config /dev/zero read --port sim VB100
ARGUMENTS
    run -2 --separate-stderr s7ppi plugin /dev/zero
    [ "${stderr_lines[0]}" = "s7ppi: /dev/zero is too large: it has more than 128 MiB" ]
}

@test "2: a .part or a .loading that is no file is told, or left alone" {
    enter_directory
    mkfifo a.dump.part
    run -2 --separate-stderr s7ppi dump --port sim VB100..VB103 -o a.dump
    [ "${stderr_lines[0]}" = "s7ppi: a.dump.part is no file" ]
    rm a.dump.part
    s7ppi dump -q --port sim VB100..VB103 -o a.dump
    mkfifo a.dump.loading
    run -0 s7ppi load -q --port sim a.dump
}

@test "a document of json takes any number of frames, and lists them behind their bytes" {
    enter_directory
    { yes e5 | head -n 100000; echo 10; } >frames
    run -5 --separate-stderr bash -c 's7ppi decode --format json - <frames >document'
    [ "${stderr_lines[0]}" = "s7ppi: 1 of 100001 frames are cut, damaged or none" ]
    [ "$(grep -c '"frame":' document)" -eq 100001 ]
    [ "$(tail -n 2 document | grep -o '"size":1' | wc -l)" -eq 100001 ]
    [[ "$(tail -n 2 document | tail -c 150)" == *'{"meaning":"incomplete frame","size":1,"faults":["cut: 5 of 6 bytes are missing, from \"destination\" on"]}]
}' ]]
}

@test "74: frames that the temporary file has no room for are told" {
    enter_directory
    yes e5 | head -n 100000 >frames
    run -74 --separate-stderr bash -c 'TMPDIR=/nonexistent s7ppi decode --format json - <frames >document'
    [[ "${stderr_lines[0]}" == "s7ppi: a temporary file in /nonexistent cannot be used: "* ]]
    [[ "${stderr_lines[1]}" == "hint: "*TMPDIR* ]]
    TMPDIR=/nonexistent s7ppi decode --format ndjson - <frames >/dev/null
}
