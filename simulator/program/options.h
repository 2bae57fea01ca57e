// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The command line of s7ppi-sim.

#ifndef SIMULATOR_PROGRAM_OPTIONS_H
#define SIMULATOR_PROGRAM_OPTIONS_H

#include "common/exit_code.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim {

struct StationOption
{
    uint8_t address = 2;
    std::string memoryFile; // empty: the example memory
    std::string saveFile;   // empty: not saved
};

struct Options
{
    std::vector<StationOption> stations; // at least one, every address once
    std::string port;                    // empty: a new pseudo-terminal
    std::string link;
    int baudRate = 9600;
    std::string parity = "even";
    std::vector<std::string> faults; // all good
    std::vector<std::string> live;   // all good
    std::optional<uint32_t> seed;
    unsigned pace = 0; // baud; 0: bytes take no time
    int turnaround = 0;
    std::string trace;
    bool verbose = false;
};

// Nothing when the program has nothing more to do than to end with that exit code: help was shown, or what is
// wrong.
std::optional<Options> parseOptions(int argc, char *argv[], common::ExitCode &exitCode);

} // namespace sim

#endif
