// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Numbers as people read them at a glance.

#ifndef HOST_TEXT_NUMBER_TEXT_H
#define HOST_TEXT_NUMBER_TEXT_H

#include <QString>

namespace host {

// A number with what it counts: "1 byte", "4 bytes".
inline QString counted(qint64 count, const QString &what)
{
    return QString("%1 %2%3").arg(count).arg(what, count == 1 ? "" : "s");
}

// Whole numbers of up to nine digits whole, others with five digits: 100000, 52.098, 1.2346e+12.
QString shortNumber(double number);

} // namespace host

#endif
