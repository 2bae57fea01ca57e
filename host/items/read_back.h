// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The comparison of what was written with what is read back.

#ifndef HOST_ITEMS_READ_BACK_H
#define HOST_ITEMS_READ_BACK_H

#include "host/base/failure.h"
#include "host/items/assignment.h"

#include <QByteArray>
#include <QString>

namespace host {

// Which values are not what was written.
struct ValueDifferences
{
    int count = 0;
    int index = 0; // of the first; a text is one value
    QString first; // "00 and not 1f"
};

// Compares the values of an item; both arrays hold item.size() bytes. Bytes are compared, so that every kind
// of number is held to its last bit.
ValueDifferences compareValues(const Item &item, const QByteArray &written, const QByteArray &read);

// The failure with which a command ends that has found a difference.
Failure notAsWritten(const QString &difference);

// Fails with the first difference when data is not what was assigned.
void checkReadBack(const Assignment &assignment, const QByteArray &data);

} // namespace host

#endif
