#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# The forms of the data, the file of -o, and tag files.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common

@test "describe --json has every way in which an area is named, and the limits" {
    local described
    described=$(s7ppi describe --json)
    [ "$(jq -c '[.areas[] | select(.area == "V") | .addresses[] | [.first, .last, .type, .writable]]' <<<"$described")" = \
        '[["V0.0","V2097151.7","bool",true],["VB0","VB2097151","u8",true],["VW0","VW2097150","u16",true],["VD0","VD2097148","u32",true]]' ]
    [ "$(jq -c '.limits' <<<"$described")" = '{"firstStation":1,"lastStation":126,"readBytes":222,"writeBytes":212}' ]
}

@test "what has no records is a table of fields and values" {
    run -0 --separate-stderr s7ppi describe --format csv
    [ "${lines[0]}" = "field,value" ]
    [ "${lines[1]}" = "name,Simatic S7-200 PPI" ]
    run -0 --separate-stderr s7ppi describe --format tsv
    [ "${lines[1]}" = $'name\tSimatic S7-200 PPI' ]
}

@test "every form of what is read" {
    run --separate-stderr s7ppi read --port sim --format json VB100 V100.0*2
    [ "$(timeless "$output")" = '{
  "format": "s7ppi.read/1",
  "simulated": true,
  "items": [
    {"station":2,"address":"VB100","type":"u8","values":[17]},
    {"station":2,"address":"V100.0","type":"bool","values":[true,false]}
  ]
}' ]
    run --separate-stderr s7ppi read --port sim --format ndjson VB100 VB102:str*2
    [ "$(timeless "$output")" = '{"format":"s7ppi.read/1","simulated":true,"station":2,"address":"VB100","type":"u8","values":[17]}
{"format":"s7ppi.read/1","simulated":true,"station":2,"address":"VB102","type":"str","values":["3D"]}' ]
    run --separate-stderr s7ppi read --port sim --format csv VB100*2 VB102:str*2
    [ "$output" = 'name,address,type,index,value,unit,error,simulated
,VB100,u8,0,17,,,1
,VB100,u8,1,34,,,1
,VB102,str,0,3D,,,1' ]
    run --separate-stderr s7ppi read --port sim --format tsv VB100
    [ "$output" = $'name\taddress\ttype\tindex\tvalue\tunit\terror\tsimulated\n\tVB100\tu8\t0\t17\t\t\t1' ]
    [ "$(s7ppi read --port sim --format raw VB100*4 VW100 | od -An -tx1)" = " 11 22 33 44 11 22" ]
}

@test "csv begins with the names of its columns" {
    s7ppi dump --port sim -q -o "$BATS_TEST_TMPDIR/one" VB100..VB100
    s7ppi dump --port sim -q -o "$BATS_TEST_TMPDIR/two" VB100..VB101
    local arguments columns
    while IFS='|' read -r arguments columns; do
        # shellcheck disable=SC2086 # words of a command line
        [ "$(s7ppi $arguments --format csv | head -n 1)" = "$columns" ]
    done <<LINES
read --port sim VB0|name,address,type,index,value,unit,error,simulated
write --port sim VB0=1|name,address,type,index,value,unit,error,simulated
write --dry-run VB0=1|meaning,bytes
watch --port sim -q --count 1 VB0|time,name,address,type,index,value,unit,ms,error,port,station,simulated
scan --port sim -q --stations 2|baud,station,answer,milliseconds,text,simulated
ports|port,byId,driver,description,maker,serialNumber,usbId,group,readable,writable,holders,latency,advice
check VB0|text,valid,address,area,type,count,first,last,requests,frame,writable,writeError,access,min,max,error,nearest
decode e5|frame,offset,byte,field,meaning,fault
diff -q $BATS_TEST_TMPDIR/one $BATS_TEST_TMPDIR/two|name,address,last,type,index,old,new,unit,only,error,simulated
LINES
}

@test "values of several lines stand below each other, behind the longest of their addresses" {
    run -0 --separate-stderr s7ppi read --port sim 'VB96*9' VB0
    [ "$output" = "VB96  0 0 0 0 17 34 51 68
VB104 0
VB0   0" ]
}

@test "forms keep whatever is in a text, and numbers that JSON has not" {
    start s7ppi-sim
    s7ppi write --port "$port" 'VB0:str="a,b\x22c\x09d\x0a\xe4"' VD20:f32=nan,-inf,0.1
    run --separate-stderr s7ppi read --port "$port" --format json VB0:str*9 VD20:f32*3
    [ "$(jq -r '.items[0].values[0] | @json' <<<"$output")" = '"a,b\"c\td\nä"' ]
    [ "$(jq -c '.items[1].values' <<<"$output")" = '["nan","-inf",0.1]' ]
    run --separate-stderr s7ppi read --port "$port" --format csv VB0:str*9
    [ "$(tail -n +2 <<<"$output")" = $',VB0,str,0,"a,b""c\td\nä",,' ]
    run --separate-stderr s7ppi read --port "$port" --format tsv VB0:str*9
    [ "${lines[1]}" = $'\tVB0\tstr\t0\ta,b"c\\td\\nä\t\t' ]
}

@test "numbers of 64 bits are exact in every form, and in a recording that becomes a page" {
    start s7ppi-sim
    s7ppi write --port "$port" VD0:u64=18446744073709551615 VD8:i64=-9007199254740993 VD16:f64:swap=1.0000000000000002
    local items=(VD0:u64 VD8:i64 VD16:f64:swap) form
    run --separate-stderr s7ppi read --port "$port" "${items[@]}"
    [ "$output" = "VD0  18446744073709551615
VD8  -9007199254740993
VD16 1.0000000000000002" ]
    run --separate-stderr s7ppi read --port "$port" --format ndjson "${items[@]}"
    [[ "${lines[0]}" == *'"type":"u64","values":[18446744073709551615]}' ]]
    [[ "${lines[1]}" == *'"type":"i64","values":[-9007199254740993]}' ]]
    [[ "${lines[2]}" == *'"type":"f64:swap","values":[1.0000000000000002]}' ]]
    s7ppi watch --port "$port" -q --count 1 -o "$BATS_TEST_TMPDIR/wide.csv" "${items[@]}" VB24:string*4
    grep -q ',u64,0,18446744073709551615,' "$BATS_TEST_TMPDIR/wide.csv"
    grep -q ',i64,0,-9007199254740993,' "$BATS_TEST_TMPDIR/wide.csv"
    grep -q ',f64:swap,0,1.0000000000000002,' "$BATS_TEST_TMPDIR/wide.csv"
    grep -q ',string,0,,' "$BATS_TEST_TMPDIR/wide.csv"
    s7ppi report "$BATS_TEST_TMPDIR/wide.csv" -o "$BATS_TEST_TMPDIR/wide.html"
    grep -q VD16 "$BATS_TEST_TMPDIR/wide.html"
}

@test "2: a command without bytes has no raw form, and nothing is sent" {
    start fake_controller hang-up
    run --separate-stderr s7ppi write --port "$port" --format raw VB0=1
    [ "$status" -eq 2 ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
    run --separate-stderr s7ppi read --port "$port" --format xml VB0
    [ "$status" -eq 2 ]
    kill -0 "${background[0]}"
}

@test "a file takes the form that its name ends with, and stdout stays empty" {
    local form first
    while read -r form first; do
        run --separate-stderr s7ppi read --port sim -o "$BATS_TEST_TMPDIR/values.$form" VB100
        [ "$status" -eq 0 ]
        [ -z "$output$stderr" ]
        [[ "$(head -n 1 "$BATS_TEST_TMPDIR/values.$form")" == "$first"* ]]
    done <<'FORMS'
json {
ndjson {"format":"s7ppi.read/1","simulated":true,"time":
csv name,address,
tsv name
txt # simulated: no machine had these values
raw # simulated: no machine had these values
FORMS
    s7ppi read --port sim --output "$BATS_TEST_TMPDIR/values.csv" --format text VB100
    [ "$(tail -n +2 "$BATS_TEST_TMPDIR/values.csv")" = "VB100 17" ]
    run --separate-stderr s7ppi read --port sim -o - VB100
    [ "$output" = "VB100 17" ]
}

@test "a file is replaced when all is read, and stays as it was when that fails" {
    local file=$BATS_TEST_TMPDIR/directory/values
    mkdir "${file%/*}"
    echo before >"$file"
    run --separate-stderr s7ppi read --port /dev/no-such-port -o "$file" VB100
    [ "$status" -eq 3 ]
    [ "$(cat "$file")" = before ]
    run --separate-stderr bash -c "trap '' XFSZ; ulimit -f 1; s7ppi read --port sim -o '$file' VB0*600"
    [ "$status" -eq 74 ]
    [ "$(cat "$file")" = before ]
    [ "$(ls "${file%/*}")" = values ]
    run --separate-stderr s7ppi read --port sim -o "$file" VB100 VB20000
    [ "$status" -eq 1 ]
    [ "$(tail -n +2 "$file")" = "VB100   17" ]
}

@test "2, 74: a file that cannot be" {
    run --separate-stderr s7ppi read --port sim -o /dev/null VB100
    [ "$status" -eq 2 ]
    run --separate-stderr s7ppi read --port sim -o /no/such/directory/values VB100
    [ "$status" -eq 74 ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
}

# interrupted FILE: a read whose second item waits forever, ended by SIGTERM.
interrupted() {
    start fake_controller e5 "$(byte_answer 1 17)"
    s7ppi read --port "$port" --timeout 60000 -o "$1" VB0 VB1000 3>&- &
    local reader=$!
    background+=("$reader")
    eventually grep -q unanswered "$BATS_TEST_TMPDIR/output"
    [ ! -e "$1" ]
    kill -TERM "$reader"
    status=0
    wait "$reader" || status=$?
}

@test "143: a signal keeps what was got, as a whole document" {
    interrupted "$BATS_TEST_TMPDIR/values.json"
    [ "$status" -eq 143 ]
    [ "$(jq -c '.items | map([.address, .values])' "$BATS_TEST_TMPDIR/values.json")" = '[["VB0",[17]]]' ]
}

# Until it has ended: the first may come too early, and two that come before the program runs again are one.
interrupt_again() {
    ! kill -INT "$1" 2>/dev/null || [[ $(ps -o stat= -p "$1") == Z* ]]
}

# has_open PROCESS FILE: whether the process has it open. In an emulator it has more than these.
has_open() {
    local file
    for file in /proc/"$1"/fd/*; do
        [ "$(readlink "$file")" = "$(readlink -f "$2")" ] && return
    done
    return 1
}

@test "a second signal leaves no file" {
    start fake_controller
    s7ppi read --port "$port" --delay 4200 --timeout 60000 -o "$BATS_TEST_TMPDIR/values" VB0 3>&- &
    local reader=$!
    background+=("$reader")
    eventually has_open "$reader" "$port"
    sleep 0.5
    eventually interrupt_again "$reader"
    status=0
    wait "$reader" || status=$?
    [ "$status" -eq 130 ]
    [ ! -e "$BATS_TEST_TMPDIR/values" ]
}

# tags LINE...: a tag file of these lines, in $tags.
tags() {
    tags=$BATS_TEST_TMPDIR/tags.csv
    printf '%s\n' "$@" >"$tags"
}

@test "a tag file stands for its items, by name, scaled, with their units" {
    tags "name,address,type,scale,offset,unit" "Boiler,T37,i16,0.1,-10,°C" "Pump,V100.4" "Bytes,VB100*2"
    run --separate-stderr s7ppi read --port sim VB101 "@$tags"
    [ "$status" -eq 0 ]
    [ "$output" = "VB101  34
Boiler 20 °C
Pump   1
Bytes  17 34" ]
    run --separate-stderr s7ppi read --port sim --format csv "@$tags:Boiler"
    [ "${lines[1]}" = "Boiler,T37,i16,0,20.0,°C,,1" ]
    run --separate-stderr s7ppi watch --port sim --count 1 "@$tags:Pump"
    [[ "$output" == *" Pump 1" ]]
}

@test "a tag is written as it is shown" {
    tags "name,address,type,scale,offset,unit" "Boiler,VW10,i16,0.1,-10,°C"
    start s7ppi-sim
    run --separate-stderr s7ppi write --port "$port" --verify "@$tags:Boiler=21.5"
    [ "$status" -eq 0 ]
    [ "$output" = "Boiler 21.5 °C" ]
    run --separate-stderr s7ppi read --port "$port" VW10
    [ "$output" = "VW10 315" ]
}

@test "1: an item that fails is told by its name" {
    tags "name,address" "Nowhere,VB20000" "Bottom,VB100"
    run --separate-stderr s7ppi read --port sim "@$tags"
    [ "$status" -eq 1 ]
    [ "$output" = "Bottom  17" ]
    [[ "${stderr_lines[0]}" == "s7ppi: Nowhere: Invalid address"* ]]
}

@test "columns that a tag file has for itself are told with -v" {
    tags "Name;Address;Comment" "Bottom;VB100;17, mostly"
    run --separate-stderr s7ppi read --port sim "@$tags"
    [ "$output" = "Bottom 17" ]
    [ -z "$stderr" ]
    run --separate-stderr s7ppi read --port sim -v "@$tags"
    [ "$(grep -cFx 's7ppi: the column "comment" of a tag file is left out' <<<"$stderr")" -eq 1 ]
}

@test "2: every wrong line of a tag file is told by its place, and nothing is sent" {
    tags "name,address,scale" "Boiler,vb1" "Pump,Q0.3,2" "Good,VB1" "Good,VB2"
    start fake_controller hang-up
    run --separate-stderr s7ppi read --port "$port" "@$tags"
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: $tags:2: \"vb1\" is not an address of the controller" ]
    [ "${stderr_lines[1]}" = "hint: write VB1 instead of vb1" ]
    [[ "${stderr_lines[2]}" == "s7ppi: $tags:3: "* ]]
    [[ "${stderr_lines[4]}" == "s7ppi: $tags:5: "* ]]
    [ "${#stderr_lines[@]}" -eq 6 ]
    run --separate-stderr s7ppi write --port "$port" "@$tags:Good=1"
    [ "$status" -eq 2 ]
    run --separate-stderr s7ppi read --port "$port" @/no/such/tags.csv
    [ "$status" -eq 2 ]
    { echo "name,address" && head -c 1100000 /dev/zero | tr '\0' x && echo ",VB0"; } >"$tags"
    run -2 --separate-stderr s7ppi read --port "$port" "@$tags"
    [ "${stderr_lines[0]}" = "s7ppi: @$tags: $tags:2: the line has more than 1 MiB" ]
    kill -0 "${background[0]}"
}
