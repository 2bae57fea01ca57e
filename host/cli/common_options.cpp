// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/cli/common_options.h"

#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>

#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace host {

namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

constexpr int kLongestPause = 100; // milliseconds; the kernel takes no longer one

// Puts a pause, "before=2", where it belongs; false for anything else and for one that is there already.
bool takePause(const QString &text, std::optional<int> &before, std::optional<int> &after)
{
    static const QRegularExpression form("^(before|after)=([0-9]{1,3})$");
    const QRegularExpressionMatch match = form.match(text);
    std::optional<int> &pause = match.captured(1) == "before" ? before : after;
    if (!match.hasMatch() || pause || match.captured(2).toInt() > kLongestPause)
        return false;
    pause = match.captured(2).toInt();
    return true;
}

// "before=1,after=2", either alone, or "true"
std::optional<Rs485> rs485Of(const QString &text)
{
    std::optional<int> before;
    std::optional<int> after;
    if (text != "true")
        for (const QString &part : text.split(','))
            if (!takePause(part, before, after))
                return std::nullopt;
    return Rs485{before.value_or(0), after.value_or(0)};
}

// A flag that may have a value behind "=".
CLI::Option *addRs485(CLI::App &app, std::optional<Rs485> &value)
{
    const auto text = std::make_shared<std::string>();
    const auto isOff = [](const std::string &word) {
        return word == "false" || word == "off" || word == "no" || word == "0";
    };
    const auto isOn = [](const std::string &word) { return word == "on" || word == "yes" || word == "1"; };
    const auto take = [text, &value, isOff, isOn](const std::string &word) {
        const QString pauses = isOn(word) ? "true" : QString::fromStdString(word);
        const std::optional<Rs485> taken = rs485Of(pauses);
        if (!taken && !isOff(word))
            return word + " is not before=N,after=N, in milliseconds from 0 to " +
                   std::to_string(kLongestPause);
        value = taken;
        return std::string();
    };
    return app
        .add_flag("--rs485", *text,
                  "Let the port's driver switch an RS-485 transceiver by RTS; before=1,after=2 behind it are "
                  "pauses around sending, in ms")
        ->check(take, "")
        ->type_name("PAUSES");
}

void addPortOptions(CLI::App &app, Options &options)
{
    const char *group = "Port and controller";
    addText(app, "-p,--port", options.port, "DEV",
            std::string("Serial device, or \"") + kSimulatorPort +
                "\" for a simulated controller, or tcp:HOST:PORT of a serial server (default the only USB "
                "adapter)")
        ->group(group);
    addNumber(app, "-s,--station", options.station, kFirstStation + 1, kLastStation,
              "The controller's station", kOfPlugin)
        ->group(group);
    addDuration(app, "-t,--timeout", options.timeout, {milliseconds(1), minutes(10), milliseconds(1)},
                "Wait for an answer", kOfPlugin)
        ->group(group);
    addDuration(app, "--gap", options.gap, {milliseconds(1), minutes(10), milliseconds(1)},
                "The longest pause within an answer", "none, --timeout holds")
        ->group(group);
    addNumber(app, "--retries", options.retries, 0, 1000, "How often to repeat what failed", kOfPlugin)
        ->group(group);
    addDuration(app, "--delay", options.delay, {milliseconds(0), milliseconds(4294), milliseconds(1)},
                "Pause before each attempt", kOfPlugin)
        ->group(group);
    addFlag(app, "--reconnect", options.reconnect,
            "Wait for a port that is not there or gets lost, and go on reading")
        ->group(group);
    addDuration(app, "--wait-lock", options.waitLock, {seconds(0), hours(24), seconds(1)},
                "Wait for another program that has the port", "0s")
        ->group(group);
}

void addLineOptions(CLI::App &app, Options &options)
{
    const char *group = "Serial line";
    addNumber(app, "-b,--baud", options.baud, 50, 4000000, "Bits per second", kOfPlugin)->group(group);
    addChoice(app, "--parity", options.parity, {"none", "odd", "even", "mark", "space"}, "PARITY", "Parity",
              kOfPlugin)
        ->group(group);
    addNumber(app, "--databits", options.dataBits, 5, 8, "Data bits", kOfPlugin)->group(group);
    addNumber(app, "--stopbits", options.stopBits, 1, 2, "Stop bits", kOfPlugin)->group(group);
    addRs485(app, options.rs485)->group(group);
    addFlag(app, "--low-latency", options.lowLatency, "Let the adapter hand over at once what it receives")
        ->group(group);
    addFlag(app, "--echo", options.echo, "The adapter hears what it sends: take that out and compare it")
        ->group(group);
}

void addOutputOptions(CLI::App &app, Options &options)
{
    const char *group = "Output";
    addChoice(app, "--format", options.format, {"text", "json", "ndjson", "csv", "tsv", "raw"}, "FORM",
              "Form of the data, of which raw is plain bytes", "text")
        ->group(group);
    addFlag(app, "--json", options.json, "The same as --format json")->group(group);
    addText(app, "-o,--output", options.output, "FILE",
            "Write the data to a file, whole or not at all, only watch line by line (default -, stdout)")
        ->group(group);
    addText(app, "--trace", options.trace, "FILE",
            "Write every frame to a file: time, direction, bytes; NAME.pcapng is for Wireshark")
        ->group(group);
    CLI::Option *quiet = addFlag(app, "-q,--quiet", options.quiet, "Errors only on stderr")->group(group);
    addFlag(app, "-v,--verbose", options.verbose, "Show every frame and the driver's messages on stderr")
        ->excludes(quiet)
        ->group(group);
}

} // namespace

void declareCommonOptions(CLI::App &app, Options &options)
{
    addPortOptions(app, options);
    addLineOptions(app, options);
    addOutputOptions(app, options);
    addText(app, "--plugin", options.plugin, "FILE",
            "The driver's library (default libs7_200_ppi.so beside s7ppi or as installed)");
    app.add_flag(
        "--raw-address", options.rawAddress,
        "Items are TEXT:TYPE[*COUNT], and TEXT goes to the driver as it is; so with any other driver");
    addText(app, "--config", options.config, "FILE",
            "A file with options, as \"baud = 19200\" (default ~/.config/s7ppi/config)");
    addText(app, "--profile", options.profile, "NAME", "Hear the section [NAME] of that file, too");
}

} // namespace host
