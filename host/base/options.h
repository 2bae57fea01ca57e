// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the command line says about port, line, driver and output, whatever the command. What it leaves out is
// the plug-in's to say. A function takes the part that concerns it.

#ifndef HOST_BASE_OPTIONS_H
#define HOST_BASE_OPTIONS_H

#include <QString>

#include <chrono>
#include <optional>
#include <vector>

namespace host {

// The port's name that stands for the embedded simulator.
constexpr char kSimulatorPort[] = "sim";

// What the name of a serial server's port begins with: "tcp:gateway:4001".
constexpr char kTcpPrefix[] = "tcp:";

// The stations of a line. 0 is usually the master's own, which no controller has.
constexpr int kFirstStation = 0;
constexpr int kLastStation = 126;

// How the kernel's driver switches an RS-485 transceiver: how long it waits between switching and sending.
struct Rs485
{
    int before = 0; // milliseconds
    int after = 0;
};

struct PortOptions
{
    std::optional<QString> port; // a device, a serial server's port, or kSimulatorPort
    bool isUsualPort = false;    // of environment or file, so that the command line does not show it
    std::optional<Rs485> rs485;  // the kernel's driver switches the transceiver
    bool lowLatency = false;     // the adapter hands over at once what it receives
    bool echo = false;           // the adapter hears what it sends
    bool reconnect = false;      // wait for a lost port to come back
    std::optional<std::chrono::milliseconds> waitLock; // for another program that has the port, at most

    // Whether the controller is the simulated one. It never is unless it was named.
    bool isSimulated() const { return port == QString(kSimulatorPort); }

    // Whether the line is behind a serial server in the network.
    bool isNetwork() const { return port && port->startsWith(kTcpPrefix); }
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
    std::optional<std::chrono::milliseconds> timeout;
    std::optional<std::chrono::milliseconds> gap; // within an answer, at most
    std::optional<int> retries;
    std::optional<std::chrono::milliseconds> delay;
    bool rawAddress = false; // items name addresses as the driver takes them, whatever it drives
};

struct OutputOptions
{
    bool json = false;                  // the same as the format json
    std::optional<QString> format;      // text, json, ndjson, csv, tsv or raw; text unless given
    std::optional<QString> usualFormat; // of environment or file, for commands that have it
    std::optional<QString> output;      // a file instead of stdout
    std::optional<QString> trace;       // a file with every frame
    bool quiet = false;
    bool verbose = false;
};

// Where an option's value comes from; what nobody sets the plug-in or this program decides.
enum class SettingOrigin { Nobody, CommandLine, Environment, Profile, File };

// An option that environment and file can set, as it is set in the end.
struct UsedSetting
{
    QString option; // "baud"
    QString value;
    SettingOrigin origin = SettingOrigin::Nobody;
    QString place; // of environment and file: "S7PPI_BAUD" or "/home/me/.config/s7ppi/config:3"
};

struct Options : PortOptions, LineOptions, DriverOptions, OutputOptions
{
    std::optional<QString> config;     // a file with more of these
    std::optional<QString> profile;    // the section of that file that is heard, too
    std::vector<UsedSetting> settings; // all that there are, in the order of the help
};

} // namespace host

#endif
