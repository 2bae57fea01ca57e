// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/memory_range.h"

#include "host/base/failure.h"
#include "host/base/filled.h"

#include <QRegularExpression>

namespace host {

namespace {

const char kRangeHint[] = "a range is FIRST..LAST, as VB0..VB4095 or MB0..31";

// How far the next element's number is away.
int stepOf(const Address &address)
{
    return address.isObject() ? 1 : address.elementWidth;
}

Address elementAt(const Item &range, int index)
{
    Address address = range.address;
    address.number += index * stepOf(address);
    return address;
}

Address parseEnd(const QString &text)
{
    try {
        return parseAddress(text);
    } catch (const Failure &failure) {
        throw failure.about(text);
    }
}

// The last address, which may be a number alone.
Address parseLast(const QString &text, const Address &first)
{
    static const QRegularExpression number("^[0-9]+$");
    return parseEnd(number.match(text).hasMatch() ? first.prefix + text : text);
}

void checkBytes(const Address &address)
{
    if (address.kind == AddressKind::Bit)
        throw Failure(ExitCode::Usage, address.text() + " is a bit, and ranges are of bytes",
                      "its byte is " + areaOf(address.prefix).byteLetters() +
                          QString::number(address.number));
}

// Both ends must name elements of the same width in the same area, the last one not before the first.
void checkEnds(const Address &first, const Address &last)
{
    if (last.prefix != first.prefix)
        throw Failure(ExitCode::Usage,
                      QString("%1 and %2 are not in the same area").arg(first.text(), last.text()),
                      filled("write %1..%2%3", first.text(), first.prefix, last.number));
    if (last.number < first.number)
        throw Failure(ExitCode::Usage, last.text() + " lies before " + first.text(),
                      QString("write %1..%2").arg(last.text(), first.text()));
    const int excess = (last.number - first.number) % stepOf(first);
    if (excess != 0)
        throw Failure(
            ExitCode::Usage,
            QString("%1 begins inside another element counted from %2").arg(last.text(), first.text()),
            filled("write %1..%2%3", first.text(), first.prefix, last.number - excess));
}

} // namespace

Item parseRange(const QString &text)
{
    const int dots = int(text.indexOf(".."));
    if (dots < 0)
        throw Failure(ExitCode::Usage, text + " is not a range", kRangeHint);
    const Address first = parseEnd(text.left(dots));
    checkBytes(first);
    const Address last = parseLast(text.mid(dots + 2), first);
    checkEnds(first, last);
    return rangeFrom(first, (last.number - first.number) / stepOf(first) + 1);
}

Item rangeFrom(const Address &first, int count)
{
    checkBytes(first);
    Item range = {first, ValueType::Hex, count};
    checkCount(range);
    return range;
}

QString rangeText(const Item &range)
{
    return range.address.text() + ".." + elementText(range, range.count - 1);
}

QString elementText(const Item &range, int index)
{
    return elementAt(range, index).text();
}

Item partOf(const Item &range, int index, int count)
{
    return {elementAt(range, index), range.type, count};
}

} // namespace host
