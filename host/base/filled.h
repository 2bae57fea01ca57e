// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Texts with places to fill. QString::arg(), called once for each place, also fills places that an earlier
// text brought along: "%1:%2" with a file called "50%2.csv". So there is one call for all of them.

#ifndef HOST_BASE_FILLED_H
#define HOST_BASE_FILLED_H

#include <QString>

#include <type_traits>

namespace host {

inline QString filling(const QString &text)
{
    return text;
}

template <typename Number, std::enable_if_t<std::is_integral_v<Number>, int> = 0>
QString filling(Number number)
{
    return QString::number(number);
}

// The pattern, in UTF-8, with the part of the same number, text or whole number, in place of each %1, %2 and
// so on.
template <typename... Parts> QString filled(const char *pattern, const Parts &...parts)
{
    return QString::fromUtf8(pattern).arg(filling(parts)...);
}

} // namespace host

#endif
