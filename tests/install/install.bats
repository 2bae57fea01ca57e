#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What is installed, as a stranger uses it: the programs, the examples, drivers and hosts of one's own. The
# tree is moved after the installation, so that nothing can depend on where it was.
#
# CMAKE and CXX are the tools, S7PPI_BUILD_DIR is what to install, S7PPI_LIB the library directory in it.
# S7PPI_PREFIX, when it is set, is a tree that is installed already.

# bats sets the variables of run.
# shellcheck disable=SC2154

bats_require_minimum_version 1.5.0

setup_file() {
    if [ -z "${S7PPI_PREFIX:-}" ]; then
        "$CMAKE" --install "$S7PPI_BUILD_DIR" --prefix "$BATS_FILE_TMPDIR/before" >"$BATS_FILE_TMPDIR/log"
        export S7PPI_PREFIX=$BATS_FILE_TMPDIR/after
        mv "$BATS_FILE_TMPDIR/before" "$S7PPI_PREFIX"
    fi
}

setup() {
    unset S7PPI_PLUGIN
    PATH=$S7PPI_PREFIX/bin:$PATH
    export PKG_CONFIG_PATH=$S7PPI_PREFIX/$S7PPI_LIB/pkgconfig
    drivers=$S7PPI_PREFIX/$S7PPI_LIB/s7ppi
    headers=$S7PPI_PREFIX/include/s7ppi
    examples=$S7PPI_PREFIX/share/s7ppi/examples
    cd "$BATS_TEST_TMPDIR" || return
}

teardown() {
    if [ -n "${simulator:-}" ]; then
        kill "$simulator"
    fi
}

# start_simulator: in the background; its port is then in $port.
start_simulator() {
    local i
    : >port
    s7ppi-sim >>port 3>&- &
    simulator=$!
    for ((i = 0; i < 100; i++)); do
        port=$(head -n 1 port)
        [ -n "$port" ] && return
        sleep 0.05
    done
    return 1
}

# build_example NAME: against the installed package, once for all tests; ./build is then where it is.
build_example() {
    local tree=$BATS_FILE_TMPDIR/$1
    if [ ! -e "$tree" ]; then
        "$CMAKE" -G Ninja -S "$examples/$1" -B "$tree" -D CMAKE_PREFIX_PATH="$S7PPI_PREFIX" \
            -D CMAKE_CXX_COMPILER="$CXX" -D CMAKE_CXX_FLAGS="-Wall -Wextra -Werror"
        "$CMAKE" --build "$tree"
    fi
    ln -s "$tree" build
}

@test "the programs find the plug-in and each other" {
    run --separate-stderr s7ppi describe
    [ "$status" -eq 0 ]
    [[ "$output" == *"plug-in              $drivers/libs7_200_ppi.so"* ]]
    run --separate-stderr s7ppi --port sim read 'VB100*4'
    [ "$status" -eq 0 ]
    [ "$output" = "VB100 17 34 51 68" ]
}

