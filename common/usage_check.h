// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is wrong with a command line, in the words in which it was typed and in their order. The parser tells
// the same as a difference between numbers of arguments, and some of it not at all: it takes an option for
// the value that is missing in front of it.

#ifndef COMMON_USAGE_CHECK_H
#define COMMON_USAGE_CHECK_H

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace common {

struct UsageFault
{
    std::string text;
    std::string hint;
};

// Returns the first fault of the words behind the program's name: an option that there is not, one without
// its value or with two, a word too many, a command or an argument that is missing. Values are the parser's
// to judge. Where the words ask for help or for the version nothing behind that is looked at.
std::optional<UsageFault> usageFault(const CLI::App &program, const std::vector<std::string> &words);

// Where the user finds what the program, or its command, takes.
std::string helpHint(const CLI::App &program, const CLI::App *command);

// "; the nearest to WORD is NAME" when one of the names is near; empty otherwise.
std::string nearestText(const std::string &word, const std::vector<std::string> &names);

// The names of all commands.
std::vector<std::string> commandNames(const CLI::App &program);

} // namespace common

#endif
