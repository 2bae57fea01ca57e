#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi check as a user meets it: which addresses are right, and what would be sent for them.

# bats sets the variables of run.
# shellcheck disable=SC2154

load common

@test "a valid address has its area, its limits and its bytes on the wire" {
    run --separate-stderr s7ppi check VW100*2
    [ "$status" -eq 0 ]
    [ "$stderr" = "" ]
    [ "$output" = "VW100*2
  valid        2 u16
  area         variable memory, words
  limits       VW0 to VW2097150, less in most models
  read         one request:
               68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00 04 01 12 0a 10 04 00 02 00 01 84 00 03 20 8f 16
  write        possible
all together
  requests     1, 115 ms a poll at 9600 baud: 17 values per second
  VB100*4      VW100, 71 characters, 115 ms" ]
}

@test "areas are told with what their addresses count" {
    run -0 --separate-stderr s7ppi check V0.0 MB0 SMD0 T37 C5
    [ "$(sed -n 's/^  area  *//p' <<<"$output")" = "variable memory, bits
bit memory, bytes
special memory, double words
timers, by number
counters, by number" ]
}

@test "it ends with the requests for all items, whose times follow the line" {
    run -0 --separate-stderr s7ppi check 'VW100*2' VB110 T37 VB400*300 VB100 AIW0@3
    [ "$(sed -n '/^all together/,$p' <<<"$output")" = "all together
  requests     5, 918 ms a poll at 9600 baud: 333 values per second
  VB100*11     VW100 VB110 VB100, a gap of 6, 78 characters, 123 ms
  T37          T37, 72 characters, 116 ms
  VB400*222    VB400, 289 characters, 365 ms
  VB622*78     VB400, 145 characters, 200 ms
  AIW0@3       AIW0@3, 69 characters, 113 ms" ]
    # 8N1 has 10 bits a character: 67 + 4 characters and 34 ms of pauses and answer.
    run -0 --separate-stderr s7ppi check --baud 19200 --parity none 'VW100*2'
    [ "${lines[-1]}" = "  VB100*4      VW100, 71 characters, 71 ms" ]
}

@test "of the items of a request eight are named" {
    run -0 --separate-stderr s7ppi check VB0 VB1 VB2 VB3 VB4 VB5 VB6 VB7
    [[ "${lines[-1]}" == *" VB0 VB1 VB2 VB3 VB4 VB5 VB6 VB7, 75 characters, "* ]]
    run -0 --separate-stderr s7ppi check VB0 VB1 VB2 VB3 VB4 VB5 VB6 VB7 VB8
    [[ "${lines[-1]}" == *" VB0 VB1 VB2 VB3 VB4 VB5 VB6 VB7 and 1 more, 76 characters, "* ]]
}

@test "the plan keeps to what the user allows" {
    run -0 --separate-stderr s7ppi check --no-merge VB0 VB1
    [ "${lines[-2]}" = "  VB0          VB0, 68 characters, 112 ms" ]
    [ "${lines[-1]}" = "  VB1          VB1, 68 characters, 112 ms" ]
    run -0 --separate-stderr s7ppi check --block 32 'VB0*40'
    [ "${lines[-2]}" = "  VB0*32       VB0, 99 characters, 147 ms" ]
    [ "${lines[-1]}" = "  VB32*8       VB0, 75 characters, 120 ms" ]
}

@test "with the intervals of a tag file it tells which can be kept at which rate" {
    cd "$BATS_TEST_TMPDIR"
    printf '%s\n' "name,address,interval" "Fast,VB100,100" "Slow,VB400*200,1000" >t.csv
    run -0 --separate-stderr s7ppi check @t.csv
    [ "$(sed -n '/^all together/,$p' <<<"$output")" = "all together
  requests     2, 452 ms a poll at 9600 baud: 445 values per second
  every 100 ms 112 ms at 9600 baud, 73 ms at 19200 baud, 38 ms at 187500 baud
  VB100        Fast, 68 characters, 112 ms
  every 1000 ms 340 ms at 9600 baud, 187 ms at 19200 baud, 50 ms at 187500 baud
  VB400*200    Slow, 267 characters, 340 ms
  9600 baud    not all intervals can be kept: the line is busy 146 % of the time
  19200 baud   all intervals are kept: the line is busy 92 % of the time
  187500 baud  all intervals are kept: the line is busy 43 % of the time" ]
    run -0 --separate-stderr s7ppi check --format json @t.csv
    [ "$(jq -c '.plan.groups[0]' <<<"$output")" = '{"ms":111.9,"requests":[{"request":"VB100","items":["Fast"],"gap":0,"characters":68,"ms":111.9}],"rates":[{"baud":9600,"ms":111.9,"kept":false},{"baud":19200,"ms":73,"kept":true},{"baud":187500,"ms":38,"kept":true}],"interval":100}' ]
    [ "$(jq -c '[.plan.baud, .plan.ms, .plan.valuesPerSecond]' <<<"$output")" = '[9600,451.9,444.8]' ]
}

@test "the bytes are those for the station that is named" {
    run --separate-stderr s7ppi check --station 5 --format csv VB0
    [ "$status" -eq 0 ]
    [[ "${lines[1]}" == *",68 1b 1b 68 05 00 6c "* ]]
}

@test "what the plug-in refuses to write is told in its own words" {
    run --separate-stderr s7ppi check AIW2 HC0 T37:bool
    [ "$status" -eq 0 ]
    [ "$(grep -c '^  write        can not write data to ' <<<"$output")" -eq 3 ]
}

@test "a long item tells how many requests it takes" {
    run --separate-stderr s7ppi check 'VB0*1000'
    [ "$status" -eq 0 ]
    [ "${lines[4]}" = "  read         5 requests, the first:" ]
}

@test "2: an address that is none gets the nearest that are, and the others are checked all the same" {
    run --separate-stderr s7ppi check VX10 VB1
    [ "$status" -eq 2 ]
    [ "${lines[0]}" = "VX10" ]
    [ "${lines[1]}" = "  not valid    not an address of the controller" ]
    [ "${lines[2]}" = "  instead      write VB10 or V10.0 instead of VX10" ]
    [ "${lines[3]}" = "VB1" ]
    [ "${stderr_lines[0]}" = "s7ppi: 1 of 2 not valid" ]
    [[ "${stderr_lines[1]}" == "hint: "* ]]
}

@test "a tag file stands for its tags, as for read" {
    local tags=$BATS_TEST_TMPDIR/tags.csv
    printf 'name,address,type\nBoiler,VW100,i16\nInput,AIW2\n' >"$tags"
    run --separate-stderr s7ppi check "@$tags" VB1
    [ "$status" -eq 0 ]
    [ -z "$stderr" ]
    [ "${lines[0]}" = "@$tags:Boiler VW100" ]
    [ "${lines[1]}" = "  valid        1 i16" ]
    [[ "$output" == *"@$tags:Input AIW2"*"can not write data to AIW2"*$'\nVB1\n'* ]]
    run --separate-stderr s7ppi check --format json "@$tags:Input"
    [ "$(jq -c '.items[] | [.text, .address, .valid]' <<<"$output")" = "[\"@$tags:Input\",\"AIW2\",true]" ]
}

@test "2: a tag file without a column that it needs" {
    cd "$BATS_TEST_TMPDIR"
    printf 'name\nBoiler\n' >tags.csv
    run --separate-stderr s7ppi check @tags.csv
    [ "$status" -eq 2 ]
    [ "${stderr_lines[0]}" = "s7ppi: tags.csv:1: the column address is missing" ]
    printf 'Boiler,VW100\n' >tags.csv
    run --separate-stderr s7ppi check @tags.csv
    [ "${stderr_lines[0]}" = "s7ppi: tags.csv:1: the column name is missing" ]
}

@test "what a tag file says of writing is shown" {
    cd "$BATS_TEST_TMPDIR"
    printf '%s\n' name,address,unit,access,min,max Boiler,VW100,°C,rw,5.5,90.5 Status,VB1,,ro,, Level,VB2,mm,,,7.5 \
        Plain,VB3 Input,AIW2,,ro >tags.csv
    run --separate-stderr s7ppi check @tags.csv
    [ "$(grep '^  write' <<<"$output")" = "  write        possible, from 5.5 to 90.5 °C
  write        possible, but the access is ro in tags.csv:3
  write        possible, up to 7.5 mm
  write        possible
  write        can not write data to AIW2" ]
    run --separate-stderr s7ppi check --format json @tags.csv
    [ "$(jq -c '.items[] | [.writable, .access, .min, .max]' <<<"$output")" = '[true,"rw",5.5,90.5]
[true,"ro",null,null]
[true,null,null,7.5]
[true,null,null,null]
[false,"ro",null,null]' ]
}

@test "2: what is wrong in a tag file is told, and its other tags are checked" {
    local tags=$BATS_TEST_TMPDIR/tags.csv
    printf 'name,address\nBoiler,VW100\nPump,vb1\n' >"$tags"
    run --separate-stderr s7ppi check "@$tags"
    [ "$status" -eq 2 ]
    [ "${lines[0]}" = "@$tags:Boiler VW100" ]
    [[ "$output" == *"@$tags"$'\n'"  not valid    there are errors in the tag file"* ]]
    [[ "${stderr_lines[0]}" == "s7ppi: $tags:3: "*"not an address of the controller" ]]
    [ "${stderr_lines[2]}" = "s7ppi: 1 of 2 not valid" ]
    printf 'name,address\nBoiler,VW100\n' >"$tags"
    run --separate-stderr s7ppi check "@$tags:Pump"
    [ "$status" -eq 2 ]
    [[ "$output" == *'there is no tag "Pump" in the file'*"its tags are Boiler"* ]]
}

@test "json names the nearest addresses as a list" {
    run --separate-stderr s7ppi check --format json VX10 VW2097151 V10.9 nonsense
    [ "$status" -eq 2 ]
    [ "$output" = '{
  "format": "s7ppi.check/1",
  "items": [
    {"text":"VX10","valid":false,"error":"not an address of the controller","cause":"wrong_usage","nearest":["VB10","V10.0"]},
    {"text":"VW2097151","valid":false,"error":"not an address of the controller","cause":"wrong_usage","nearest":["VW2097150"]},
    {"text":"V10.9","valid":false,"error":"not an address of the controller","cause":"wrong_usage","nearest":["V10.7"]},
    {"text":"nonsense","valid":false,"error":"not an address of the controller","cause":"wrong_usage","nearest":[]}
  ]
}' ]
}

@test "7: without a plug-in nothing can be told" {
    run --separate-stderr s7ppi check --plugin /nonexistent.so VB0
    [ "$status" -eq 7 ]
    [ "$output" = "" ]
}
