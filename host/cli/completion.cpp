// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/cli/completion.h"

#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>

#include <string>

namespace host {

namespace {

// Returns the words that the option takes, from the name of its check; see addChoice().
QStringList choicesOf(CLI::Option &option)
{
    try {
        const QString name = QString::fromStdString(option.get_validator(0)->get_name());
        return name.split(kChoiceSeparator, Qt::SkipEmptyParts);
    } catch (const CLI::OptionNotFound &) {
        return {};
    }
}

CompletedValue valueOf(const CLI::Option &option)
{
    if (option.get_expected_min() == 0 && !option.get_positional())
        return CompletedValue::None;
    if (option.get_type_name() == "FILE")
        return CompletedValue::File;
    return option.get_type_name() == "DEV" ? CompletedValue::Device : CompletedValue::Word;
}

CompletedOption completedOption(CLI::Option &option)
{
    CompletedOption completed = {{}, QString::fromStdString(option.get_description()), valueOf(option), {}};
    for (const std::string &name : option.get_snames())
        completed.names << "-" + QString::fromStdString(name);
    for (const std::string &name : option.get_lnames())
        completed.names << "--" + QString::fromStdString(name);
    completed.choices = choicesOf(option);
    if (!completed.choices.isEmpty())
        completed.value = CompletedValue::Choice;
    return completed;
}

CompletedCommand completedCommand(CLI::App &app)
{
    CompletedCommand command = {
        QString::fromStdString(app.get_name()), QString::fromStdString(app.get_description()), {}, {}};
    for (CLI::Option *option : app.get_options())
        (option->get_positional() ? command.arguments : command.options) << completedOption(*option);
    return command;
}

} // namespace

Completion completionOf(CLI::App &app)
{
    Completion completion = {completedCommand(app), {}};
    const auto all = [](CLI::App *) { return true; };
    for (CLI::App *command : app.get_subcommands(all))
        completion.commands << completedCommand(*command);
    return completion;
}

} // namespace host
