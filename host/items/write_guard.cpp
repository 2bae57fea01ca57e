// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/write_guard.h"

#include "host/base/filled.h"
#include "host/items/area.h"
#include "host/items/value.h"

#include <QString>
#include <QStringList>

#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

namespace host {

namespace {

// As many digits as every decimal number keeps that a double was made of.
constexpr int kDigits = 15;

QString withUnit(const Tag &tag, const QString &number)
{
    return tag.unit.isEmpty() ? number : number + ' ' + tag.unit;
}

QString limitText(const Tag &tag, double limit)
{
    return withUnit(tag, QString::number(limit, 'g', kDigits));
}

bool hasLimits(const Tag &tag)
{
    return tag.minimum || tag.maximum;
}

Failure outside(const Tag &tag, const QString &text)
{
    return Failure(ExitCode::Usage, text,
                   filled("%1 takes values %2, as %3 says", tag.label(), limitsText(tag), tag.definedAt));
}

void checkValue(const Tag &tag, const Value &value)
{
    const QString text = shownTexts(tag, {value}).front();
    const std::optional<double> number = shownNumber(tag, value);
    if (!number)
        throw outside(tag, text + " is no value between limits");
    if (tag.minimum && *number < *tag.minimum)
        throw outside(tag, filled("%1 is less than the minimum, %2", withUnit(tag, text),
                                  limitText(tag, *tag.minimum)));
    if (tag.maximum && *number > *tag.maximum)
        throw outside(tag, filled("%1 is more than the maximum, %2", withUnit(tag, text),
                                  limitText(tag, *tag.maximum)));
}

void checkAccess(const Tag &tag)
{
    if (tag.access == Access::ReadOnly)
        throw Failure(ExitCode::Usage, Cause::NotWritable, "the tag is only to be read",
                      filled("the access of %1 is ro in %2; rw or nothing there lets it be written",
                             tag.label(), tag.definedAt));
}

// Where an item lies: in bits of memory, or in numbers of objects. The status bits of timers and counters are
// no part of their values.
struct Stretch
{
    bool isSameAreaAs(const Stretch &other) const { return area == other.area && isStatus == other.isStatus; }
    bool touches(const Stretch &other) const
    {
        return isSameAreaAs(other) && begin < other.end && other.begin < end;
    }
    bool contains(const Stretch &other) const
    {
        return isSameAreaAs(other) && begin <= other.begin && other.end <= end;
    }

    QString area; // its letters; of a raw address, whose number is 0, the whole text
    bool isStatus;
    qint64 begin;
    qint64 end;
};

Stretch stretchOf(const Item &item)
{
    const Address &address = item.address;
    const bool isBits = item.type == ValueType::Bool;
    if (address.isObject())
        return {address.prefix, isBits, address.number, address.number + item.count};
    const bool isRaw = address.kind == AddressKind::Raw;
    const qint64 begin = qint64(address.number) * kBitsOfByte + address.bit;
    const qint64 size = isBits ? item.count : qint64(item.size()) * kBitsOfByte;
    return {isRaw ? address.prefix : areaOf(address.prefix).letters, false, begin, begin + size};
}

// The bytes of a value among those that are written to an item, which contains it.
QByteArray bytesOf(const Item &value, const Item &written, const QByteArray &data)
{
    const qint64 distance = stretchOf(value).begin - stretchOf(written).begin;
    if (value.address.isObject())
        return data.mid(int(distance) * value.valueSize(), value.valueSize());
    if (written.type != ValueType::Bool)
        return data.mid(int(distance / kBitsOfByte), value.valueSize());
    QByteArray bytes(value.valueSize(), '\0');
    for (int i = 0; i < int(bytes.size()) * kBitsOfByte; ++i)
        if (data.at(int(distance) + i) != 0)
            bytes[i / kBitsOfByte] = char(bytes.at(i / kBitsOfByte) | 1 << i % kBitsOfByte);
    return bytes;
}

// Checks those of a tag's values that are written with an item.
void checkValuesWithin(const Tag &tag, const Item &written, const QByteArray &data)
{
    const Stretch stretch = stretchOf(written);
    Tag value = tag;
    value.item.count = 1;
    for (int i = 0; i < tag.item.count; ++i) {
        value.item.address = tag.item.valueAddress(i);
        const Stretch ofValue = stretchOf(value.item);
        if (!stretch.touches(ofValue))
            continue;
        if (!stretch.contains(ofValue))
            throw outside(tag, filled("only a part of %1 is written", value.item.place()));
        checkWritable(value, bytesOf(value.item, written, data));
    }
}

} // namespace

QString limitsText(const Tag &tag)
{
    if (!hasLimits(tag))
        return QString();
    if (!tag.maximum)
        return filled("from %1 on", limitText(tag, *tag.minimum));
    const QString maximum = limitText(tag, *tag.maximum);
    return tag.minimum ? filled("from %1 to %2", QString::number(*tag.minimum, 'g', kDigits), maximum)
                       : filled("up to %1", maximum);
}

void checkWritable(const Tag &tag, const QByteArray &data)
{
    checkAccess(tag);
    if (!hasLimits(tag))
        return;
    for (const Value &value : decodeValues(tag.item, data))
        checkValue(tag, value);
}

WriteGuard::WriteGuard(const std::vector<Tag> &tags_, int usualStation_) : usualStation(usualStation_)
{
    std::copy_if(tags_.cbegin(), tags_.cend(), std::back_inserter(tags),
                 [](const Tag &tag) { return tag.access == Access::ReadOnly || hasLimits(tag); });
}

std::vector<Objection> WriteGuard::objectionsTo(const Item &item, const QByteArray &data) const
{
    const Stretch stretch = stretchOf(item);
    const int station = item.station.value_or(usualStation);
    std::vector<Objection> objections;
    for (const Tag &tag : tags) {
        if (tag.item.station.value_or(usualStation) != station || !stretch.touches(stretchOf(tag.item)))
            continue;
        try {
            checkAccess(tag);
            checkValuesWithin(tag, item, data);
        } catch (const Failure &failure) {
            objections.push_back({tag, failure});
        }
    }
    return objections;
}

} // namespace host
