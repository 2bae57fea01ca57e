// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The addresses from a first one to a last one, that one included.
//
//   range := FIRST ".." LAST        VB0..VB15  MB0..31  VW0..VW98  V0.0..V1.7  AIW0..62  T37..T40
//
// LAST may leave out the area's letters. It is that of an element counted from FIRST in steps of the letters'
// width.

#ifndef HOST_ITEMS_ADDRESS_RANGE_H
#define HOST_ITEMS_ADDRESS_RANGE_H

#include "host/items/address.h"

#include <QString>

namespace host {

struct AddressRange
{
    Address first;
    int count; // of elements as the letters name them: bits, bytes, words, double words, objects

    // The address of one element, counted from 0; also of those behind the last.
    Address at(int index) const;
};

// Whether a text is meant to be a range.
bool isRange(const QString &text);

// Returns the range that a text means. Fails with a hint that names what could have been meant.
AddressRange parseAddressRange(const QString &text);

} // namespace host

#endif
