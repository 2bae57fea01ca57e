// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/text/number_text.h"

#include <cmath>

namespace host {

QString shortNumber(double number)
{
    constexpr double kLargestWhole = 999999999;
    constexpr int kDigits = 5;
    const bool isWhole = std::abs(number) <= kLargestWhole && std::floor(number) == number;
    return isWhole ? QString::number(qint64(number)) : QString::number(number, 'g', kDigits);
}

} // namespace host
