// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The error that ends in front of the user: it says what cannot be done, and what helps.

#ifndef SIMULATOR_TEXT_USER_ERROR_H
#define SIMULATOR_TEXT_USER_ERROR_H

#include <stdexcept>
#include <string>

namespace sim {

// what() says what is wrong and where, hint() what helps.
class UserError : public std::runtime_error
{
public:
    UserError(const std::string &text, const std::string &hint) : std::runtime_error(text), hintText(hint) {}

    const char *hint() const noexcept { return hintText.what(); }

private:
    std::runtime_error hintText; // its text is copied without a throw, as that of an exception must be
};

} // namespace sim

#endif
