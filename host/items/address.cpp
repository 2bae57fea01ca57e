// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/address.h"

#include "host/base/failure.h"

#include <QHash>
#include <QList>
#include <QRegularExpression>

#include <algorithm>
#include <optional>

namespace host {

namespace {

constexpr int kLastBit = 7;

// The sentence that names all areas: "areas are I Q ... (bits, ...), AIW, ..., C and HC".
QString areasHint()
{
    QStringList withBits, others;
    for (const Area &area : areas())
        (area.hasBits() ? withBits : others) << area.letters;
    const QString last = others.takeLast();
    return "areas are " + withBits.join(' ') + " (bits, as V10.3, or with B, W or D, as VB100), " +
           others.join(", ") + " and " + last;
}

// An address text split at its letters, before it is known whether these mean anything.
struct Parts
{
    QString prefix;
    quint64 number;
    QString bit; // empty without a dot
};

// What people write who come from a related notation, German mnemonics included.
QString commonName(const QString &prefix)
{
    static const QHash<QString, QString> names = {
        {"AI", "AIW"}, {"AQ", "AQW"}, {"AE", "AIW"}, {"AEW", "AIW"}, {"AA", "AQW"}, {"AAW", "AQW"},
        {"E", "I"},    {"EB", "IB"},  {"EW", "IW"},  {"ED", "ID"},   {"A", "Q"},    {"AB", "QB"},
        {"AW", "QW"},  {"AD", "QD"},  {"Z", "C"},    {"HSC", "HC"},  {"HZ", "HC"},  {"TIM", "T"},
        {"CNT", "C"},  {"VX", "V"},   {"VBIT", "V"}, {"MX", "M"},    {"IX", "I"},   {"QX", "Q"},
        {"DBB", "VB"}, {"DBW", "VW"}, {"DBD", "VD"}, {"DBX", "V"},   {"SMX", "SM"}, {"VR", "VD"},
    };
    return names.value(prefix, prefix);
}

bool split(const QString &text, Parts &parts)
{
    static const QRegularExpression form("^\\s*([A-Za-z]+)\\s*([0-9]{1,18})(?:\\.([0-9]+))?\\s*$");
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return false;
    parts = {match.captured(1), match.captured(2).toULongLong(), match.captured(3)};
    return true;
}

int numberWithin(const Address &address, quint64 number)
{
    const int largest = address.isObject() ? kMaxObjectNumber : kMaxByteNumber - address.elementWidth + 1;
    const int within = int(std::min<quint64>(number, quint64(largest)));
    return address.kind == AddressKind::Analog ? within & ~1 : within;
}

// The address that the letters and a number make; one beyond the end becomes the last one.
Address makeAddress(const QString &prefix, quint64 number, int bit)
{
    const AreaElement element = *elementNamed(prefix);
    Address address = {element.kind, prefix, 0, bit, element.width};
    address.number = numberWithin(address, number);
    return address;
}

// The valid addresses nearest to what was written; just that address when it was valid already. A bit behind
// the letters of a width is a bit of their area, and without one the letters of bits may mean bytes.
QList<Address> nearest(const Parts &parts)
{
    const QString prefix = commonName(parts.prefix.toUpper());
    const std::optional<AreaElement> element = elementNamed(prefix);
    if (!element)
        return {};
    const Area &area = element->area;
    if (!parts.bit.isEmpty() && area.hasBits())
        return {makeAddress(area.letters, parts.number, std::min(parts.bit.toInt(), kLastBit))};
    if (element->kind == AddressKind::Bit)
        return {makeAddress(area.byteLetters(), parts.number, 0), makeAddress(prefix, parts.number, 0)};
    return {makeAddress(prefix, parts.number, 0)};
}

QStringList textsOf(const QList<Address> &addresses)
{
    QStringList texts;
    for (const Address &address : addresses)
        texts << address.text();
    return texts;
}

} // namespace

QString Address::text() const
{
    if (kind == AddressKind::Raw)
        return prefix;
    const QString start = prefix + QString::number(number);
    return kind == AddressKind::Bit ? start + '.' + QString::number(bit) : start;
}

Address parseAddress(const QString &text)
{
    if (text.contains('@'))
        throw Failure(ExitCode::Usage, "no station can stand here", "name it with --station");
    const QString complaint = "not an address of the controller";
    Parts parts;
    if (!split(text, parts))
        throw Failure(ExitCode::Usage, complaint, "an address is letters and a number; " + areasHint());
    const QList<Address> addresses = nearest(parts);
    if (addresses.isEmpty())
        throw Failure(ExitCode::Usage, complaint, areasHint());
    if (addresses.first().text() != text) {
        const QString limits = parts.bit.toDouble() > kLastBit ? "bits are 0 to 7: " : "";
        throw Failure(ExitCode::Usage, complaint,
                      limits + "write " + textsOf(addresses).join(" or ") + " instead of " + text);
    }
    return addresses.first();
}

QStringList nearestAddresses(const QString &text)
{
    Parts parts;
    return split(text, parts) ? textsOf(nearest(parts)) : QStringList();
}

Address firstAddress(const Address &like)
{
    return makeAddress(like.prefix, 0, 0);
}

Address lastAddress(const Address &like)
{
    return makeAddress(like.prefix, kMaxByteNumber, like.kind == AddressKind::Bit ? kLastBit : 0);
}

} // namespace host
