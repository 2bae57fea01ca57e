// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/cli/command_line.h"

#include "common/nearest_word.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace host {

namespace {

CLI::Option *optionalText(CLI::App &app, const std::string &name, std::optional<QString> &value,
                          const std::string &what)
{
    const auto take = [&value](const std::optional<std::string> &text) {
        value = text ? std::optional(QString::fromStdString(*text)) : std::nullopt;
    };
    return app.add_option_function<std::optional<std::string>>(name, take, what);
}

} // namespace

const char kTypesFooter[] = "Types: bool u8 i8 u16 i16 u32 i32 f32 hex bcd str. Options: s7ppi --help";

CLI::App *addCommand(CLI::App &app, CommandLine &line, const std::string &name, const std::string &what,
                     const Command &command)
{
    CLI::App *added = app.add_subcommand(name, what)->group("Commands");
    added->callback([&line, command] { line.command = [&line, command] { return command(line.options); }; });
    return added;
}

void setFooter(CLI::App &command, const QString &text)
{
    command.footer(text.toStdString());
}

// The parser has texts as std::string, and calls these functions for what it finds.
CLI::Option *addText(CLI::App &app, const std::string &name, QString &value, const std::string &type,
                     const std::string &what)
{
    const auto take = [&value](const std::string &text) { value = QString::fromStdString(text); };
    return app.add_option_function<std::string>(name, take, what)->type_name(type)->required();
}

CLI::Option *addText(CLI::App &app, const std::string &name, std::optional<QString> &value,
                     const std::string &type, const std::string &what)
{
    return optionalText(app, name, value, what)->type_name(type);
}

CLI::Option *addTexts(CLI::App &app, const std::string &name, QStringList &values, const std::string &type,
                      const std::string &what)
{
    const auto take = [&values](const std::vector<std::string> &texts) {
        values.clear();
        for (const std::string &text : texts)
            values << QString::fromStdString(text);
    };
    return app.add_option_function<std::vector<std::string>>(name, take, what)->type_name(type);
}

CLI::Option *addFlag(CLI::App &app, const std::string &name, bool &value, const std::string &what)
{
    return app.add_flag(name, value, what);
}

CLI::Option *addNumber(CLI::App &app, const std::string &name, std::optional<int> &value, int least, int most,
                       const std::string &what)
{
    const std::string limits = " (" + std::to_string(least) + " to " + std::to_string(most) + ")";
    return app.add_option(name, value, what + limits)
        ->check(CLI::Range(least, most).description(""))
        ->type_name("N");
}

CLI::Option *addChoice(CLI::App &app, const std::string &name, std::optional<QString> &value,
                       const std::vector<std::string> &words, const std::string &what)
{
    const auto complaint = [words](const std::string &word) {
        if (std::find(words.begin(), words.end(), word) != words.end())
            return std::string();
        const std::string nearest = common::likelyWord(word, words);
        return word + " is none of " + CLI::detail::join(words, ", ") +
               (nearest.empty() ? nearest : "; the nearest is " + nearest);
    };
    const std::string named = CLI::detail::join(words, std::string(1, kChoiceSeparator));
    return optionalText(app, name, value, what)->check(complaint, "", named)->type_name("NAME");
}

CLI::Option *addItems(CLI::App &command, QStringList &items, const std::string &what)
{
    CLI::Option *option = addTexts(command, "items", items, "ITEM", what);
    require(*option);
    return option;
}

void require(CLI::Option &option)
{
    option.required();
}

void tie(CLI::Option &option, CLI::Option &other)
{
    option.needs(&other);
}

} // namespace host
