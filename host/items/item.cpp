// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/item.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/base/options.h"

#include <QHash>
#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <utility>

namespace host {

namespace {

const QList<std::pair<ValueType, QString>> &typeNames()
{
    static const QList<std::pair<ValueType, QString>> names = {
        {ValueType::Bool, "bool"}, {ValueType::U8, "u8"},   {ValueType::I8, "i8"},   {ValueType::U16, "u16"},
        {ValueType::I16, "i16"},   {ValueType::U32, "u32"}, {ValueType::I32, "i32"}, {ValueType::F32, "f32"},
        {ValueType::Hex, "hex"},   {ValueType::Bcd, "bcd"}, {ValueType::Str, "str"},
    };
    return names;
}

QString allTypeNames()
{
    QStringList names;
    for (const auto &entry : typeNames())
        names << entry.second;
    return names.join(' ');
}

// The types under the names that other tools have for them, for the hint behind a wrong one.
QString commonTypeName(const QString &name)
{
    static const QHash<QString, QString> names = {
        {"bit", "bool"},  {"byte", "u8"},   {"uint8", "u8"},   {"usint", "u8"},   {"int8", "i8"},
        {"sint", "i8"},   {"word", "u16"},  {"uint16", "u16"}, {"uint", "u16"},   {"int", "i16"},
        {"int16", "i16"}, {"dword", "u32"}, {"uint32", "u32"}, {"udint", "u32"},  {"dint", "i32"},
        {"int32", "i32"}, {"real", "f32"},  {"float", "f32"},  {"double", "f32"}, {"string", "str"},
        {"char", "str"},  {"text", "str"},  {"x", "hex"},      {"raw", "hex"},    {"bytes", "hex"},
    };
    return names.value(name.toLower(), name.toLower());
}

ValueType parseType(const QString &text)
{
    const QString nearest = commonTypeName(text);
    for (const auto &[type, name] : typeNames()) {
        if (name == text)
            return type;
        if (name == nearest)
            throw Failure(ExitCode::Usage, '"' + text + "\" is not a type",
                          "write " + name + " instead of " + text);
    }
    throw Failure(ExitCode::Usage, '"' + text + "\" is not a type", "types are " + allTypeNames());
}

ValueType defaultType(const Address &address)
{
    if (address.kind == AddressKind::Bit)
        return ValueType::Bool;
    if (address.kind == AddressKind::Analog)
        return ValueType::I16;
    if (address.elementWidth == 4)
        return ValueType::U32;
    return address.elementWidth == 2 ? ValueType::U16 : ValueType::U8;
}

QList<ValueType> typesOf(AddressKind kind)
{
    switch (kind) {
    case AddressKind::Bit:
        return {ValueType::Bool};
    case AddressKind::Timer:
    case AddressKind::Counter:
        return {ValueType::Bool, ValueType::U16, ValueType::I16, ValueType::Hex};
    case AddressKind::HighSpeedCounter:
        return {ValueType::U32, ValueType::I32, ValueType::Hex};
    case AddressKind::Analog:
        return {ValueType::U16, ValueType::I16, ValueType::Hex, ValueType::Bcd};
    case AddressKind::Memory:
        break;
    }
    return {ValueType::U8,  ValueType::I8,  ValueType::U16, ValueType::I16, ValueType::U32,
            ValueType::I32, ValueType::F32, ValueType::Hex, ValueType::Bcd, ValueType::Str};
}

QString typeHint(const Address &address)
{
    QStringList names;
    for (ValueType type : typesOf(address.kind))
        names << typeName(type);
    QString hint = address.text() + " can be taken as " + names.join(' ');
    const QString number = QString::number(address.number);
    if (address.kind == AddressKind::Bit)
        hint += "; its whole byte is " + areaOf(address.prefix).byteLetters() + number;
    if (address.kind == AddressKind::Memory)
        hint += "; its first bit is " + areaOf(address.prefix).letters + number + ".0";
    return hint;
}

void checkType(const Address &address, ValueType type)
{
    if (canBeTakenAs(address, type))
        return;
    throw Failure(ExitCode::Usage, address.text() + " cannot be taken as " + typeName(type),
                  typeHint(address));
}

int parseCount(const QString &text)
{
    bool isNumber = false;
    const int count = text.toInt(&isNumber);
    if (isNumber && count > 0)
        return count;
    throw Failure(ExitCode::Usage, '"' + text + "\" is not a count",
                  "a count is a whole number from 1 on, as VB100*4");
}

// Takes the station out of an item's text, if there is one.
std::optional<int> takeStation(QString &text)
{
    if (!text.contains('@'))
        return std::nullopt;
    static const QRegularExpression form("^([^@]*)@([^@:*]*)([^@]*)$");
    const QRegularExpressionMatch match = form.match(text);
    const QString before = match.captured(1);
    const QString behind = match.captured(3);
    const bool isInside = !behind.isEmpty() && (before.contains(':') || before.contains('*'));
    if (!match.hasMatch() || isInside)
        throw Failure(ExitCode::Usage, "the station is not in its place",
                      "name one station at the end, as VW10:i16*4@3, or right behind the address");
    text = before + behind;
    return parseStation(match.captured(2));
}

// How many values fit between the first one and the end of what an address can name.
int largestCount(const Item &item)
{
    const Address &address = item.address;
    if (address.isObject())
        return kMaxObjectNumber - address.number + 1;
    const int bytes = kMaxByteNumber - address.number + 1;
    return address.kind == AddressKind::Bit ? bytes * 8 - address.bit : bytes / item.valueSize();
}

} // namespace

int Item::valueSize() const
{
    switch (type) {
    case ValueType::Bool:
    case ValueType::U8:
    case ValueType::I8:
    case ValueType::Str:
        return 1;
    case ValueType::U16:
    case ValueType::I16:
        return 2;
    case ValueType::U32:
    case ValueType::I32:
    case ValueType::F32:
        return 4;
    case ValueType::Hex:
    case ValueType::Bcd:
        break;
    }
    return address.elementWidth;
}

QString Item::place() const
{
    return station ? filled("%1@%2", address.text(), *station) : address.text();
}

Item parseItem(QString text)
{
    if (text.contains(".."))
        throw Failure(ExitCode::Usage, "a range, which only dump takes", "write a count, as VB100*4");
    const std::optional<int> station = takeStation(text);
    const QString beforeCount = text.section('*', 0, 0);
    const QString type = beforeCount.section(':', 1);
    Item item = {parseAddress(addressIn(text)), ValueType::Bool, 1, station};
    item.type = beforeCount.contains(':') ? parseType(type) : defaultType(item.address);
    checkType(item.address, item.type);
    if (text.contains('*'))
        item.count = parseCount(text.section('*', 1));
    checkCount(item);
    return item;
}

QString addressIn(const QString &itemText)
{
    static const QRegularExpression ends("[:*@]");
    return itemText.section(ends, 0, 0);
}

// The option's rule: 0 is the master's own station.
int parseStation(const QString &text)
{
    bool isNumber = false;
    const int station = text.toInt(&isNumber);
    if (isNumber && station > kFirstStation && station <= kLastStation)
        return station;
    throw Failure(ExitCode::Usage, '"' + text + "\" is not a station",
                  filled("controllers have stations from %1 to %2", kFirstStation + 1, kLastStation));
}

bool canBeTakenAs(const Address &address, ValueType type)
{
    return typesOf(address.kind).contains(type);
}

void checkCount(const Item &item)
{
    const int largest = largestCount(item);
    if (item.count <= largest)
        return;
    throw Failure(ExitCode::Usage, item.address.text() + " is not followed by that many values",
                  QString("the largest count here is %1").arg(largest));
}

QString typeName(ValueType type)
{
    for (const auto &entry : typeNames())
        if (entry.first == type)
            return entry.second;
    return QString();
}

} // namespace host
