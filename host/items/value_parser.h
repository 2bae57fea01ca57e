// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Turns values as people write them into the controller's bytes.
//
//   bool            0 1 off on false true
//   u8 ... i64 bcd  10  -10  0x0a  0b1010; bcd as many decimal digits as fit
//   f32 f64         1.5  -2e3  inf  nan; the nearest number that exists is taken
//   hex             digits, two per byte, for one or more whole elements of the address's width; 0x1122 or
//   1122 str string      one text, in quotes or not, with \" \\ and \xNN as read prints them

#ifndef HOST_ITEMS_VALUE_PARSER_H
#define HOST_ITEMS_VALUE_PARSER_H

#include "host/items/item.h"

#include <QByteArray>
#include <QString>

namespace host {

// Returns the bytes of all values of a text, one or more, in the controller's order: most significant byte
// first, bits one per byte. Of a string they end with its last character. Only a string's count plays a part:
// a text that it has no room for fails. So does everything else with what could have been meant.
QByteArray encodeValues(const Item &item, const QString &text);

} // namespace host

#endif
