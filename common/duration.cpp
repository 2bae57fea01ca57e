// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "common/duration.h"

#include <cmath>
#include <cstdint>
#include <regex>

namespace common {

namespace {

struct Unit
{
    const char *name;
    int64_t milliseconds;
};

const Unit kUnits[] = {{"d", 86400000}, {"h", 3600000}, {"min", 60000}, {"s", 1000}, {"ms", 1}};

constexpr double kLongest = 1000.0 * 366 * 86400000;

std::optional<int64_t> unitNamed(const std::string &name)
{
    for (const Unit &unit : kUnits)
        if (name == unit.name)
            return unit.milliseconds;
    return std::nullopt;
}

} // namespace

const char kDurationExamples[] = "500ms, 1s or 2min";

// The numbers of digits are bounded, so that the text is a number that a double holds exactly enough.
std::optional<Milliseconds> parseDuration(const std::string &text, Milliseconds plainUnit)
{
    static const std::regex form("([0-9]{1,15}(?:\\.[0-9]{1,6})?) ?([a-z]*)");
    std::smatch parts;
    if (text.size() > 40 || !std::regex_match(text, parts, form))
        return std::nullopt;
    const std::optional<int64_t> unit =
        parts[2].length() > 0 ? unitNamed(parts[2]) : std::optional<int64_t>(plainUnit.count());
    if (!unit)
        return std::nullopt;
    const double time = std::stod(parts[1]) * double(*unit);
    const double whole = std::round(time);
    if (whole > kLongest || std::abs(time - whole) > 1e-6)
        return std::nullopt;
    return Milliseconds(int64_t(whole));
}

std::string durationText(Milliseconds time)
{
    for (const Unit &unit : kUnits)
        if (time.count() != 0 && time.count() % unit.milliseconds == 0)
            return std::to_string(time.count() / unit.milliseconds) + unit.name;
    return "0s";
}

} // namespace common
