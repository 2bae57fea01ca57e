// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Whole numbers as the user writes them.

#ifndef SIMULATOR_TEXT_NUMBER_TEXT_H
#define SIMULATOR_TEXT_NUMBER_TEXT_H

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace sim {

// Reads the whole text as a number. Gives nothing when it is none, or none that the type can hold.
template <typename Number> std::optional<Number> parseNumber(std::string_view text, int base = 10)
{
    Number number = 0;
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, base);
    return result.ec == std::errc() && result.ptr == end ? std::optional<Number>(number) : std::nullopt;
}

} // namespace sim

#endif
