// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a write changes: values and bytes before it and after it, side by side.

#ifndef HOST_ITEMS_CHANGE_H
#define HOST_ITEMS_CHANGE_H

#include "host/items/item.h"
#include "host/items/tag.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace host {

// A value of an item as people see it, with its unit.
struct ValueChange
{
    QString label;
    QString before;
    QString after;
    bool isSame; // to the last bit
};

// The changes of all values of a tag, in their order; both arrays hold tag.item.size() bytes.
QList<ValueChange> changesOf(const Tag &tag, const QByteArray &before, const QByteArray &after);

// Rows of a table, "Boiler", "398.6 °C", "-> 21.5 °C", and how many of all values, or bytes, change.
struct ChangeTable
{
    QList<QStringList> rows;
    int count = 0;
    int changed = 0;
};

// Adds the changes of a tag. Of several values those that stay have one row together.
void addChanges(ChangeTable &table, const QList<ValueChange> &changes, const Tag &tag);

// The table of the bytes of a range, in hexadecimal digits by elements; neighbours that change have one row
// together.
ChangeTable rangeChanges(const Item &range, const QByteArray &before, const QByteArray &after);

} // namespace host

#endif
