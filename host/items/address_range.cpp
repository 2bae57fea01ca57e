// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/address_range.h"

#include "host/base/failure.h"
#include "host/base/filled.h"

#include <QRegularExpression>

namespace host {

namespace {

const char kDots[] = "..";
// How far the next element is away, in the numbers of placeOf().
int stepOf(const Address &address)
{
    const bool isCounted = address.isObject() || address.kind == AddressKind::Bit;
    return isCounted ? 1 : address.elementWidth;
}

int placeOf(const Address &address)
{
    return address.kind == AddressKind::Bit ? address.number * kBitsOfByte + address.bit : address.number;
}

Address addressAt(const Address &like, int place)
{
    Address address = like;
    const bool isBit = like.kind == AddressKind::Bit;
    address.number = isBit ? place / kBitsOfByte : place;
    address.bit = isBit ? place % kBitsOfByte : 0;
    return address;
}

// The address of the first one's area that is most like the last one.
Address inAreaOf(const Address &first, const Address &last)
{
    Address address = first;
    address.number = last.number;
    if (first.kind == AddressKind::Bit)
        address.bit = last.kind == AddressKind::Bit ? last.bit : kBitsOfByte - 1;
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
    static const QRegularExpression number("^[0-9]+(\\.[0-9]+)?$");
    return parseEnd(number.match(text).hasMatch() ? first.prefix + text : text);
}

// Both ends must name elements of the same width in the same area, the last one not before the first.
void checkEnds(const Address &first, const Address &last)
{
    const QString start = first.text() + kDots;
    if (last.prefix != first.prefix)
        throw Failure(ExitCode::Usage,
                      QString("%1 and %2 are not in the same area").arg(first.text(), last.text()),
                      "write " + start + inAreaOf(first, last).text());
    const int distance = placeOf(last) - placeOf(first);
    if (distance < 0)
        throw Failure(ExitCode::Usage, last.text() + " lies before " + first.text(),
                      "write " + last.text() + kDots + first.text());
    if (const int excess = distance % stepOf(first))
        throw Failure(
            ExitCode::Usage,
            QString("%1 begins inside another element counted from %2").arg(last.text(), first.text()),
            "write " + start + addressAt(first, placeOf(last) - excess).text());
}

} // namespace

Address AddressRange::at(int index) const
{
    return addressAt(first, placeOf(first) + index * stepOf(first));
}

bool isRange(const QString &text)
{
    return text.contains(kDots);
}

AddressRange parseAddressRange(const QString &text)
{
    const int dots = int(text.indexOf(kDots));
    if (dots < 0)
        throw Failure(ExitCode::Usage, text + " is not a range",
                      "a range is FIRST..LAST, as VB0..VB4095 or MB0..31");
    const Address first = parseEnd(text.left(dots));
    const Address last = parseLast(text.mid(dots + 2), first);
    checkEnds(first, last);
    return {first, (placeOf(last) - placeOf(first)) / stepOf(first) + 1};
}

} // namespace host
