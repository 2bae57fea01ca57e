// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/cli/program.h"

#include "common/help_layout.h"
#include "common/usage_check.h"
#include "host/base/failure.h"
#include "host/base/files_in_use.h"
#include "host/base/interruption.h"
#include "host/base/messages.h"
#include "host/cli/applied_settings.h"
#include "host/cli/command_line.h"
#include "host/cli/common_options.h"

#include <CLI/CLI.hpp>

#include <QString>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace host {

namespace {

const char kFooter[] =
    R"(What is not given, the plug-in's defaults decide. Without --port the only USB serial adapter is
used. --port sim is a simulated controller, which answers only when it is named. Times are numbers
with a unit, as 500ms, 1s or 2min, or without one.

Every option of the port, the line and the output but -o can also be set in the environment, as in
S7PPI_BAUD=19200, and in ~/.config/s7ppi/config or the file that --config or S7PPI_CONFIG names, as in
baud = 19200. Lines behind [press] in that file are heard with --profile press or S7PPI_PROFILE=press.
The command line comes first, then the environment, the profile, the rest of the file; s7ppi doctor
and --verbose tell what is set where.)";

// The last lines of the program's help, behind its examples.
const char kExitCodes[] =
    R"(Exit codes: 0 done, 1 refused by the controller, 2 usage, address or value, 3 port cannot be used,
4 no answer, 5 broken answer, 6 port lost, 7 plug-in cannot be used, 8 read back is not what was
written, not as expected, or dumps differ, 9 not confirmed, 10 refused by the broker,
70 internal failure, 74 output takes no more data; after a signal 128 and its number.)";

constexpr std::size_t kHelpColumn = 28;

Failure usageFailure(const common::UsageFault &fault)
{
    return Failure(ExitCode::Usage, QString::fromStdString(fault.text), QString::fromStdString(fault.hint));
}

int printHelp(const CLI::App &app, const std::optional<QString> &topic)
{
    const CLI::App *shown = &app;
    std::string shownName = app.get_name();
    if (topic) {
        const std::string name = topic->toStdString();
        const std::vector<std::string> names = common::commandNames(app);
        if (std::find(names.begin(), names.end(), name) == names.end())
            throw usageFailure({name + " is not a command",
                                common::helpHint(app, nullptr) + common::nearestText(name, names)});
        shown = app.get_subcommand(name);
        shownName += ' ' + name;
    }
    const std::string text = app.get_formatter()->make_help(shown, shownName, CLI::AppFormatMode::Normal);
    printData(QString::fromStdString(text).trimmed());
    return int(ExitCode::Success);
}

// Declared behind all commands, whose names a shell completes for its argument.
void declareHelp(CLI::App &app, CommandLine &line)
{
    const auto topic = std::make_shared<std::optional<QString>>();
    CLI::App *help =
        addCommand(app, line, "help", "Show what a command takes, or all commands and options",
                   [&app, topic](const Options & /*options*/) { return printHelp(app, *topic); });
    const auto anything = [](const std::string & /*name*/) { return std::string(); };
    const std::string names = CLI::detail::join(common::commandNames(app), std::string(1, kChoiceSeparator));
    addText(*help, "command", *topic, "COMMAND", "The command (default all of them)")
        ->check(anything, "", names);
    setFooter(*help, QString(), {"s7ppi help", "s7ppi help read"});
}

void declare(CLI::App &app, CommandLine &line, const std::vector<Declare> &commands)
{
    app.require_subcommand(1);
    app.fallthrough();
    common::setHelpLayout(app, kHelpColumn);
    app.set_help_flag("-h,--help", "Show this and end");
    app.footer(common::helpFooter(kFooter,
                                  {"s7ppi --port sim read VB100 VW102:i16", "s7ppi -p /dev/ttyUSB0 doctor",
                                   "s7ppi -p /dev/ttyUSB0 -b 19200 -s 3 -t 1s watch VW100 T37"},
                                  kExitCodes));
    app.set_version_flag("--version", "s7ppi " S7PPI_VERSION, "Show the version and end");
    declareCommonOptions(app, line.options);
    for (const Declare declareCommand : commands)
        declareCommand(app, line);
    declareHelp(app, line);
}

// Prints what --help or --version asks for, which the parser treats as an error.
int printAbout(const CLI::App &app, const CLI::ParseError &request)
{
    std::ostringstream text;
    app.exit(request, text, text);
    printData(QString::fromStdString(text.str()).trimmed());
    return int(ExitCode::Success);
}

// Returns what helps: with two options that belong together, or do not, or with the value of one.
std::string valueHint(const CLI::App &app, const CLI::ParseError &error, const std::string &option)
{
    const std::string text = error.what();
    if (error.get_exit_code() == int(CLI::ExitCodes::ExcludesError))
        return "leave one of the two out";
    if (error.get_exit_code() == int(CLI::ExitCodes::RequiresError))
        return "add " + text.substr(text.rfind(' ') + 1) + ", or leave " + option + " out";
    const std::vector<CLI::App *> commands = app.get_subcommands();
    const bool isCommon = commands.empty() || commands.front()->get_option_no_throw(option) == nullptr;
    return common::helpHint(app, isCommon ? nullptr : commands.front());
}

// What the parser tells is about values, and begins with the option, which the command or all commands have.
Failure valueFailure(const CLI::App &app, const CLI::ParseError &error)
{
    const std::string text = error.what();
    const std::string option = text.substr(0, text.find_first_of(": "));
    return usageFailure({text, valueHint(app, error, option)});
}

// Does what --json stands for. The command line alone can say both.
void settleFormat(OutputOptions &options)
{
    if (!options.json)
        return;
    if (options.format.value_or("json") != "json")
        throw Failure(ExitCode::Usage, "--json and --format " + *options.format + " contradict each other",
                      "leave one of the two out: --json is the same as --format json");
    options.format = "json";
}

// The parser takes the value of a flag behind "=" only. The pauses of --rs485 may stand in a word of their
// own, as no item and no command looks like them.
std::vector<std::string> joinedPauses(const std::vector<std::string> &words)
{
    std::vector<std::string> joined;
    for (const std::string &word : words) {
        const bool isPause = word.rfind("before=", 0) == 0 || word.rfind("after=", 0) == 0;
        if (isPause && !joined.empty() && joined.back() == "--rs485")
            joined.back() += '=' + word;
        else
            joined.push_back(word);
    }
    return joined;
}

// Fills in the options and the command. Fails on what the user has typed or set wrong; what --help and
// --version ask for is a command, too.
void parse(CLI::App &app, CommandLine &line, int argc, char *argv[])
{
    std::vector<std::string> words = joinedPauses({argv + 1, argv + std::max(argc, 1)});
    if (const std::optional<common::UsageFault> fault = common::usageFault(app, words))
        throw usageFailure(*fault);
    try {
        std::reverse(words.begin(), words.end()); // as the parser wants them
        app.parse(words);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() != 0)
            throw valueFailure(app, error);
        line.command = [&app, error] { return printAbout(app, error); };
        return;
    }
    applySettings(app, line.options);
    settleFormat(line.options);
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
        parse(app, line, argc, argv);
    } catch (const Interrupted &) {
        return kSignalExit + interruptingSignal();
    } catch (const Failure &failure) {
        reportFailure(failure);
        return int(failure.code());
    }
    return run(line.options, line.command);
}

} // namespace host
