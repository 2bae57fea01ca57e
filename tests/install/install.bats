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

load ../support/jobs

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
    end_test
}

# start_simulator: in the background; its port is then in $port.
start_simulator() {
    local i
    : >port
    s7ppi-sim >>port 3>&- &
    for ((i = 0; i < 100; i++)); do
        port=$(head -n 1 port)
        [ -n "$port" ] && return
        sleep 0.05
    done
    return 1
}

# build_sources DIRECTORY: against the installed package, once for all tests; ./build is then where it is.
build_sources() {
    local tree=$BATS_FILE_TMPDIR/build-${1##*/}
    if [ ! -e "$tree" ]; then
        "$CMAKE" -G Ninja -S "$1" -B "$tree" -D CMAKE_PREFIX_PATH="$S7PPI_PREFIX" \
            -D CMAKE_CXX_COMPILER="$CXX" -D CMAKE_CXX_FLAGS="-Wall -Wextra -Werror"
        "$CMAKE" --build "$tree"
    fi
    ln -s "$tree" build
}

build_example() {
    build_sources "$examples/$1"
}

# build_driver: one that was made of the example driver.
build_driver() {
    local driver=$BATS_FILE_TMPDIR/my_2nd_scale
    [ -e "$driver" ] || (cd "${driver%/*}" && sh "$examples/new-driver" "${driver##*/}")
    build_sources "$driver"
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
    for header in "$headers"/*.h "$headers"/tools/*.h "$headers"/testing/*.h; do
        printf '#include <%s>\n' "${header#"$headers/"}"
    done >all.cpp
    # shellcheck disable=SC2046
    "$CXX" -fsyntax-only -fPIC -Wall -Wextra -Werror all.cpp $(pkg-config --cflags s7ppi-toolkit)
    (cd "$headers" && find simulator -name '*.h') | sed 's|.*|#include <&>|' >simulator.cpp
    grep -q simulator/simulator.h simulator.cpp
    # shellcheck disable=SC2046
    "$CXX" -std=c++17 -fsyntax-only -fPIC -Wall -Wextra -Werror simulator.cpp $(pkg-config --cflags s7ppi-simulator)
}

@test "a driver of one's own begins with one command: it builds, passes its test, and is described" {
    build_driver
    run grep -ril 'weighing.\{0,1\}terminal' "$BATS_FILE_TMPDIR/my_2nd_scale"
    [ "$output" = "$BATS_FILE_TMPDIR/my_2nd_scale/README.md" ] # which tells of the invented terminal
    run "${CMAKE%cmake}ctest" --test-dir build
    [ "$status" -eq 0 ]
    [[ "$output" == *"100% tests passed, 0 tests failed out of 1"* ]]

    run --separate-stderr s7ppi describe --plugin build/libmy_2nd_scale.so
    [ "$status" -eq 0 ]
    [ "${lines[0]}" = "name                 My 2nd scale" ]
    [[ "$output" == *"vendor               Example"* ]]
    [[ "$output" == *"serial line          19200 baud, no parity, 8 data bits, 1 stop bit"* ]]
    [[ "$output" == *"station              5"* ]]
}

@test "a new driver has a name that files and classes can have, and takes nobody's place" {
    local name
    for name in '' MyScale 2nd my-scale my__scale scale_ ../scale; do
        run sh "$examples/new-driver" "$name"
        [ "$status" -eq 2 ]
        [[ "$output" == "new-driver: "* ]]
    done
    mkdir scale
    run sh "$examples/new-driver" scale
    [ "$status" -eq 2 ]
    [ "$output" = "new-driver: scale is there already" ]
    [ -z "$(ls scale)" ]
}

@test "a test with simulated controllers builds, with CMake and with pkg-config" {
    build_example simulator_test
    "${CMAKE%cmake}ctest" --test-dir build
    # shellcheck disable=SC2046
    "$CXX" -std=c++17 -fPIC "$examples/simulator_test/simulator_test.cpp" \
        $(pkg-config --cflags --libs s7ppi-simulator) -o simulator_test
    run ./simulator_test
    [ "$output" = passed ]
}

@test "a test with a scripted port builds with pkg-config, and the driver's pauses take no time in it" {
    cat >check.cpp <<'CPP'
#include <testing/fake_sleep.h>
#include <testing/scripted_port.h>
#include <tools/receive.h>
#include <tools/timing.h>
#include <cstdio>
int main()
{
    ScriptedPort port(5);
    port.expects("05").answers("4f 4b 0d 0a");
    const unsigned char enquiry = 5;
    port.send(&enquiry, 1);
    HRSleep(4000);
    std::printf("%s, %d ms, %s\n", receiveLine(&port, 80).bytes.constData(),
                int(FakeSleep::pauses().first() / 1000000), port.scriptIsFinished() ? "as scripted" : "otherwise");
    std::printf("%s\n", port.events().join("; ").toLatin1().constData());
}
CPP
    # shellcheck disable=SC2046
    "$CXX" -std=c++17 -fPIC check.cpp $(pkg-config --cflags --libs s7ppi-testing s7ppi-toolkit) \
        -Wl,-rpath,"$(pkg-config --variable=driverdir s7ppi-toolkit)" -o check
    run ./check
    [ "${lines[0]}" = "OK, 4000 ms, as scripted" ]
    [ "${lines[1]}" = "send 05; pause 4000 ms; receive(1) -> 1; receive(1) -> 1; receive(1) -> 1; receive(1) -> 1" ]
}

@test "the example driver's test fails when the driver is another one" {
    build_driver
    [ -x build/test_my_2nd_scale ]
    run build/test_my_2nd_scale "$drivers/libs7_200_ppi.so"
    [ "$status" -ne 0 ]
}

@test "an installed driver finds the toolkit beside it" {
    build_driver
    DESTDIR=$BATS_TEST_TMPDIR/panel "$CMAKE" --install build
    installed=panel$drivers/libmy_2nd_scale.so
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
    [ "$(zcat "$S7PPI_PREFIX/share/man/man1/s7ppi-read.1.gz" | grep -A 1 '^s7ppi read ' | grep -cx '\.br')" -eq 3 ]
    zcat "$S7PPI_PREFIX/share/man/man5/s7ppi-trace.5.gz" | grep -q '^2026-.* < e5$'
}

@test "the shells find what completes command lines" {
    s7ppi completion bash | cmp - "$S7PPI_PREFIX/share/bash-completion/completions/s7ppi"
    s7ppi completion fish | cmp - "$S7PPI_PREFIX/share/fish/vendor_completions.d/s7ppi.fish"
    s7ppi completion zsh | cmp - "$S7PPI_PREFIX"/share/zsh/*/_s7ppi
}

# unit: systemd's template, with the program where it is installed here.
unit() {
    unit=$BATS_TEST_TMPDIR/s7ppi-publish@press.service
    sed "s|^ExecStart=[^ ]*|ExecStart=$S7PPI_PREFIX/bin/s7ppi|" \
        "$S7PPI_PREFIX/lib/systemd/system/s7ppi-publish@.service" >"$unit"
}

@test "systemd takes the unit of the service, which is confined" {
    unit
    run systemd-analyze verify --man=no "$unit"
    echo "$output"
    [ "$status" -eq 0 ]
    [ "$output" = "" ]
    systemd-analyze security --offline=true --threshold=20 "$unit"
}

@test "the service begins with its example settings" {
    local examples=$S7PPI_PREFIX/share/doc/s7ppi-publish/examples command
    unit
    cd "$examples"
    set -a
    # shellcheck disable=SC1091
    . ./press.conf
    set +a
    command=$(sed -n 's/^ExecStart=//p' "$unit")
    [ "${command##* }" = "\$PUBLISH" ]
    # shellcheck disable=SC2086
    STATE_DIRECTORY=$BATS_TEST_TMPDIR S7PPI_PORT=sim run ${command% *} ${PUBLISH//\/etc\/s7ppi/.} --count 1
    [ "$status" -eq 0 ]
    [ "${output##* messages left in }" = "$BATS_TEST_TMPDIR/plant_press.spool for the next start" ]
}
