// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The values in the bytes that a read brought, and their texts.

#ifndef HOST_ITEMS_VALUE_H
#define HOST_ITEMS_VALUE_H

#include "host/items/item.h"

#include <QByteArray>
#include <QString>

#include <variant>
#include <vector>

namespace host {

// The characters of one text, as they lie in the controller.
struct Characters
{
    QByteArray bytes;
};

// Bytes that are shown as they are, with two hexadecimal digits each; without a 0x.
struct HexDigits
{
    QString digits;
};

using Value = std::variant<bool, qint64, quint64, float, double, Characters, HexDigits>;

// Decodes data, which holds item.size() bytes in the controller's order: most significant byte first,
// bits one per byte. Fails when bytes read as BCD are not, or the length of a string is beyond its room.
std::vector<Value> decodeValues(const Item &item, const QByteArray &data);

// Reverses the order of the words in every group of so many bytes. The bytes of a word stay as they are.
QByteArray wordsSwapped(QByteArray data, int groupSize);

// The value as text: bits are 0 or 1, a float has as few digits as tell it apart, hexadecimal digits have 0x
// in front, a text stands between quotes with \" \\ and \xNN for what cannot be printed. All of them can be
// typed as values to write.
QString valueText(const Value &value);

// The texts of all values, blanks between.
QString valuesText(const std::vector<Value> &values);

} // namespace host

#endif
