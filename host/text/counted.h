// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A number with what it counts.

#ifndef HOST_TEXT_COUNTED_H
#define HOST_TEXT_COUNTED_H

#include <QString>

namespace host {

// "1 byte", "4 bytes"
inline QString counted(qint64 count, const QString &what)
{
    return QString("%1 %2%3").arg(count).arg(what, count == 1 ? "" : "s");
}

} // namespace host

#endif
