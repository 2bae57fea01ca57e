// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What every command declares itself with, so that the parser's header, which takes seconds to compile, stays
// out of its file. A command is a pair of files of its own:
//
//   void declareRead(CLI::App &app, CommandLine &line)
//   {
//       const auto items = std::make_shared<QStringList>();
//       CLI::App *read = addCommand(app, line, "read", "Read items once",
//                                   [items](const Options &options) { return readItems(options, *items); });
//       addItems(*read, *items, "ADDRESS[:TYPE][*COUNT]");
//       setFooter(*read, "What else there is to know.", {"s7ppi read VB100"});
//   }

#ifndef HOST_CLI_COMMAND_LINE_H
#define HOST_CLI_COMMAND_LINE_H

#include "host/base/options.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace host {

// Where the parser puts the common options, and the command that the command line chooses.
struct CommandLine
{
    Options options;
    std::function<int()> command;
};

// Does a command's work and returns its exit code, or throws a Failure. The function keeps what the command's
// own options say, as with a shared pointer.
using Command = std::function<int(const Options &)>;

CLI::App *addCommand(CLI::App &app, CommandLine &line, const std::string &name, const std::string &what,
                     const Command &command);

// Sets what the help of a command has below its options: a text, which may be empty, and examples, each as it
// is typed. The first one is shown where the command's arguments are missing.
void setFooter(CLI::App &command, const QString &text, const QStringList &examples);

// These declare arguments and options. A name without hyphens is an argument's; type is the word for the
// value in the help. A text without std::optional must be given. An option for texts takes one of them each
// time that it is given.
CLI::Option *addText(CLI::App &app, const std::string &name, QString &value, const std::string &type,
                     const std::string &what);
CLI::Option *addText(CLI::App &app, const std::string &name, std::optional<QString> &value,
                     const std::string &type, const std::string &what);

// Declares an option whose value may be left out, which stands for another one then. Whatever word is behind
// it is taken for its value, unless that is an option.
CLI::Option *addOptionalText(CLI::App &app, const std::string &name, std::optional<QString> &value,
                             const QString &otherwise, const std::string &type, const std::string &what);

CLI::Option *addTexts(CLI::App &app, const std::string &name, QStringList &values, const std::string &type,
                      const std::string &what);
CLI::Option *addFlag(CLI::App &app, const std::string &name, bool &value, const std::string &what);

// What holds without an option, as its help tells it.
extern const char kOfPlugin[]; // the plug-in's own proposal

// Declares an option for a number. Its limits, and what holds without it if anything does, stand in its help.
CLI::Option *addNumber(CLI::App &app, const std::string &name, std::optional<int> &value, int least, int most,
                       const std::string &what, const std::string &otherwise = std::string());

// The times that an option takes.
struct DurationLimits
{
    std::chrono::milliseconds least;
    std::chrono::milliseconds most;
    std::chrono::milliseconds plainUnit; // of a number without a unit
};

// Declares an option for a time, as addNumber() does.
CLI::Option *addDuration(CLI::App &app, const std::string &name,
                         std::optional<std::chrono::milliseconds> &value, const DurationLimits &limits,
                         const std::string &what, const std::string &otherwise = std::string());

// Declares an option for one of some words, which stand in its help. The parser's check of the value has the
// words for its name, which is where a shell's completion finds them.
constexpr char kChoiceSeparator = '|';
CLI::Option *addChoice(CLI::App &app, const std::string &name, std::optional<QString> &value,
                       const std::vector<std::string> &words, const std::string &type,
                       const std::string &what, const std::string &otherwise = std::string());

// Declares the items of a command, of which there must be one at least.
CLI::Option *addItems(CLI::App &command, QStringList &items, const std::string &what);

void require(CLI::Option &option);

// Makes an option wrong where the other one is not given.
void tie(CLI::Option &option, CLI::Option &other);

// The line about types that the help of commands with items has.
extern const char kTypesFooter[];

} // namespace host

#endif
