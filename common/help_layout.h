// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How --help looks, which is the same in both programs.

#ifndef COMMON_HELP_LAYOUT_H
#define COMMON_HELP_LAYOUT_H

#include <cstddef>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace common {

// Lets the help of the program, and of commands that are added later, have one line per option, with its
// meaning from the column on: its names and the word for its value, and nothing that only the parser knows.
void setHelpLayout(CLI::App &app, std::size_t column);

// Whether the option or argument may be given any number of times.
bool takesMany(const CLI::Option &option);

// What stands below the options of a program or a command: a text, which may be empty, then the examples,
// each a line as it is typed, then a last line.
std::string helpFooter(const std::string &text, const std::vector<std::string> &examples,
                       const std::string &lastLine);

// The first example that the footer of this program or command has; empty without one.
std::string firstExample(const CLI::App &app);

} // namespace common

#endif
