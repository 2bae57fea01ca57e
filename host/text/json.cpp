// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/text/json.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

namespace host {

// The digits that tell the float apart, as the double nearest to them: dumped, they are the same digits.
Json jsonNumber(float number)
{
    char digits[32] = {};
    std::to_chars(digits, digits + sizeof digits - 1, number);
    if (!std::isfinite(number))
        return std::string(digits);
    return std::strtod(digits, nullptr);
}

} // namespace host
