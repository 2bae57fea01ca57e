// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the command line says about port, line and driver. What it leaves out is the plug-in's to say.

#ifndef HOST_BASE_OPTIONS_H
#define HOST_BASE_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

namespace host {

// The port's name that stands for the embedded simulator.
constexpr char kSimulatorPort[] = "sim";

// The stations of a line. 0 is usually the master's own, which no controller has.
constexpr int kFirstStation = 0;
constexpr int kLastStation = 126;

// Words of the command line.
using Texts = std::vector<std::string>;

struct Options
{
    std::optional<std::string> port; // a device, or "sim" for the embedded simulator
    std::optional<std::string> plugin;

    std::optional<int> station;
    std::optional<int> timeout; // milliseconds
    std::optional<int> retries;
    std::optional<int> delay; // milliseconds

    std::optional<int> baud;
    std::optional<std::string> parity; // none, odd, even, mark or space
    std::optional<int> dataBits;
    std::optional<int> stopBits;

    bool rs485 = false;     // the kernel's driver switches the transceiver
    bool echo = false;      // the adapter hears what it sends
    bool reconnect = false; // wait for a lost port to come back

    std::optional<std::string> config;      // a file with more of these
    std::optional<std::string> format;      // text, json, ndjson, csv, tsv or raw; text unless given
    std::optional<std::string> usualFormat; // of environment or file, for commands that have it
    std::optional<std::string> output;      // a file instead of stdout

    std::optional<std::string> trace; // a file with every frame

    bool quiet = false;
    bool verbose = false;
};

} // namespace host

#endif
