// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/cli/command_line.h"

#include "common/duration.h"
#include "common/help_layout.h"
#include "common/nearest_word.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <system_error>

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

std::optional<int> numberIn(const std::string &text)
{
    int number = 0;
    const char *end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

// What stands in parentheses behind the meaning of an option: what it takes, and what holds without it.
std::string limitsText(const std::string &limits, const std::string &otherwise)
{
    return " (" + limits + (otherwise.empty() ? ")" : "; default " + otherwise + ')');
}

// Declares an option whose value is what parse() makes of its text, and which no text may stand for that it
// makes nothing of; `wanted` tells what may.
template <typename Value, typename Parse>
CLI::Option *addParsed(CLI::App &app, const std::string &name, std::optional<Value> &value,
                       const Parse &parse, const std::string &wanted, const std::string &what)
{
    const auto complaint = [parse, wanted](const std::string &text) {
        return parse(text) ? std::string() : (text.empty() ? "nothing" : text) + " is not " + wanted;
    };
    const auto take = [&value, parse](const std::string &text) { value = parse(text); };
    return app.add_option_function<std::string>(name, take, what)->check(complaint, "");
}

} // namespace

const char kOfPlugin[] = "the plug-in's";
const char kTypesFooter[] =
    "Types: bool u8 i8 u16 i16 u32 i32 u64 i64 f32 f64 hex bcd str string. f32:swap, and so with\n"
    "all types of 32 and 64 bits, is for words in reversed order.";

CLI::App *addCommand(CLI::App &app, CommandLine &line, const std::string &name, const std::string &what,
                     const Command &command)
{
    CLI::App *added = app.add_subcommand(name, what)->group("Commands");
    setFooter(*added, QString(), {QString("s7ppi ") + name.c_str()});
    added->callback([&line, command] { line.command = [&line, command] { return command(line.options); }; });
    return added;
}

void setFooter(CLI::App &command, const QString &text, const QStringList &examples)
{
    std::vector<std::string> lines;
    for (const QString &example : examples)
        lines.push_back(example.toStdString());
    command.footer(
        common::helpFooter(text.trimmed().toStdString(), lines,
                           "Port, line and output have options that all commands share: s7ppi help"));
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

CLI::Option *addOptionalText(CLI::App &app, const std::string &name, std::optional<QString> &value,
                             const QString &otherwise, const std::string &type, const std::string &what)
{
    const auto take = [&value, otherwise](const std::string &text) {
        value = text.empty() ? otherwise : QString::fromStdString(text);
    };
    return app.add_option_function<std::string>(name, take, what)
        ->type_name('[' + type + ']')
        ->expected(0, 1);
}

CLI::Option *addTexts(CLI::App &app, const std::string &name, QStringList &values, const std::string &type,
                      const std::string &what)
{
    const auto take = [&values](const std::vector<std::string> &texts) {
        values.clear();
        for (const std::string &text : texts)
            values << QString::fromStdString(text);
    };
    CLI::Option *option = app.add_option_function<std::vector<std::string>>(name, take, what);
    if (!option->get_positional())
        option->allow_extra_args(false);
    return option->type_name(type);
}

CLI::Option *addFlag(CLI::App &app, const std::string &name, bool &value, const std::string &what)
{
    return app.add_flag(name, value, what);
}

CLI::Option *addNumber(CLI::App &app, const std::string &name, std::optional<int> &value, int least, int most,
                       const std::string &what, const std::string &otherwise)
{
    const auto parse = [least, most](const std::string &text) {
        const std::optional<int> number = numberIn(text);
        return number && *number >= least && *number <= most ? number : std::nullopt;
    };
    const std::string first = std::to_string(least);
    const std::string last = std::to_string(most);
    return addParsed(app, name, value, parse, "a whole number from " + first + " to " + last,
                     what + limitsText(first + " to " + last, otherwise))
        ->type_name("N");
}

CLI::Option *addDuration(CLI::App &app, const std::string &name,
                         std::optional<std::chrono::milliseconds> &value, const DurationLimits &limits,
                         const std::string &what, const std::string &otherwise)
{
    const auto parse = [limits](const std::string &text) {
        const std::optional<std::chrono::milliseconds> time = common::parseDuration(text, limits.plainUnit);
        return time && *time >= limits.least && *time <= limits.most ? time : std::nullopt;
    };
    const std::string first = common::durationText(limits.least);
    const std::string last = common::durationText(limits.most);
    const std::string unit = common::durationText(limits.plainUnit).substr(1);
    return addParsed(app, name, value, parse,
                     "a time from " + first + " to " + last + ", as " + common::kDurationExamples,
                     what + limitsText(first + " to " + last + ", plain numbers in " + unit, otherwise))
        ->type_name("TIME");
}

CLI::Option *addChoice(CLI::App &app, const std::string &name, std::optional<QString> &value,
                       const std::vector<std::string> &words, const std::string &type,
                       const std::string &what, const std::string &otherwise)
{
    const std::string listed = CLI::detail::join(words, ", ");
    const auto complaint = [words, listed](const std::string &word) {
        if (std::find(words.begin(), words.end(), word) != words.end())
            return std::string();
        const std::string nearest = common::likelyWord(word, words);
        return word + " is not one of " + listed +
               (nearest.empty() ? nearest : "; the nearest is " + nearest);
    };
    const std::string named = CLI::detail::join(words, std::string(1, kChoiceSeparator));
    return optionalText(app, name, value, what + limitsText(listed, otherwise))
        ->check(complaint, "", named)
        ->type_name(type);
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
