// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/program/options.h"

#include "common/duration.h"
#include "common/help_layout.h"
#include "common/usage_check.h"
#include "simulator/controller/live_value.h"
#include "simulator/faults/fault.h"
#include "simulator/program/complaint.h"
#include "simulator/protocol/hex_text.h"
#include "simulator/text/number_text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdlib>
#include <chrono>
#include <cstddef>
#include <functional>
#include <iostream>
#include <limits>
#include <set>
#include <stdexcept>

namespace sim {

namespace {

const char *const kOutline =
    R"(Prints the port's name as the first line on stdout and is ready from then on. Ctrl-C,
SIGTERM and SIGHUP end it: the link goes, the memory is saved.

Faults: KIND with every request, KIND@N with the N-th one only (counted from 1, over all
stations), KIND%P with a probability of P percent. Several --fault options act together. What
stands behind = may be left out. Faults with chance in them tell their --seed on stderr at the
start.
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

A write to a timer or counter sets its current value and nothing else. Times are numbers with
a unit, as 500ms, 1s or 2min, or without one.)";

const char *const kExitCodes =
    R"(Exit codes: 0 ended by a signal, 2 bad usage, memory file or recording, 3 the port could not
be opened, 6 the port was lost, 8 something else was asked than was recorded, 70 internal
failure, 74 a file could not be written.)";

constexpr size_t kHelpColumn = 31;
constexpr std::chrono::milliseconds kLongestTurnaround = std::chrono::minutes(10);

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

std::optional<std::chrono::milliseconds> turnaroundOf(const std::string &text)
{
    const auto time = common::parseDuration(text, std::chrono::milliseconds(1));
    return time && *time <= kLongestTurnaround ? time : std::nullopt;
}

std::string checkTurnaround(const std::string &text)
{
    return turnaroundOf(text) ? std::string()
                              : text + " is not a time from 0s to 10min, as " + common::kDurationExamples;
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
    if (argument.isTime)
        return common::durationText(common::Milliseconds(number));
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
            text += " (default " + standardText(*fault.argument) + ")";
        text += '\n';
    }
    return text;
}

// These return a check for a number or a word, which tells what is wrong.
std::function<std::string(const std::string &)> wholeNumber(unsigned least, unsigned most)
{
    return [least, most](const std::string &text) {
        const auto number = parseNumber<unsigned>(text);
        return number && *number >= least && *number <= most
                   ? std::string()
                   : text + " is not a whole number from " + std::to_string(least) + " to " +
                         std::to_string(most);
    };
}

std::function<std::string(const std::string &)> oneOf(const std::vector<std::string> &words)
{
    return [words](const std::string &text) {
        const bool isKnown = std::find(words.begin(), words.end(), text) != words.end();
        return isKnown ? std::string() : text + " is not one of " + CLI::detail::join(words, ", ");
    };
}

void declareStations(CLI::App &app, CommandLine &line)
{
    app.add_option("-s,--station", line.stations,
                   "Station with the memory that it begins with, repeatable (1 to 126; default 2)")
        ->type_name("N[:FILE.json]")
        ->allow_extra_args(false)
        ->check(checkStation, "");
    app.add_option("--memory", line.memoryFile,
                   "Memory to begin with, for stations without their own (default the example memory)")
        ->type_name("FILE.json");
    app.add_option("--save", line.saveFile,
                   "Save the memory at the end (default the files that it came from)")
        ->type_name("[FILE.json]")
        ->expected(0, 1);
    app.add_option("--live", line.options.live, "A value that changes by itself, repeatable")
        ->type_name("PLACE=KIND:ARGS|demo")
        ->allow_extra_args(false)
        ->check(checkLive, "");
}

void declareLine(CLI::App &app, Options &options)
{
    auto *port =
        app.add_option("-p,--port", options.port, "Serial port to use (default a new pseudo-terminal)");
    port->type_name("DEV");
    app.add_option("--link", options.link, "Symbolic link to make to the pseudo-terminal")
        ->type_name("PATH")
        ->excludes(port);
    app.add_option("-b,--baud", options.baudRate, "Baud rate of --port (50 to 4000000; default 9600)")
        ->type_name("N")
        ->check(wholeNumber(50, 4000000), "")
        ->needs(port);
    app.add_option("--parity", options.parity, "Parity of --port (even, odd, none; default even)")
        ->type_name("PARITY")
        ->check(oneOf({"even", "odd", "none"}), "")
        ->needs(port);
}

