// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/address.h"

#include "host/base/failure.h"

#include <QHash>
#include <QList>
#include <QRegularExpression>

#include <algorithm>

namespace host {

namespace {

const char kAreasHint[] = "areas are I Q V M SM S (bits, as V10.3, or with B, W or D, as VB100), AIW, AQW, "
                          "T, C and HC";

// An address text taken apart, before it is known whether it means anything.
struct Parts
{
    QString prefix;
    quint64 number;
    QString bit; // empty without a dot
};

bool isBitArea(const QString &prefix)
{
    return QStringList({"I", "Q", "V", "M", "SM", "S"}).contains(prefix);
}

bool isMemoryPrefix(const QString &prefix)
{
    return prefix.size() > 1 && QString("BWD").contains(prefix.back()) && isBitArea(prefix.chopped(1));
}

bool isAnalog(const QString &prefix)
{
    return prefix == "AIW" || prefix == "AQW";
}

bool isKnown(const QString &prefix)
{
    return isBitArea(prefix) || isMemoryPrefix(prefix) || isAnalog(prefix) ||
           QStringList({"T", "C", "HC"}).contains(prefix);
}

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

bool takeApart(const QString &text, Parts &parts)
{
    static const QRegularExpression form("^\\s*([A-Za-z]+)\\s*([0-9]{1,18})(?:\\.([0-9]+))?\\s*$");
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return false;
    parts = {match.captured(1), match.captured(2).toULongLong(), match.captured(3)};
    return true;
}

int elementWidth(const QString &prefix)
{
    if (prefix == "HC" || prefix.endsWith('D'))
        return 4;
    const bool isWord = prefix.endsWith('W') || prefix == "T" || prefix == "C";
    return isWord ? 2 : 1;
}

AddressKind kindOf(const QString &prefix)
{
    static const QHash<QString, AddressKind> kinds = {{"AIW", AddressKind::Analog},
                                                      {"AQW", AddressKind::Analog},
                                                      {"T", AddressKind::Timer},
                                                      {"C", AddressKind::Counter},
                                                      {"HC", AddressKind::HighSpeedCounter}};
    return kinds.value(prefix, isBitArea(prefix) ? AddressKind::Bit : AddressKind::Memory);
}

int numberWithin(const Address &address, quint64 number)
{
    const int largest = address.isObject() ? kMaxObjectNumber : kMaxByteNumber - address.elementWidth + 1;
    const int within = int(std::min<quint64>(number, quint64(largest)));
    return address.kind == AddressKind::Analog ? within & ~1 : within;
}

Address makeAddress(const QString &prefix, quint64 number, int bit)
{
    Address address = {kindOf(prefix), prefix, 0, bit, elementWidth(prefix)};
    address.number = numberWithin(address, number);
    return address;
}

Address makeBitAddress(const QString &area, const Parts &parts)
{
    return makeAddress(area, parts.number, std::min(parts.bit.toInt(), 7));
}

// The valid addresses nearest to what was written; just that address when it was valid already.
QList<Address> nearest(const Parts &parts)
{
    const QString prefix = commonName(parts.prefix.toUpper());
    if (!isKnown(prefix))
        return {};
    const bool hasBit = !parts.bit.isEmpty();
    if (hasBit && (isBitArea(prefix) || isMemoryPrefix(prefix)))
        return {makeBitAddress(isBitArea(prefix) ? prefix : prefix.chopped(1), parts)};
    if (isBitArea(prefix))
        return {makeAddress(prefix + 'B', parts.number, 0), makeAddress(prefix, parts.number, 0)};
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
    const QString start = prefix + QString::number(number);
    return kind == AddressKind::Bit ? start + '.' + QString::number(bit) : start;
}

bool Address::isObject() const
{
    return kind == AddressKind::Timer || kind == AddressKind::Counter ||
           kind == AddressKind::HighSpeedCounter;
}

Address parseAddress(const QString &text)
{
    const QString complaint = "not an address of the controller";
    Parts parts;
    if (!takeApart(text, parts))
        throw Failure(ExitCode::Usage, complaint,
                      QString("an address is letters and a number; ") + kAreasHint);
    const QList<Address> addresses = nearest(parts);
    if (addresses.isEmpty())
        throw Failure(ExitCode::Usage, complaint, kAreasHint);
    if (addresses.first().text() != text)
        throw Failure(ExitCode::Usage, complaint,
                      "write " + textsOf(addresses).join(" or ") + " instead of " + text);
    return addresses.first();
}

QStringList nearestAddresses(const QString &text)
{
    Parts parts;
    return takeApart(text, parts) ? textsOf(nearest(parts)) : QStringList();
}

Address firstAddress(const Address &like)
{
    return makeAddress(like.prefix, 0, 0);
}

Address lastAddress(const Address &like)
{
    return makeAddress(like.prefix, kMaxByteNumber, like.kind == AddressKind::Bit ? 7 : 0);
}

} // namespace host