@test "the public headers need nothing that is not installed" {
    [ -e "$headers/driver_interface.h" ]
    [ -e "$headers/tools/pack.h" ]
    [ ! -e "$headers/tools/array_size.h" ]
    [ ! -e "$headers/verification_text.h" ]
    for header in "$headers"/*.h "$headers"/tools/*.h; do
        printf '#include <%s>\n' "${header#"$headers/"}"
    done >all.cpp
    # shellcheck disable=SC2046
    "$CXX" -fsyntax-only -fPIC -Wall -Wextra -Werror all.cpp $(pkg-config --cflags s7ppi-toolkit)
}

@test "the example driver builds, passes its test, and is described" {
    build_example weighing_terminal
    run "${CMAKE%cmake}ctest" --test-dir build
    [ "$status" -eq 0 ]
    [[ "$output" == *"100% tests passed, 0 tests failed out of 1"* ]]

    run --separate-stderr s7ppi describe --plugin build/libweighing_terminal.so
    [ "$status" -eq 0 ]
    [ "${lines[0]}" = "name                 Weighing terminal" ]
    [[ "$output" == *"vendor               Example"* ]]
    [[ "$output" == *"serial line          19200 baud, no parity, 8 data bits, 1 stop bit"* ]]
    [[ "$output" == *"station              5"* ]]
}

@test "the example driver's test fails when the driver is another one" {
    build_example weighing_terminal
    [ -x build/test_weighing_terminal ]
    run build/test_weighing_terminal "$drivers/libs7_200_ppi.so"
    [ "$status" -ne 0 ]
}

@test "an installed driver finds the toolkit beside it" {
    build_example weighing_terminal
    DESTDIR=$BATS_TEST_TMPDIR/panel "$CMAKE" --install build
    installed=panel$drivers/libweighing_terminal.so
    run s7ppi --plugin "$installed" describe
    [ "$status" -eq 7 ]
    cp "$drivers/libs7_200_ppi.so" "${installed%/*}"
    run s7ppi --plugin "$installed" describe
    [ "$status" -eq 0 ]
}

@test "the example host reads the simulated controller, as often as it is asked" {
    local i
    build_example minimal_host
    start_simulator
    for ((i = 0; i < 3; i++)); do
        run --separate-stderr build/minimal_host "$drivers/libs7_200_ppi.so" "$port" 2 VB100 4
        [ "$status" -eq 0 ]
        [ "$output" = "11223344" ]
        [ "$stderr" = "" ]
    done
    run --separate-stderr build/minimal_host "$drivers/libs7_200_ppi.so" "$port" 2 VB20000 4
    [ "$status" -eq 1 ]
    [[ "${stderr_lines[-1]}" == "VB20000: Invalid address"* ]]
}

@test "a driver builds with pkg-config" {
    local qt tools
    qt=$(pkg-config --print-requires s7ppi-toolkit)
    tools=$(pkg-config --variable=host_bins "$qt")$(pkg-config --variable=libexecdir "$qt") # Qt 5's, or Qt 6's
    "$tools/moc" "-I$headers" "$examples/weighing_terminal/weighing_terminal.h" -o moc.cpp
    # shellcheck disable=SC2046
    "$CXX" -shared -fPIC -fvisibility=hidden "$examples/weighing_terminal/weighing_terminal.cpp" moc.cpp \
        $(pkg-config --cflags --libs s7ppi-toolkit) \
        -Wl,-rpath,"$(pkg-config --variable=driverdir s7ppi-toolkit)" -o libweighing_terminal.so
    run --separate-stderr s7ppi describe --plugin ./libweighing_terminal.so
    [ "$status" -eq 0 ]
    [ "${lines[0]}" = "name                 Weighing terminal" ]
}

@test "a host builds with pkg-config" {
    local qt
    qt=$(pkg-config --print-requires s7ppi-contract)
    # shellcheck disable=SC2046
    "$CXX" -fPIC "$examples/minimal_host/main.cpp" \
        $(pkg-config --cflags --libs s7ppi-contract "${qt%Core}SerialPort") -o host
    start_simulator
    run ./host "$drivers/libs7_200_ppi.so" "$port" 2 VB100 4
    [ "$output" = "11223344" ]
}

@test "the toolkit links with pkg-config" {
    cat >check.cpp <<'CPP'
#include <tools/checksum.h>
#include <cstdio>
int main()
{
    std::printf("%x\n", unsigned(CRC16Calculate(reinterpret_cast<const unsigned char *>("123456789"), 9)));
}
CPP
    # shellcheck disable=SC2046
    "$CXX" -fPIC check.cpp $(pkg-config --cflags --libs s7ppi-toolkit) \
        -Wl,-rpath,"$(pkg-config --variable=driverdir s7ppi-toolkit)" -o check
    run ./check
    [ "$output" = "bb3d" ] # the published check value of CRC-16/ARC
}

@test "find_package refuses another major version" {
    cat >CMakeLists.txt <<'CMAKE'
cmake_minimum_required(VERSION 3.18)
project(wanting LANGUAGES CXX)
find_package(s7ppi 2.0 REQUIRED)
CMAKE
    run "$CMAKE" -G Ninja -S . -B build -D CMAKE_PREFIX_PATH="$S7PPI_PREFIX" -D CMAKE_CXX_COMPILER="$CXX"
    [ "$status" -ne 0 ]
    [[ "$output" == *"version: 1."* ]]
}

# page_tells PAGE PROGRAM [COMMAND]: succeeds when the page has each option that the help text tells of.
page_tells() {
    local page=$1 option options text
    shift
    options=$("$@" --help | sed -nE 's/^  (-[a-z],)?(--[a-z0-9-]+).*/\2/p' | sed 's/-/\\-/g')
    [[ "$options" == *help* ]]
    text=$(zcat "$S7PPI_PREFIX/share/man/$page.gz")
    while read -r option; do
        [[ "$text" =~ "$option"[^a-z0-9] ]] || {
            echo "$page does not tell of $option"
            return 1
        }
    done <<<"$options"
}

@test "the manual pages tell of every option" {
    local command commands
    commands=$(s7ppi --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p')
    [[ "$commands" == *read* ]]
    page_tells man1/s7ppi.1 s7ppi
    for command in $commands; do
        page_tells "man1/s7ppi-$command.1" s7ppi "$command"
    done
    page_tells man1/s7ppi-sim.1 s7ppi-sim
    zcat "$S7PPI_PREFIX/share/man/man5/s7ppi-trace.5.gz" | grep -q '^2026-.* < e5$'
}
