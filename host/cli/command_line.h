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
//   }

#ifndef HOST_CLI_COMMAND_LINE_H
#define HOST_CLI_COMMAND_LINE_H

#include "host/base/options.h"

#include <QString>
#include <QStringList>

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

// A command's work: its exit code, or a Failure thrown. What the command's own options say is the
// function's to keep, as with a shared pointer.
using Command = std::function<int(const Options &)>;

CLI::App *addCommand(CLI::App &app, CommandLine &line, const std::string &name, const std::string &what,
                     const Command &command);

void setFooter(CLI::App &command, const QString &text);

// Arguments and options. A name without hyphens is an argument's; type is the word for the value in the help.
// A text without std::optional must be given.
CLI::Option *addText(CLI::App &app, const std::string &name, QString &value, const std::string &type,
                     const std::string &what);
CLI::Option *addText(CLI::App &app, const std::string &name, std::optional<QString> &value,
                     const std::string &type, const std::string &what);
CLI::Option *addTexts(CLI::App &app, const std::string &name, QStringList &values, const std::string &type,
                      const std::string &what);
CLI::Option *addFlag(CLI::App &app, const std::string &name, bool &value, const std::string &what);

// A number with its limits told in the option's own words.
CLI::Option *addNumber(CLI::App &app, const std::string &name, std::optional<int> &value, int least, int most,
                       const std::string &what);

// One of some words. Their check has them for its name, which is where a shell's completion finds them.
constexpr char kChoiceSeparator = '|';
CLI::Option *addChoice(CLI::App &app, const std::string &name, std::optional<QString> &value,
                       const std::vector<std::string> &words, const std::string &what);

// The items of a command, one at least.
CLI::Option *addItems(CLI::App &command, QStringList &items, const std::string &what);

void require(CLI::Option &option);

// It is wrong without the other.
void tie(CLI::Option &option, CLI::Option &other);

// The end of the help of commands that take items.
extern const char kTypesFooter[];

} // namespace host

#endif
