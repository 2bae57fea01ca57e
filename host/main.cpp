// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The command line of s7ppi: its commands and options.

#include "describe_command.h"
#include "exit_code.h"
#include "read_command.h"
#include "run.h"

#include <CLI/CLI.hpp>

#include <QCoreApplication>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr int kUsage = int(host::ExitCode::Usage);

// A number with its limits told in the option's own words.
CLI::Option *addNumber(CLI::App &app, const std::string &name, std::optional<int> &value, int least, int most,
                       const std::string &what)
{
    const std::string limits = " (" + std::to_string(least) + " to " + std::to_string(most) + ")";
    return app.add_option(name, value, what + limits)
        ->check(CLI::Range(least, most).description(""))
        ->type_name("N");
}

void addPortOptions(CLI::App &app, host::Options &options)
{
    const char *group = "Port and controller";
    app.add_option("--port", options.port, "Serial device, or \"sim\" for a simulated controller")
        ->type_name("DEV")
        ->group(group);
    addNumber(app, "--station", options.station, 1, 126, "The controller's station")->group(group);
    addNumber(app, "--timeout", options.timeout, 1, 600000, "Wait for an answer, in ms")->group(group);
    addNumber(app, "--retries", options.retries, 0, 1000, "How often to repeat what failed")->group(group);
    addNumber(app, "--delay", options.delay, 0, 4294, "Pause before each attempt, in ms")->group(group);
}

void addLineOptions(CLI::App &app, host::Options &options)
{
    const char *group = "Serial line";
    addNumber(app, "--baud", options.baud, 50, 4000000, "Bits per second")->group(group);
    app.add_option("--parity", options.parity, "none, odd, even, mark or space")
        ->check(CLI::IsMember({"none", "odd", "even", "mark", "space"}).description(""))
        ->type_name("NAME")
        ->group(group);
    addNumber(app, "--databits", options.dataBits, 5, 8, "Data bits")->group(group);
    addNumber(app, "--stopbits", options.stopBits, 1, 2, "Stop bits")->group(group);
}

void addProgramOptions(CLI::App &app, host::Options &options)
{
    app.add_option("--plugin", options.plugin, "The driver's library")->type_name("FILE");
    app.add_flag("-v,--verbose", options.verbose, "Show every frame and the driver's messages on stderr");
    app.set_version_flag("--version", "s7ppi " S7PPI_VERSION, "Print the version and exit");
}

// A word that is no command would only be told as a missing one.
std::string usageText(const CLI::App &app, const CLI::ParseError &error)
{
    const std::vector<std::string> unknown = app.remaining();
    const bool isNoCommand = app.get_subcommands().empty() && !unknown.empty();
    return isNoCommand ? unknown.front() + " is not a command or option" : error.what();
}

int usageError(const CLI::App &app, const CLI::ParseError &error)
{
    if (error.get_exit_code() == 0)
        return app.exit(error);
    std::fprintf(stderr, "s7ppi: %s\nhint: s7ppi --help lists commands and options\n",
                 usageText(app, error).c_str());
    return kUsage;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    CLI::App app("Reads the memory of Simatic S7-200 controllers through their driver plug-in.", "s7ppi");
    app.require_subcommand(1);
    app.fallthrough();
    app.get_formatter()->column_width(28);
    app.footer(
        "What is not given, the plug-in's defaults decide. Without --port the only USB serial adapter is\n"
        "used, or without any a simulated controller.");

    host::Options options;
    addPortOptions(app, options);
    addLineOptions(app, options);
    addProgramOptions(app, options);

    std::function<int()> command;
    app.add_subcommand("describe", "Show what the plug-in says about itself")->callback([&] {
        command = [&] { return host::describeCommand(options); };
    });

    std::vector<std::string> items;
    CLI::App *read = app.add_subcommand("read", "Read items once, one line each");
    read->add_option("items", items, "ADDRESS[:TYPE][*COUNT], as VB100 VW10:i16*4 V10.3*8 VB20:str*16")
        ->type_name("ITEM")
        ->required();
    read->footer("Types: bool u8 i8 u16 i16 u32 i32 f32 hex bcd str. Options: s7ppi --help");
    read->callback([&] { command = [&] { return host::readCommand(options, items); }; });

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return usageError(app, error);
    }
    return host::run(options, command);
}
