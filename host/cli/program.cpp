// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/cli/program.h"

#include "common/nearest_word.h"
#include "host/base/failure.h"
#include "host/base/files_in_use.h"
#include "host/base/interruption.h"
#include "host/base/messages.h"
#include "host/cli/applied_settings.h"
#include "host/cli/command_line.h"
#include "host/cli/common_options.h"

#include <CLI/CLI.hpp>

#include <QString>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace host {

namespace {

const char kFooter[] =
    R"(What is not given, the plug-in's defaults decide. Without --port the only USB serial adapter is
used. --port sim is a simulated controller, which answers only when it is named.

Every option of the port, the line and the output but -o can also be set in the environment, as in
S7PPI_BAUD=19200, and in ~/.config/s7ppi/config or the file that --config or S7PPI_CONFIG names, as in
baud = 19200. The command line comes first, then the environment, then the file; --verbose tells.

Exit codes: 0 done, 1 refused by the controller, 2 usage, address or value, 3 port cannot be used,
4 no answer, 5 broken answer, 6 port lost, 7 plug-in cannot be used, 8 read back is not what was
written, 70 internal failure, 74 output takes no more data; after a signal 128 and its number.)";

void declare(CLI::App &app, CommandLine &line, const std::vector<Declare> &commands)
{
    app.require_subcommand(1);
    app.fallthrough();
    app.get_formatter()->column_width(28);
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.set_help_flag("-h,--help", "Show this and end");
    app.footer(kFooter);
    app.set_version_flag("--version", "s7ppi " S7PPI_VERSION, "Show the version and end");
    declareCommonOptions(app, line.options);
    for (const Declare declareCommand : commands)
        declareCommand(app, line);
}

// The parser tells a word that is no command as a missing one, and calls commands by another name.
std::string usageText(const CLI::App &app, const CLI::ParseError &error)
{
    const std::vector<std::string> unknown = app.remaining();
    const bool hasCommand = !app.get_subcommands().empty();
    if (!hasCommand && !unknown.empty())
        return unknown.front() + " is not a command or option";
    const bool lacksCommand = !hasCommand && error.get_exit_code() == int(CLI::ExitCodes::RequiredError);
    return lacksCommand ? "a command is missing" : error.what();
}

// Prints what --help or --version asks for, which the parser treats as an error.
int printAbout(const CLI::App &app, const CLI::ParseError &request)
{
    std::ostringstream text;
    app.exit(request, text, text);
    printData(QString::fromStdString(text.str()).trimmed());
    return int(ExitCode::Success);
}

void addOptionNames(std::vector<std::string> &names, const CLI::App &app)
{
    for (const CLI::Option *option : app.get_options()) {
        for (const std::string &name : option->get_lnames())
            names.push_back("--" + name);
        for (const std::string &name : option->get_snames())
            names.push_back("-" + name);
    }
}

// Returns what the user may have meant by the first word that is no command and no option. Behind a command a
// word without hyphens can be anything, and nothing is proposed for it.
std::string nearestHint(const CLI::App &app)
{
    const std::vector<std::string> unknown = app.remaining(true);
    const bool hasCommand = !app.get_subcommands().empty();
    if (unknown.empty() || (hasCommand && unknown.front().front() != '-'))
        return std::string();
    const std::string word = unknown.front().substr(0, unknown.front().find('='));
    std::vector<std::string> names;
    if (word.front() != '-')
        for (const CLI::App *command : app.get_subcommands([](const CLI::App *) { return true; }))
            names.push_back(command->get_name());
    addOptionNames(names, app);
    if (hasCommand)
        addOptionNames(names, *app.get_subcommands().front());
    const std::string nearest = common::likelyWord(word, names);
    return nearest.empty() ? nearest : "; the nearest to " + word + " is " + nearest;
}

std::string usageHint(const CLI::App &app)
{
    const std::string hint = "s7ppi --help lists commands and options";
    if (app.get_subcommands().empty())
        return hint + nearestHint(app);
    const std::string command = app.get_subcommands().front()->get_name();
    return hint + ", s7ppi " + command + " --help what " + command + " takes" + nearestHint(app);
}

int usageError(const CLI::App &app, const CLI::ParseError &error)
{
    reportFailure(Failure(ExitCode::Usage, QString::fromStdString(usageText(app, error)),
                          QString::fromStdString(usageHint(app))));
    return int(ExitCode::Usage);
}

constexpr int kSignalExit = 128;

int outcomeOf(Options &options, const std::function<int()> &command)
{
    try {
        settleFiles(options);
        return command();
    } catch (const Interrupted &) {
        return kSignalExit;
    } catch (const Failure &failure) {
        if (interruptingSignal() == 0)
            reportFailure(failure);
        return int(failure.code());
    }
}

// Runs the command, once the files of its options are settled, and returns the exit code. That is the
// command's own, or that of a failure, which is reported, or 128 and the signal's number when a signal ended
// the program in order.
int run(Options &options, const std::function<int()> &command)
{
    setQuiet(options.quiet);
    setVerbose(options.verbose);
    installDriverLog(options.verbose);
    const int exitCode = outcomeOf(options, command);
    const int signalNumber = interruptingSignal();
    return signalNumber ? kSignalExit + signalNumber : exitCode;
}

} // namespace

int runProgram(int argc, char *argv[], const std::vector<Declare> &commands)
{
    CLI::App app("Reads and writes the memory of Simatic S7-200 controllers through their driver plug-in.",
                 "s7ppi");
    CommandLine line;
    declare(app, line, commands);
    catchInterruptions();
    try {
        app.parse(argc, argv);
        applySettings(app, line.options);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() != 0)
            return usageError(app, error);
        line.command = [&app, error] { return printAbout(app, error); };
    } catch (const Interrupted &) {
        return kSignalExit + interruptingSignal();
    } catch (const Failure &failure) {
        reportFailure(failure);
        return int(failure.code());
    }
    return run(line.options, line.command);
}

} // namespace host
