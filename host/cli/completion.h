// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a shell can complete of a command line, taken from the parser itself: no command or option can be
// forgotten.

#ifndef HOST_CLI_COMPLETION_H
#define HOST_CLI_COMPLETION_H

#include <QList>
#include <QString>
#include <QStringList>

namespace CLI {
class App;
}

namespace host {

enum class CompletedValue { None, Word, Choice, File, Device };

struct CompletedOption
{
    QStringList names; // "-o", "--output"; none for an argument
    QString what;
    CompletedValue value;
    QStringList choices;
};

struct CompletedCommand
{
    QString name;
    QString what;
    QList<CompletedOption> options;
    QList<CompletedOption> arguments;
};

struct Completion
{
    CompletedCommand program; // its options can be given with every command, too
    QList<CompletedCommand> commands;
};

Completion completionOf(CLI::App &app);

} // namespace host

#endif
