// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the command line says about port, line, driver and output, whatever the command. What it leaves out is
// the plug-in's to say. A function takes the part that concerns it.

#ifndef HOST_BASE_OPTIONS_H
#define HOST_BASE_OPTIONS_H

#include <QString>

#include <optional>

namespace host {

// The port's name that stands for the embedded simulator.
constexpr char kSimulatorPort[] = "sim";

// The stations of a line. 0 is usually the master's own, which no controller has.
constexpr int kFirstStation = 0;
constexpr int kLastStation = 126;

struct PortOptions
{
    std::optional<QString> port; // a device, or kSimulatorPort
    bool isUsualPort = false;    // of environment or file, so that the command line does not show it
    bool rs485 = false;          // the kernel's driver switches the transceiver
    bool echo = false;           // the adapter hears what it sends
    bool reconnect = false;      // wait for a lost port to come back

    // Whether the controller is the simulated one. It never is unless it was named.
    bool isSimulated() const { return port == QString(kSimulatorPort); }
};

struct LineOptions
{
    std::optional<int> baud;
    std::optional<QString> parity; // none, odd, even, mark or space
    std::optional<int> dataBits;
    std::optional<int> stopBits;
};

struct DriverOptions
{
    std::optional<QString> plugin; // the file of its library
    std::optional<int> station;
    std::optional<int> timeout; // milliseconds
    std::optional<int> retries;
    std::optional<int> delay; // milliseconds
};

struct OutputOptions
{
    std::optional<QString> format;      // text, json, ndjson, csv, tsv or raw; text unless given
    std::optional<QString> usualFormat; // of environment or file, for commands that have it
    std::optional<QString> output;      // a file instead of stdout
    std::optional<QString> trace;       // a file with every frame
    bool quiet = false;
    bool verbose = false;
};

struct Options : PortOptions, LineOptions, DriverOptions, OutputOptions
{
    std::optional<QString> config; // a file with more of these
};

} // namespace host

#endif
