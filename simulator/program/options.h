// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The command line of s7ppi-sim.

#ifndef SIMULATOR_PROGRAM_OPTIONS_H
#define SIMULATOR_PROGRAM_OPTIONS_H

#include "common/exit_code.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim {

struct StationOption
{
    uint8_t address = 2;
    std::string memoryFile; // empty for the example memory
    std::string saveFile;   // empty when the memory is not saved
};

struct Options
{
    std::vector<StationOption> stations; // at least one, with different addresses
    std::string port;                    // empty for a new pseudo-terminal
    std::string link;
    int baudRate = 9600;
    std::string parity = "even";
    std::vector<std::string> faults; // parseFault() takes each of them
    std::vector<std::string> live;   // parseLiveValues() takes each of them
    std::optional<uint32_t> seed;
    unsigned pace = 0; // in baud; 0 when bytes take no time
    std::chrono::milliseconds turnaround{0};
    std::string trace;
    std::string replay; // a recording that is played; empty for simulated controllers
    double speed = 1;   // of the replay; 0 answers at once
    bool verbose = false;
};

// Gives nothing when the program has nothing more to do than to end with that exit code: the user was shown
// the help, or what is wrong.
std::optional<Options> parseOptions(int argc, char *argv[], common::ExitCode &exitCode);

} // namespace sim

#endif
