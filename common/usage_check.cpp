// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "common/usage_check.h"

#include "common/help_layout.h"
#include "common/nearest_word.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <map>

namespace common {

namespace {

using Words = std::vector<std::string>;

bool isAnyCommand(const CLI::App * /*command*/)
{
    return true;
}

std::vector<const CLI::App *> commandsOf(const CLI::App &program)
{
    return program.get_subcommands(isAnyCommand);
}

bool isFlag(const CLI::Option &option)
{
    return option.get_expected_max() == 0;
}

void addOptionNames(Words &names, const CLI::App &app)
{
    for (const CLI::Option *option : app.get_options()) {
        for (const std::string &name : option->get_lnames())
            names.push_back("--" + name);
        for (const std::string &name : option->get_snames())
            names.push_back("-" + name);
    }
}

// "-1" is a number.
bool looksLikeOption(const std::string &word)
{
    return word.size() > 1 && word[0] == '-' && std::isdigit(static_cast<unsigned char>(word[1])) == 0;
}

// A word as a message shows it: one that is empty would not be seen.
std::string shown(const std::string &word)
{
    return word.empty() ? "\"\"" : word;
}

std::string joined(const Words &words)
{
    return CLI::detail::join(words, " and ");
}

class UsageCheck
{
public:
    UsageCheck(const CLI::App &program_, const Words &words_) : program(program_), words(words_) {}

    std::optional<UsageFault> run();

private:
    void takeWord(const std::string &word);
    void takeLong(const std::string &word);
    void takeShort(const std::string &word);
    void takePlain(const std::string &word);
    void takeOption(const CLI::Option &option, const std::string &name, std::optional<std::string> value);
    void takeFlag(const CLI::Option &option, const std::string &name,
                  const std::optional<std::string> &value);
    std::optional<std::string> nextValue(const CLI::Option &option, const std::string &name);
    void checkEnd();
    void beginCommand(const std::string &word);

    const CLI::Option *optionNamed(const std::string &name) const;
    const CLI::App *commandNamed(const std::string &name) const;
    std::size_t mostArguments() const;
    bool asksForHelp(const CLI::Option &option) const;

    void fail(const std::string &text, const std::string &hint);
    void failWithoutValue(const CLI::Option &option, const std::string &name, const std::string &reason);
    void failUnknownOption(const std::string &name);
    void failUnknownWord(const std::string &word);
    void failSurplus(const std::string &word);

