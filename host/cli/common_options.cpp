// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/cli/common_options.h"

#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>

#include <string>

namespace host {

namespace {

void addPortOptions(CLI::App &app, Options &options)
{
    const char *group = "Port and controller";
    addText(app, "--port", options.port, "DEV",
            std::string("Serial device, or \"") + kSimulatorPort + "\" for a simulated controller")
        ->group(group);
    addNumber(app, "--station", options.station, kFirstStation + 1, kLastStation, "The controller's station")
        ->group(group);
    addNumber(app, "--timeout", options.timeout, 1, 600000, "Wait for an answer, in ms")->group(group);
    addNumber(app, "--retries", options.retries, 0, 1000, "How often to repeat what failed")->group(group);
    addNumber(app, "--delay", options.delay, 0, 4294, "Pause before each attempt, in ms")->group(group);
    app.add_flag("--reconnect", options.reconnect,
                 "Wait for a port that is not there or gets lost, and go on reading")
        ->group(group);
}

void addLineOptions(CLI::App &app, Options &options)
{
    const char *group = "Serial line";
    addNumber(app, "--baud", options.baud, 50, 4000000, "Bits per second")->group(group);
    addChoice(app, "--parity", options.parity, {"none", "odd", "even", "mark", "space"},
              "none, odd, even, mark or space")
        ->group(group);
    addNumber(app, "--databits", options.dataBits, 5, 8, "Data bits")->group(group);
    addNumber(app, "--stopbits", options.stopBits, 1, 2, "Stop bits")->group(group);
    app.add_flag("--rs485", options.rs485, "Let the port's driver switch an RS-485 transceiver by RTS")
        ->group(group);
    app.add_flag("--echo", options.echo, "The adapter hears what it sends: take that out and compare it")
        ->group(group);
}

void addOutputOptions(CLI::App &app, Options &options)
{
    const char *group = "Output";
    addChoice(app, "--format", options.format, {"text", "json", "ndjson", "csv", "tsv", "raw"},
              "text, json, ndjson, csv, tsv or raw: the bytes as they lie in the controller")
        ->group(group);
    addText(app, "-o,--output", options.output, "FILE",
            "Write the data to a file, whole or not at all, only watch line by line; - is stdout")
        ->group(group);
    addText(app, "--trace", options.trace, "FILE", "Write every frame to a file: time, direction, bytes")
        ->group(group);
    CLI::Option *quiet = app.add_flag("-q,--quiet", options.quiet, "Errors only on stderr")->group(group);
    app.add_flag("-v,--verbose", options.verbose, "Show every frame and the driver's messages on stderr")
        ->excludes(quiet)
        ->group(group);
}

} // namespace

void declareCommonOptions(CLI::App &app, Options &options)
{
    addPortOptions(app, options);
    addLineOptions(app, options);
    addOutputOptions(app, options);
    addText(app, "--plugin", options.plugin, "FILE", "The driver's library");
    addText(app, "--config", options.config, "FILE", "A file with options, as \"baud = 19200\"");
}

} // namespace host