void declareTime(CLI::App &app, Options &options)
{
    app.add_option("--pace", options.pace,
                   "Let bytes take the time that 11 bits take at this rate (50 to 4000000; default 9600)")
        ->type_name("[BAUD]")
        ->expected(0, 1)
        ->default_str("9600")
        ->check(wholeNumber(50, 4000000), "");
    const auto take = [&options](const std::string &text) { options.turnaround = *turnaroundOf(text); };
    app.add_option_function<std::string>("--turnaround", take,
                                         "Time between a request and the reply to it (0s to 10min, plain "
                                         "numbers in ms; default 0s)")
        ->type_name("TIME")
        ->check(checkTurnaround, "");
}

void declareFaults(CLI::App &app, Options &options)
{
    app.add_option("--fault", options.faults, "A way to misbehave, repeatable")
        ->type_name("KIND[=NUMBER][@N|%P]")
        ->allow_extra_args(false)
        ->check(checkFault, "");
    app.add_option("--seed", options.seed, "Repeat the random choices of an earlier run (default by chance)")
        ->type_name("N")
        ->check(wholeNumber(0, std::numeric_limits<uint32_t>::max()), "");
}

std::string checkSpeed(const std::string &text)
{
    constexpr double kSlowest = 0.001;
    constexpr double kFastest = 1000;
    char *end = nullptr;
    const double speed = std::strtod(text.c_str(), &end);
    const bool isNumber = end != text.c_str() && *end == '\0';
    const bool isRight = speed == 0 || (speed >= kSlowest && speed <= kFastest);
    return isNumber && isRight ? "" : '"' + text + "\" is neither 0 nor a number from 0.001 to 1000";
}

// What makes simulated controllers makes no recorded ones.
void declareReplay(CLI::App &app, Options &options)
{
    auto *replay =
        app.add_option("--replay", options.replay,
                       "Play the controllers' side of a trace or capture, and tell what is asked otherwise");
    replay->type_name("FILE");
    for (const char *other :
         {"--station", "--memory", "--save", "--live", "--pace", "--turnaround", "--fault", "--seed"})
        replay->excludes(app.get_option(other));
    app.add_option("--replay-speed", options.speed, "How fast: 2 in half the time, 0 without any wait")
        ->type_name("FACTOR")
        ->check(checkSpeed, "")
        ->capture_default_str()
        ->needs(replay);
}

void declareOptions(CLI::App &app, CommandLine &line)
{
    common::setHelpLayout(app, kHelpColumn);
    app.set_help_flag("-h,--help", "Show this and end");
    app.set_version_flag("--version", "s7ppi-sim " S7PPI_VERSION, "Show the version and end");
    app.footer(common::helpFooter(
        kOutline + faultHelp() + kFooter,
        {"s7ppi-sim --link /tmp/plc --live demo", "s7ppi-sim -s 2 -s 3:press.json --save",
         "s7ppi-sim --fault late=300ms%10 --turnaround 20ms", "s7ppi-sim --replay line.pcapng"},
        kExitCodes));
    app.failure_message([](const CLI::App *taker, const CLI::Error &error) {
        return complaint(error.what(), common::helpHint(*taker, nullptr));
    });
    declareStations(app, line);
    declareLine(app, line.options);
    declareTime(app, line.options);
    declareFaults(app, line.options);
    declareReplay(app, line.options);
    app.add_option("--trace", line.options.trace,
                   "Write every frame with its time to a file; NAME.pcapng is for Wireshark")
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
    const std::vector<std::string> words(argv + 1, argv + std::max(argc, 1));
    if (const auto fault = common::usageFault(app, words)) {
        complain(fault->text, fault->hint);
        exitCode = common::ExitCode::Usage;
        return std::nullopt;
    }
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
