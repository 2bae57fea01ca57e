// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/memory_range.h"

#include "host/base/failure.h"
#include "host/items/address_range.h"
#include "host/items/area.h"

namespace host {

namespace {

void checkBytes(const Address &address)
{
    if (address.kind == AddressKind::Bit)
        throw Failure(ExitCode::Usage, address.text() + " is a bit, and ranges are of bytes",
                      "its byte is " + areaOf(address.prefix).byteLetters() +
                          QString::number(address.number));
}

} // namespace

Item parseRange(const QString &text)
{
    const AddressRange range = parseAddressRange(text);
    return rangeFrom(range.first, range.count);
}

Item rangeFrom(const Address &first, int count)
{
    checkBytes(first);
    Item range = {first, ValueType::Hex, count};
    checkCount(range);
    return range;
}

Item inDigits(const Item &item)
{
    Item digits = item;
    digits.type = ValueType::Hex;
    digits.isSwapped = false;
    if (item.size() % item.address.elementWidth != 0)
        digits.address = {AddressKind::Memory, areaOf(item.address.prefix).byteLetters(), item.address.number,
                          0, 1};
    digits.count = item.size() / digits.address.elementWidth;
    return digits;
}

QString rangeText(const Item &range)
{
    return range.address.text() + ".." + elementText(range, range.count - 1);
}

QString elementText(const Item &range, int index)
{
    return range.valueAddress(index).text();
}

Item partOf(const Item &range, int index, int count)
{
    return {range.valueAddress(index), range.type, count};
}

} // namespace host
