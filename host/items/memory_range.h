// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A stretch of one memory area: the elements from a first address to a last one, that one included.
//
// It is written as address_range.h has it, and has no bits. A range is an item of the type hex: its bytes lie
// as in the controller.

#ifndef HOST_ITEMS_MEMORY_RANGE_H
#define HOST_ITEMS_MEMORY_RANGE_H

#include "host/items/item.h"

#include <QString>

namespace host {

// Returns the range that a text means. Fails with a hint that names what could have been meant.
Item parseRange(const QString &text);

// Returns the range of so many elements from an address on. Fails when there are not that many, and for a
// bit, because ranges are of whole bytes.
Item rangeFrom(const Address &first, int count);

// The same memory as hexadecimal digits: by its elements, or byte by byte where it ends within one, as a
// string among words can.
Item inDigits(const Item &item);

// The range as the user writes it: "VB0..VB4095".
QString rangeText(const Item &range);

// The address of one element, counted from 0; also of the one behind the last.
QString elementText(const Item &range, int index);

// The range of some of the elements, counted from 0.
Item partOf(const Item &range, int index, int count);

} // namespace host

#endif
