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
  write        possible" ]
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
    {"text":"VX10","valid":false,"error":"not an address of the controller","nearest":["VB10","V10.0"]},
    {"text":"VW2097151","valid":false,"error":"not an address of the controller","nearest":["VW2097150"]},
    {"text":"V10.9","valid":false,"error":"not an address of the controller","nearest":["V10.7"]},
    {"text":"nonsense","valid":false,"error":"not an address of the controller","nearest":[]}
  ]
}' ]
}

@test "7: without a plug-in nothing can be told" {
    run --separate-stderr s7ppi check --plugin /nonexistent.so VB0
    [ "$status" -eq 7 ]
    [ "$output" = "" ]
}
