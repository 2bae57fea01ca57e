// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/read_back.h"

#include "host/base/failure.h"
#include "host/items/value.h"

#include <QByteArray>
#include <QString>

#include <algorithm>

namespace host {

namespace {

// One value as text; bytes that are no BCD still have their digits.
QString valueTextAt(Item item, const QByteArray &data, int index)
{
    if (item.type == ValueType::Str)
        return valuesText(decodeValues(item, data));
    if (item.type == ValueType::Bcd)
        item.type = ValueType::Hex;
    item.count = 1;
    return valuesText(decodeValues(item, data.mid(index * item.valueSize(), item.valueSize())));
}

} // namespace

void checkReadBack(const Assignment &assignment, const QByteArray &data)
{
    const Item &item = assignment.tag.item;
    const QByteArray &written = assignment.data;
    const auto difference = std::mismatch(written.begin(), written.end(), data.begin(), data.end());
    if (difference.first == written.end() && difference.second == data.end())
        return;
    const int index = int(difference.first - written.begin()) / item.valueSize();
    const bool isOneOfMany = item.count > 1 && item.type != ValueType::Str;
    const QString place =
        isOneOfMany ? QString("value %1 of %2 is ").arg(index + 1).arg(item.count) : "reads ";
    throw Failure(ExitCode::Different,
                  place + valueTextAt(item, data, index) + " and not " + valueTextAt(item, written, index),
                  "the controller's program may have written there in between, or the place takes no writes");
}

} // namespace host
