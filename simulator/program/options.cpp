// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/program/options.h"

#include "simulator/controller/live_value.h"
#include "simulator/faults/fault.h"
#include "simulator/program/complaint.h"
#include "simulator/protocol/hex_text.h"
#include "simulator/text/number_text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <set>
#include <stdexcept>

namespace sim {

namespace {

const char *const kOutline =
    R"(Prints the port's name as the first line on stdout and is ready from then on. Ctrl-C,
SIGTERM and SIGHUP end it: the link goes, the memory is saved.

Faults: KIND with every request, KIND@N with the N-th one only (counted from 1, over all
stations), KIND%P with a probability of P percent. Several --fault options act together. A
number behind = may be left out; what then holds stands in parentheses. Faults with chance
in them tell their --seed on stderr at the start.
)";

const char *const kFooter = R"(
Live values: PLACE=KIND:ARGUMENTS, PLACE as V10.3 VB10 VW10 VD10 VD10:f32 AIW0 T37 C5 HC0
  ramp:0..1000/10s    from 0 to 1000 in 10 s, then again
  sine:500+-400/30s   around 500, one wave in 30 s
  clock               seconds since 1970, a double word
  counter:1/s         one more every second
  blink:1s            a bit: on for 0.5 s, off for 0.5 s
  demo                instead of all this: a dozen values, VW200 VW202 VD204:f32 and others

Memory without a file:
  VB100..VB103        11 22 33 44
  SMB0                01
  T37                 value 300, preset 100, status bit on
  C5                  value 5, preset 10, status bit off
  HC0                 100000
  all else            0

Memory file; what it leaves out is 0:
  { "V": { "100": "11223344" }, "HC": { "0": 100000 },
    "T": { "37": { "value": 300, "preset": 100, "status": true } },
    "live": { "VW200": "ramp:0..1000/10s" } }

A write to a timer or counter sets its current value and nothing else.

Exit codes: 0 ended by a signal, 2 bad usage or memory file, 3 the port could not be
opened, 6 the port was lost, 70 internal failure, 74 a file could not be written.)";

constexpr size_t kKindWidth = 29; // of the first column in the table of faults

// What the parser fills in, as it was typed.
struct CommandLine
{
    Options options;
    std::vector<std::string> stations;
    std::string memoryFile;
    std::string saveFile;
    bool save = false;
};

[[noreturn]] void refuse(const std::string &text)
{
    throw CLI::ValidationError(text);
}

// Returns the message of what the function throws; empty when it throws nothing, as the parser wants it of a
// check.
template <typename Function> std::string complaintOf(Function function)
{
    try {
        function();
    } catch (const std::invalid_argument &error) {
        return error.what();
    }
    return "";
}

std::string checkFault(const std::string &text)
{
    return complaintOf([&text] { parseFault(text); });
}

std::string checkLive(const std::string &text)
{
    return complaintOf([&text] { parseLiveValues(text); });
}

StationOption parseStation(const std::string &text)
{
    const size_t colon = std::min(text.find(':'), text.size());
    const auto address = parseNumber<uint8_t>(text.substr(0, colon));
    if (!address || *address < 1 || *address > 126)
        throw std::invalid_argument('"' + text +
                                    "\" is not a station number from 1 to 126, with :FILE or without");
    if (colon + 1 == text.size())
        throw std::invalid_argument('"' + text + "\" names no file behind the colon");
    StationOption station;
    station.address = *address;
    if (colon < text.size())
        station.memoryFile = text.substr(colon + 1);
    return station;
}

std::string checkStation(const std::string &text)
{
    return complaintOf([&text] { parseStation(text); });
}

std::string standardText(const FaultArgument &argument)
{
    const unsigned number = *argument.standard;
    return argument.base == 16 ? hexText(static_cast<uint8_t>(number)) : std::to_string(number);
}

// Returns a table with a line for each kind.
std::string faultHelp()
{
    std::string text;
    for (const FaultName &fault : faultNames()) {
        std::string kind = fault.name;
        if (fault.argument)
            kind += std::string("[=") + fault.argument->name + "]";
        kind.resize(kKindWidth, ' ');
        text += "  " + kind + fault.meaning;
        if (fault.argument && fault.argument->standard)
            text += " (" + standardText(*fault.argument) + ")";
        text += '\n';
    }
    return text;
}

// Returns the check without the limits that it would show in the help, where the option's own text tells
// them.
CLI::Validator unspoken(CLI::Validator check)
{
    return check.description("");
}

void declareStations(CLI::App &app, CommandLine &line)
{
    app.add_option("--station", line.stations,
                   "Station number, 1 to 126, with the memory that it begins with; repeatable (2)")
        ->type_name("N[:FILE.json]")
        ->allow_extra_args(false)
        ->check(checkStation, "");
    app.add_option("--memory", line.memoryFile, "Memory to begin with, for stations without their own")
        ->type_name("FILE.json");
    app.add_option("--save", line.saveFile,
                   "Save the memory at the end; without a name to the files that it came from")
        ->type_name("[FILE.json]")
        ->expected(0, 1);
    app.add_option("--live", line.options.live, "A value that changes by itself (repeatable); see below")
        ->type_name("PLACE=KIND:ARGS|demo")
        ->allow_extra_args(false)
        ->check(checkLive, "");
}

