// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/text/json.h"

#include "host/text/number_text.h"

#include <cmath>

namespace host {

// The digits that tell the float apart, as the double nearest to them: dumped, they are the same digits.
Json jsonNumber(float number)
{
    const QString digits = shortestText(number);
    return std::isfinite(number) ? Json(digits.toDouble()) : jsonText(digits);
}

Json jsonNumber(double number)
{
    return std::isfinite(number) ? Json(number) : jsonText(shortestText(number));
}

} // namespace host
