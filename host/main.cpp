// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The command line of s7ppi: its commands and options.

#include "describe_command.h"
#include "exit_code.h"
#include "read_command.h"
#include "run.h"
#include "watch_command.h"
#include "write_command.h"

#include <CLI/CLI.hpp>

#include <QCoreApplication>

#include <exception>
#include <functional>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace {

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

using Texts = std::vector<std::string>;

// Where the parser puts what the command line says, and the command that it chooses.
struct CommandLine
{
    host::Options options;
    Texts items;
    host::WriteOptions write;
    host::WatchOptions watch;
    std::function<int()> command;
};

const char kFooter[] =
    R"(What is not given, the plug-in's defaults decide. Without --port the only USB serial adapter is
used, or without any a simulated controller.

Exit codes: 0 done, 1 refused by the controller, 2 usage, address or value, 3 port cannot be used,
4 no answer, 5 broken answer, 6 port lost, 7 plug-in cannot be used, 8 read back is not what was
written; after a signal 128 and its number.)";

const char kTypesFooter[] = "Types: bool u8 i8 u16 i16 u32 i32 f32 hex bcd str. Options: s7ppi --help";

const char kWriteFooter[] = R"(

Values
  bool             0 1 off on false true
  u8 ... i32 bcd   10  -10  0x0a  0b1010
  f32              1.5  -2e3  inf  nan
  hex              digits: the bytes as they lie in the controller
  str              one text, quoted or not; \" is a quote, \\ a backslash, \xNN any byte

All items are checked before anything is sent. Nothing is printed unless --verify or
--dry-run is given. Long items go in several requests: one that fails tells how much had
been written. Values that do not fill whole elements of the address, as VW10:u8=1, are
written as bytes: no byte changes that was not named.)";

const char kWatchFooter[] = R"(

On a terminal: a table in place. CHANGED is * when the last answer brought another value,
otherwise the time since then. Values in parentheses are old: the last poll failed.
Elsewhere, or with --verbose: lines TIME ADDRESS VALUES, for the first values, for every
change and after errors; the errors on stderr.

Ctrl-C ends it with a summary on stderr: polls, answer times (from the request to its data,
repetitions included), attempts and errors. The exit code after --count polls is that of
the first error.)";

void addItems(CLI::App &command, Texts &items, const char *what)
{
    command.add_option("items", items, what)->type_name("ITEM")->required();
}

void addDescribe(CLI::App &app, CommandLine &line)
{
    app.add_subcommand("describe", "Show what the plug-in says about itself")->callback([&line] {
        line.command = [&line] { return host::describeCommand(line.options); };
    });
}

void addRead(CLI::App &app, CommandLine &line)
{
    CLI::App *read = app.add_subcommand("read", "Read items once, one line each");
    addItems(*read, line.items, "ADDRESS[:TYPE][*COUNT], as VB100 VW10:i16*4 V10.3*8 VB20:str*16");
    read->footer(kTypesFooter);
    read->callback(
        [&line] { line.command = [&line] { return host::readCommand(line.options, line.items); }; });
}

void addWrite(CLI::App &app, CommandLine &line)
{
    CLI::App *write = app.add_subcommand("write", "Write values to items");
    addItems(*write, line.items, "ADDRESS[:TYPE]=VALUE[,VALUE...], as VB100=17 VW10:i16=-1,0x7f V10.3=on");
    write->add_flag("--verify", line.write.verify, "Read back and print; exit with 8 when it is different");
    write->add_flag("--dry-run", line.write.dryRun, "Print the frames that would be sent, and send nothing");
    write->footer(std::string(kTypesFooter) + kWriteFooter);
    write->callback([&line] {
        line.command = [&line] { return host::writeCommand(line.options, line.write, line.items); };
    });
}

void addWatch(CLI::App &app, CommandLine &line)
{
    CLI::App *watch = app.add_subcommand("watch", "Read items again and again");
    addItems(*watch, line.items, "ADDRESS[:TYPE][*COUNT], as for read");
    addNumber(*watch, "--interval", line.watch.interval, 1, 3600000, "From poll to poll, in ms, else 500");
    addNumber(*watch, "--count", line.watch.polls, 1, 1000000000, "End after so many polls");
    watch->add_flag("--all", line.watch.all, "A line for every poll, not only for changes");
    watch->footer(std::string(kTypesFooter) + kWatchFooter);
    watch->callback([&line] {
        line.command = [&line] { return host::watchCommand(line.options, line.watch, line.items); };
    });
}

void declare(CLI::App &app, CommandLine &line)
{
    app.require_subcommand(1);
    app.fallthrough();
    app.get_formatter()->column_width(28);
    app.footer(kFooter);
    addPortOptions(app, line.options);
    addLineOptions(app, line.options);
    addProgramOptions(app, line.options);
    addDescribe(app, line);
    addRead(app, line);
    addWrite(app, line);
    addWatch(app, line);
}

// A word that is no command would only be told as a missing one.
std::string usageText(const CLI::App &app, const CLI::ParseError &error)
{
    const Texts unknown = app.remaining();
    const bool isNoCommand = app.get_subcommands().empty() && !unknown.empty();
    return isNoCommand ? unknown.front() + " is not a command or option" : error.what();
}

int usageError(const CLI::App &app, const CLI::ParseError &error)
{
    if (error.get_exit_code() == 0)
        return app.exit(error);
    std::cerr << "s7ppi: " << usageText(app, error) << "\nhint: s7ppi --help lists commands and options"
              << std::endl;
    return int(host::ExitCode::Usage);
}

int parseAndRun(int argc, char *argv[])
{
    CLI::App app("Reads and writes the memory of Simatic S7-200 controllers through their driver plug-in.",
                 "s7ppi");
    CommandLine line;
    declare(app, line);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return usageError(app, error);
    }
    return host::run(line.options, line.command);
}

} // namespace

int main(int argc, char *argv[])
{
    try {
        const QCoreApplication application(argc, argv);
        return parseAndRun(argc, argv);
    } catch (const std::exception &error) { // no memory, say
        std::cerr << "s7ppi: " << error.what() << std::endl;
        return int(host::ExitCode::Internal);
    }
}
