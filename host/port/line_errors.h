// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The kernel's count of what went wrong with single characters on a line.

#ifndef HOST_PORT_LINE_ERRORS_H
#define HOST_PORT_LINE_ERRORS_H

#include <QString>

#include <optional>

namespace host {

struct LineErrors
{
    int frame = 0; // no stop bit where one belongs
    int parity = 0;
    int overrun = 0; // characters that the adapter or the kernel had no room for
    int breaks = 0;
};

// Returns the errors since the port's driver was loaded, or nothing when the driver does not count them.
std::optional<LineErrors> lineErrors(int descriptor);

LineErrors operator-(const LineErrors &after, const LineErrors &before);

// "3 framing errors, 1 parity error"; empty when there are none.
QString errorsText(const LineErrors &errors);

} // namespace host

#endif
