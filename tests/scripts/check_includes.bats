#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# scripts/check-includes accepts the tree as it is, and refuses a copy of it with one wrong line.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

bats_require_minimum_version 1.5.0

setup() {
    cd "$BATS_TEST_DIRNAME/../.." || return 1
    tree=$BATS_TEST_TMPDIR/tree
    mkdir -p "$tree/scripts"
    cp scripts/check-includes "$tree/scripts"
    cp -r common host runtime simulator tests "$tree"
    cd "$tree" || return 1
}

# plant FILE LINE: the line at the file's end.
plant() {
    printf '%s\n' "$2" >>"$1"
}

# refused TEXT...: by the check, which says all that.
refused() {
    local text
    run -1 scripts/check-includes
    for text in "$@"; do
        [[ "$output" == *"$text"* ]] || return 1
    done
}

# refuses FILE LINE REASON: the check names the planted line and says why.
refuses() {
    plant "$1" "$2"
    refused "$1:$(wc -l <"$1"):$2" "$3" "check-includes: 1 kinds of include are wrong"
}

@test "the tree passes" {
    run -0 scripts/check-includes
    [ -z "$output" ]
}

@test "a room does not include one above it" {
    refuses host/items/item.cpp '#include "host/driver/plugin.h"' "host/items may include: items text base"
}

@test "the library includes nothing of the programs around it" {
    local program
    for program in host/base/options simulator/simulator common/duration tests/support/hex; do
        cp "$BATS_TEST_DIRNAME/../../runtime/drivers/tools/pack.cpp" runtime/drivers/tools/pack.cpp
        refuses runtime/drivers/tools/pack.cpp "#include \"$program.h\"" "the library stands by itself"
    done
}

@test "a room does not include one beside it" {
    refuses host/dump/dump_file.h '#include "host/frames/wire.h"' "host/dump may include: dump items text base"
}

@test "the lowest room includes no other" {
    refuses host/base/colour.cpp '#include "host/text/csv.h"' "host/base may include: base"
}

@test "the main file knows commands, parser and base only" {
    refuses host/main.cpp '#include "host/items/tag.h"' "host/main.cpp may include: main.cpp commands cli base"
}

@test "a room of the simulator does not include one above it" {
    refuses simulator/protocol/layer2.cpp '#include "simulator/controller/memory.h"' \
        "simulator/protocol may include: protocol"
}

@test "no room of the simulator goes through the door" {
    plant simulator/faults/fault_plan.h '#include "simulator/simulator.h"'
    refused "simulator/faults/fault_plan.h:" "simulator/faults may include: faults protocol text"
}

@test "a file outside the rooms is refused" {
    touch host/stray.cpp host/new_room.h
    mkdir host/cellar host/items/inner
    touch host/cellar/wine.h host/items/inner/part.h
    refused host/stray.cpp host/new_room.h host/cellar/wine.h host/items/inner/part.h \
        "every file of host lies in a room that scripts/check-includes has a row for"
}

@test "the contract is met in two rooms" {
    refuses host/commands/read.cpp '#include "driver_interface.h"' "the contract is met in host/driver and host/port"
}

@test "the parser stays in its room" {
    refuses host/commands/read.cpp '#include <CLI/CLI.hpp>' "the parser stays in host/cli"
}

@test "JSON comes by way of one header" {
    refuses host/text/csv.cpp '#include <nlohmann/json.hpp>' "JSON comes by way of host/text/json.h"
}

@test "the screen is drawn in one file" {
    refuses host/watch/plot.cpp '#include <curses.h>' "the screen is drawn in host/watch/terminal_screen"
}

@test "a file of the host is named from the project's root" {
    refuses host/items/item.cpp '#include "address.h"' "files are named from the project's root, as host/items/tag.h"
}

@test "the layers below the host keep their order, too" {
    plant runtime/drivers/communicator_command.h '#include "tools/pack.h"'
    plant runtime/drivers/tools/pack.cpp '#include "simatic_s7_200_ppi/s7_200_ppi.h"'
    plant runtime/drivers/simatic_s7_200_ppi/ppi_layer2.cpp '#include "s7_200_ppi.h"'
    plant simulator/layer2.cpp '#include "communicator_command.h"'
    plant host/driver/plugin.cpp '#include "simulator/simulator.h"'
    refused "the contract stands by itself" "the toolkit serves every driver and knows none" \
        "ppi_layer2 lies below it" "the simulator is a second reading of the protocol and shares no code" \
        "the host meets the driver only through the contract and the loaded plug-in"
}

@test "what both programs share knows neither" {
    plant common/exit_code.h '#include "host/base/failure.h"'
    plant common/nearest_word.cpp '#include "simulator/text/user_error.h"'
    plant common/standard_streams.cpp '#include "device_setting.h"'
    refused common/exit_code.h: common/nearest_word.cpp: common/standard_streams.cpp: \
        "common serves both programs and knows neither, nor the driver"
}

@test "headers that include each other are a ring" {
    plant host/base/colour.h '#include "host/base/interruption.h"'
    plant host/base/interruption.h '#include "host/base/files_in_use.h"'
    plant host/base/files_in_use.h '#include "host/base/colour.h"'
    refused "host/base/colour
" "host/base/interruption
" "host/base/files_in_use
" "these include each other in a ring"
}

@test "sources that include each other's headers are a ring, too" {
    plant host/items/address.cpp '#include "host/items/memory_range.h"'
    refused "host/items/address
" "these include each other in a ring"
}

@test "a ring of the simulator or of the tests is found" {
    plant simulator/memory.h '#include "simulator/station.h"'
    plant simulator/station.h '#include "simulator/memory.h"'
    plant tests/support/hex.h '#include "scripted_port.h"'
    plant tests/support/scripted_port.h '#include "hex.h"'
    refused simulator/memory simulator/station tests/support/hex tests/support/scripted_port
}

@test "a file includes what it names of the standard library and of Qt" {
    plant host/base/colour.cpp 'static std::optional<int> planted;'
    plant host/base/colour.h 'inline QDateTime planted(); // by way of others'
    plant tests/host/text/test_nearest_word.cpp 'static std::map<int, int> planted;'
    refused "host/base/colour.cpp: std::optional without #include <optional>" \
        "host/base/colour.h: QDateTime without #include <QDateTime>" \
        "tests/host/text/test_nearest_word.cpp: std::map without #include <map>"
}

@test "a source may leave it to its own header; comments and texts name nothing" {
    plant host/base/colour.h '#include <optional>'
    plant host/base/colour.cpp 'static std::optional<int> planted;'
    plant host/base/colour.cpp '// std::map'
    plant host/base/colour.cpp 'static const char text[] = "std::map";'
    run -0 scripts/check-includes
}