void declareLine(CLI::App &app, Options &options)
{
    auto *port = app.add_option("--port", options.port, "Serial port to use (a new pseudo-terminal)");
    port->type_name("DEVICE");
    app.add_option("--link", options.link, "Symbolic link to make to the pseudo-terminal")
        ->type_name("PATH")
        ->excludes(port);
    app.add_option("--baud", options.baudRate, "Baud rate of the serial port, 50 to 4000000")
        ->type_name("RATE")
        ->check(unspoken(CLI::Range(50, 4000000)), "")
        ->capture_default_str()
        ->needs(port);
    app.add_option("--parity", options.parity, "Parity of the serial port: even, odd or none")
        ->type_name("PARITY")
        ->check(unspoken(CLI::IsMember({"even", "odd", "none"})), "")
        ->capture_default_str()
        ->needs(port);
}

void declareTime(CLI::App &app, Options &options)
{
    app.add_option("--pace", options.pace,
                   "Let bytes take the time that they take on a line, 11 bits each, at 9600 or BAUD")
        ->type_name("[BAUD]")
        ->expected(0, 1)
        ->default_str("9600")
        ->check(unspoken(CLI::Range(50, 4000000)), "");
    app.add_option("--turnaround", options.turnaround,
                   "Time between a request and the reply to it, 0 to 600000")
        ->type_name("MS")
        ->check(unspoken(CLI::Range(0, 600000)), "");
}

void declareFaults(CLI::App &app, Options &options)
{
    app.add_option("--fault", options.faults, "Misbehave (repeatable); see below")
        ->type_name("KIND[=NUMBER][@N|%P]")
        ->allow_extra_args(false)
        ->check(checkFault, "");
    app.add_option("--seed", options.seed, "Repeat the random choices of an earlier run")
        ->type_name("NUMBER");
}

void declareOptions(CLI::App &app, CommandLine &line)
{
    app.set_help_flag("-h,--help", "Show this and end");
    app.set_version_flag("--version", "s7ppi-sim " S7PPI_VERSION, "Show the version and end");
    app.footer(kOutline + faultHelp() + kFooter);
    app.failure_message([](const CLI::App *, const CLI::Error &error) {
        return complaint(error.what(), "s7ppi-sim --help explains all options");
    });
    declareStations(app, line);
    declareLine(app, line.options);
    declareTime(app, line.options);
    declareFaults(app, line.options);
    app.add_option("--trace", line.options.trace, "Write every frame with its time to a file")
        ->type_name("FILE");
    app.add_flag("-v,--verbose", line.options.verbose, "Show the frames on stderr");
}

// Of two stations with one address only the later one would be there; of two memories in one file, too.
void checkTwins(const std::vector<StationOption> &stations)
{
    std::set<uint8_t> addresses;
    std::set<std::string> saveFiles;
    for (const StationOption &station : stations) {
        if (!addresses.insert(station.address).second)
            refuse("--station: " + std::to_string(station.address) + " is given twice");
        if (!station.saveFile.empty() && !saveFiles.insert(station.saveFile).second)
            refuse("--save: several stations would be saved to " + station.saveFile);
    }
}

std::vector<StationOption> stationsOf(const CommandLine &line)
{
    std::vector<StationOption> stations;
    for (const std::string &text : line.stations)
        stations.push_back(parseStation(text));
    if (stations.empty())
        stations.emplace_back();
    for (StationOption &station : stations) {
        if (station.memoryFile.empty())
            station.memoryFile = line.memoryFile;
        if (line.save)
            station.saveFile = line.saveFile.empty() ? station.memoryFile : line.saveFile;
        if (line.save && station.saveFile.empty())
            refuse("--save: station " + std::to_string(station.address) +
                   " came from no file; name one behind --save");
    }
    checkTwins(stations);
    return stations;
}

} // namespace

std::optional<Options> parseOptions(int argc, char *argv[], common::ExitCode &exitCode)
{
    CLI::App app("A simulated S7-200 controller: a PPI station with memory.", "s7ppi-sim");
    CommandLine line;
    declareOptions(app, line);
    try {
        app.parse(argc, argv);
        line.save = app.count("--save") > 0;
        line.options.stations = stationsOf(line);
    } catch (const CLI::ParseError &error) {
        const bool isAnswer = app.exit(error) == 0; // to --help or --version
        exitCode = isAnswer ? common::ExitCode::Success : common::ExitCode::Usage;
        if (isAnswer && !std::cout.flush()) {
            complain("stdout takes no more data", "make room, or send the output elsewhere");
            exitCode = common::ExitCode::OutputLost;
        }
        return std::nullopt;
    }
    return line.options;
}

} // namespace sim
