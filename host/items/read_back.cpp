// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/read_back.h"

#include "host/base/filled.h"
#include "host/items/value.h"

namespace host {

namespace {

// Whether the length byte of a string tells no more characters than there are.
bool isString(const QByteArray &data)
{
    return uchar(data.at(0)) < data.size();
}

// One value as text; bytes that are no BCD, or no string, still have their digits.
QString valueTextAt(Item item, const QByteArray &data, int index)
{
    if (item.type == ValueType::String && !isString(data))
        return "0x" + QString::fromLatin1(data.toHex());
    if (isText(item.type))
        return valuesText(decodeValues(item, data));
    if (item.type == ValueType::Bcd)
        item.type = ValueType::Hex;
    item.count = 1;
    return valuesText(decodeValues(item, data.mid(index * item.valueSize(), item.valueSize())));
}

} // namespace

ValueDifferences compareValues(const Item &item, const QByteArray &written, const QByteArray &read)
{
    const bool isOneText = isText(item.type);
    const int width = isOneText ? item.size() : item.valueSize();
    ValueDifferences differences;
    for (int i = 0; i < (isOneText ? 1 : item.count); ++i) {
        if (written.mid(i * width, width) == read.mid(i * width, width) || ++differences.count > 1)
            continue;
        differences.index = i;
        differences.first = valueTextAt(item, read, i) + " and not " + valueTextAt(item, written, i);
    }
    return differences;
}

Failure notAsWritten(const QString &difference)
{
    return Failure(
        ExitCode::Different, difference,
        "the controller's program may have written there in between, or the place takes no writes");
}

void checkReadBack(const Assignment &assignment, const QByteArray &data)
{
    const Item &item = assignment.tag.item;
    const ValueDifferences differences = compareValues(item, assignment.data, data);
    if (differences.count == 0)
        return;
    const bool isOneOfMany = item.count > 1 && !isText(item.type);
    const QString place =
        isOneOfMany ? filled("value %1 of %2 is ", differences.index + 1, item.count) : "reads ";
    throw notAsWritten(place + differences.first);
}

} // namespace host