    const CLI::App &program;
    const Words &words;
    const CLI::App *command = nullptr;
    std::size_t place = 0;     // of the word behind the one that is looked at
    std::size_t arguments = 0; // words so far that are no options
    std::map<const CLI::Option *, std::string> given;
    std::optional<UsageFault> fault;
    bool isOver = false; // nothing that follows is looked at
};

std::optional<UsageFault> UsageCheck::run()
{
    bool onlyArguments = false;
    while (place < words.size() && !isOver) {
        const std::string &word = words[place++];
        if (onlyArguments)
            takePlain(word);
        else if (word == "--" && command != nullptr)
            onlyArguments = true;
        else
            takeWord(word);
    }
    if (!isOver)
        checkEnd();
    return fault;
}

void UsageCheck::takeWord(const std::string &word)
{
    if (!looksLikeOption(word) || word == "--")
        takePlain(word);
    else if (word[1] == '-')
        takeLong(word);
    else
        takeShort(word);
}

void UsageCheck::takeLong(const std::string &word)
{
    const std::size_t equals = std::min(word.find('='), word.size());
    const std::string name = word.substr(0, equals);
    const CLI::Option *option = optionNamed(name);
    if (option == nullptr)
        failUnknownOption(name);
    else
        takeOption(*option, name,
                   equals < word.size() ? std::optional(word.substr(equals + 1)) : std::nullopt);
}

// Letters may stand together behind one hyphen; behind the first that takes a value the rest is that.
void UsageCheck::takeShort(const std::string &word)
{
    for (std::size_t i = 1; i < word.size() && !isOver; ++i) {
        const std::string name = {'-', word[i]};
        const CLI::Option *option = optionNamed(name);
        if (option == nullptr) {
            failUnknownOption(i == 1 || word[i] == '-' ? word.substr(0, word.find('=')) : name);
        } else if (isFlag(*option)) {
            takeOption(*option, name, std::nullopt);
        } else {
            takeOption(*option, name, i + 1 < word.size() ? std::optional(word.substr(i + 1)) : std::nullopt);
            return;
        }
    }
}

void UsageCheck::takeOption(const CLI::Option &option, const std::string &name,
                            std::optional<std::string> value)
{
    if (asksForHelp(option)) {
        isOver = true;
        return;
    }
    if (isFlag(option)) {
        takeFlag(option, name, value);
        return;
    }
    if (value && value->empty())
        failWithoutValue(option, name, "; nothing stands behind =");
    else if (!value)
        value = nextValue(option, name);
    if (isOver || !value || takesMany(option))
        return;
    const auto [earlier, isNew] = given.emplace(&option, *value);
    if (!isNew)
        fail(name + " is given twice: " + shown(earlier->second) + " and " + shown(*value),
             "leave one of the two out");
}

// A flag may be taken back where the environment or a file has set it.
// One with a word for its value takes more, which the parser judges.
void UsageCheck::takeFlag(const CLI::Option &option, const std::string &name,
                          const std::optional<std::string> &value)
{
    if (!option.get_type_name().empty() && value && !value->empty())
        return;
    const Words known = {"true", "false", "on", "off", "yes", "no", "1", "0"};
    if (value && std::find(known.begin(), known.end(), *value) == known.end())
        fail(name + " takes no value, and is given " + shown(*value),
             "write " + name + " alone, or " + name + "=false to take back what a setting says");
}

// The value of an option is the word behind it, unless that is an option, or the only command that there is.
std::optional<std::string> UsageCheck::nextValue(const CLI::Option &option, const std::string &name)
{
    const bool isThere = place < words.size();
    const std::string word = isThere ? words[place] : std::string();
    const bool isOption = looksLikeOption(word) && optionNamed(word.substr(0, word.find('='))) != nullptr;
    const auto isCommand = [this](const std::string &text) { return commandNamed(text) != nullptr; };
    const bool isOnlyCommand =
        isThere && command == nullptr && isCommand(word) &&
        std::none_of(words.begin() + std::ptrdiff_t(place) + 1, words.end(), isCommand);
    if (isThere && !isOption && !isOnlyCommand) {
        ++place;
        return word;
    }
    if (option.get_expected_min() == 0)
        return std::nullopt;
    const std::string behind = isOption        ? "; " + word + " behind it is an option"
                               : isOnlyCommand ? "; " + word + " behind it is the command"
                                               : std::string();
    failWithoutValue(option, name, behind);
    return std::nullopt;
}

void UsageCheck::takePlain(const std::string &word)
{
    if (command == nullptr && !commandsOf(program).empty())
        beginCommand(word);
    else if (++arguments > mostArguments())
        failSurplus(word);
}

void UsageCheck::beginCommand(const std::string &word)
{
    command = commandNamed(word);
    if (command == nullptr)
        failUnknownWord(word);
}

void UsageCheck::checkEnd()
{
    if (command == nullptr && program.get_require_subcommand_min() > 0) {
        fail("a command is missing", helpHint(program, nullptr) + "; for example " + firstExample(program));
        return;
    }
    const CLI::App &taker = command != nullptr ? *command : program;
    std::size_t needed = 0;
    for (const CLI::Option *option : taker.get_options()) {
        if (!option->get_positional() || !option->get_required() || ++needed <= arguments)
            continue;
        fail(taker.get_name() + " needs " + (takesMany(*option) ? "at least one " : "a ") +
                 option->get_type_name(),
             option->get_type_name() + ": " + option->get_description() + "; for example " +
                 firstExample(taker));
        return;
    }
}

const CLI::Option *UsageCheck::optionNamed(const std::string &name) const
{
    const CLI::Option *option = command != nullptr ? command->get_option_no_throw(name) : nullptr;
    return option != nullptr ? option : program.get_option_no_throw(name);
}

const CLI::App *UsageCheck::commandNamed(const std::string &name) const
{
    for (const CLI::App *candidate : commandsOf(program))
        if (candidate->get_name() == name)
            return candidate;
    return nullptr;
}

std::size_t UsageCheck::mostArguments() const
{
    std::size_t most = 0;
    for (const CLI::Option *option : (command != nullptr ? *command : program).get_options())
        if (option->get_positional())
            most += std::size_t(option->get_expected_max());
    return most;
}

bool UsageCheck::asksForHelp(const CLI::Option &option) const
{
    return option.check_lname("help") || option.check_lname("version");
}

void UsageCheck::fail(const std::string &text, const std::string &hint)
{
    fault = {text, hint};
    isOver = true;
}

void UsageCheck::failWithoutValue(const CLI::Option &option, const std::string &name,
                                  const std::string &reason)
{
    fail(name + " needs a value" + reason,
         "write " + name + ' ' + option.get_type_name() + ": " + option.get_description());
}

void UsageCheck::failUnknownOption(const std::string &name)
{
    Words owners;
    for (const CLI::App *candidate : commandsOf(program))
        if (candidate->get_option_no_throw(name) != nullptr)
            owners.push_back(candidate->get_name());
    if (command == nullptr && !owners.empty()) {
        fail(name + " stands in front of the command", "it is an option of " + joined(owners) +
                                                           ": write it behind, as in " + program.get_name() +
                                                           ' ' + owners.front() + " ... " + name);
        return;
    }
    const std::string text =
        (command != nullptr ? command->get_name() + " has" : "there is") + " no option " + name;
    Words names;
    addOptionNames(names, program);
    if (command != nullptr)
        addOptionNames(names, *command);
    fail(text, helpHint(program, command) +
                   (owners.empty() ? nearestText(name, names)
                                   : "; " + joined(owners) + (owners.size() > 1 ? " have it" : " has it")));
}

void UsageCheck::failUnknownWord(const std::string &word)
{
    const std::string nearest = nearestText(word, commandNames(program));
    const auto later =
        std::find_if(words.begin() + std::ptrdiff_t(place), words.end(),
                     [this](const std::string &text) { return commandNamed(text) != nullptr; });
    if (nearest.empty() && later != words.end())
        fail(shown(word) + " stands in front of the command " + *later,
             "only options may stand there: write " + word + " behind " + *later);
    else if (nearest.empty() && optionNamed("--" + word) != nullptr)
        fail(word + " is not a command", "the option is --" + word + ", with two hyphens");
    else
        fail(shown(word) + " is not a command", helpHint(program, nullptr) + nearest);
}

void UsageCheck::failSurplus(const std::string &word)
{
    if (command != nullptr && commandNamed(word) != nullptr) {
        fail("there are two commands, " + command->get_name() + " and " + word,
             "one command is run at a time; " + helpHint(program, command));
        return;
    }
    const CLI::App &taker = command != nullptr ? *command : program;
    const std::size_t most = mostArguments();
    fail(shown(word) + " is too much: " + taker.get_name() + " takes " +
             (most == 0   ? "options only"
              : most == 1 ? "one argument"
                          : std::to_string(most) + " arguments"),
         helpHint(program, command));
}

} // namespace

std::optional<UsageFault> usageFault(const CLI::App &program, const std::vector<std::string> &words)
{
    return UsageCheck(program, words).run();
}

std::string helpHint(const CLI::App &program, const CLI::App *command)
{
    const std::string &name = program.get_name();
    if (command != nullptr)
        return name + " help " + command->get_name() + " tells what it takes";
    return commandsOf(program).empty() ? name + " --help explains all options"
                                       : name + " help lists commands and options";
}

std::string nearestText(const std::string &word, const std::vector<std::string> &names)
{
    const std::string nearest = likelyWord(word, names);
    return nearest.empty() ? nearest : "; the nearest to " + word + " is " + nearest;
}

std::vector<std::string> commandNames(const CLI::App &program)
{
    Words names;
    for (const CLI::App *command : commandsOf(program))
        names.push_back(command->get_name());
    return names;
}

} // namespace common
