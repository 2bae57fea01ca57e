// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/item.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/base/options.h"
#include "host/items/address_range.h"
#include "host/text/number_text.h"

#include <QHash>
#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

namespace host {

namespace {

const QList<std::pair<ValueType, QString>> &typeTable()
{
    static const QList<std::pair<ValueType, QString>> names = {
        {ValueType::Bool, "bool"}, {ValueType::U8, "u8"},   {ValueType::I8, "i8"},
        {ValueType::U16, "u16"},   {ValueType::I16, "i16"}, {ValueType::U32, "u32"},
        {ValueType::I32, "i32"},   {ValueType::U64, "u64"}, {ValueType::I64, "i64"},
        {ValueType::F32, "f32"},   {ValueType::F64, "f64"}, {ValueType::Hex, "hex"},
        {ValueType::Bcd, "bcd"},   {ValueType::Str, "str"}, {ValueType::String, "string"},
    };
    return names;
}

// The types under the names that other tools have for them, for the hint behind a wrong one.
QString commonTypeName(const QString &name)
{
    static const QHash<QString, QString> names = {
        {"bit", "bool"},  {"byte", "u8"},   {"uint8", "u8"},   {"usint", "u8"},  {"int8", "i8"},
        {"sint", "i8"},   {"word", "u16"},  {"uint16", "u16"}, {"uint", "u16"},  {"int", "i16"},
        {"int16", "i16"}, {"dword", "u32"}, {"uint32", "u32"}, {"udint", "u32"}, {"dint", "i32"},
        {"int32", "i32"}, {"lword", "u64"}, {"uint64", "u64"}, {"ulint", "u64"}, {"lint", "i64"},
        {"int64", "i64"}, {"real", "f32"},  {"float", "f32"},  {"lreal", "f64"}, {"double", "f64"},
        {"char", "str"},  {"text", "str"},  {"x", "hex"},      {"raw", "hex"},   {"bytes", "hex"},
    };
    return names.value(name.toLower(), name.toLower());
}

const char kSwap[] = ":swap";

// The same of a type with something behind a colon.
QString commonTypeText(const QString &text)
{
    const int end = int(text.indexOf(':'));
    return end < 0 ? commonTypeName(text) : commonTypeName(text.left(end)) + text.mid(end).toLower();
}

bool hasWords(ValueType type)
{
    switch (type) {
    case ValueType::U32:
    case ValueType::I32:
    case ValueType::U64:
    case ValueType::I64:
    case ValueType::F32:
    case ValueType::F64:
        return true;
    default:
        return false;
    }
}

const std::vector<NamedType> &namedTypes()
{
    static const std::vector<NamedType> all = [] {
        std::vector<NamedType> types;
        for (const auto &[type, name] : typeTable()) {
            types.push_back({type, false});
            if (hasWords(type))
                types.push_back({type, true});
        }
        return types;
    }();
    return all;
}

// The types that may have ":swap" behind them.
QStringList typesWithWords()
{
    QStringList names;
    for (const auto &[type, name] : typeTable())
        if (hasWords(type))
            names << name;
    return names;
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
    case AddressKind::Raw:
        break;
    }
    return {ValueType::U8,  ValueType::I8,  ValueType::U16, ValueType::I16,   ValueType::U32,
            ValueType::I32, ValueType::U64, ValueType::I64, ValueType::F32,   ValueType::F64,
            ValueType::Hex, ValueType::Bcd, ValueType::Str, ValueType::String};
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

// Takes the type behind an address, or what the address is without one.
void takeType(Item &item, const QString &text)
{
    NamedType named = {defaultType(item.address), false};
    if (text.contains(':'))
        named = parseType(text.section(':', 1));
    checkType(item.address, named.type);
    item.type = named.type;
    item.isSwapped = named.isSwapped;
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
    if (!match.hasMatch() || isInside || isRange(match.captured(2)))
        throw Failure(ExitCode::Usage, "the station is not in its place",
                      "name one station at the end, as VW10:i16*4@3, or right behind the address");
    text = before + behind;
    return parseStation(match.captured(2));
}

// How many values fit between the first one and the end of what an address can name.
int largestCount(const Item &item)
{
    const Address &address = item.address;
    if (address.kind == AddressKind::Raw)
        return item.valueSize() > kWidestUnit ? kMaxRawCount / item.valueSize() : kMaxRawCount;
    if (address.isObject())
        return kMaxObjectNumber - address.number + 1;
    const int bytes = kMaxByteNumber - address.number + 1;
    return address.kind == AddressKind::Bit ? bytes * 8 - address.bit : item.countOf(bytes);
}

// Values that end before or behind the last byte of a range leave some of its memory unnamed, or reach over
// more than was named.
void checkFills(const Item &item, const AddressRange &range)
{
    const int width = item.address.elementWidth;
    const int bytes = range.count * width;
    if (item.count > 0 && item.size() == bytes)
        return;
    Item longer = item;
    ++longer.count;
    const QString longerEnd = range.at(longer.size() / width - 1).text();
    const QString shorterEnd = range.at(item.size() / width - 1).text();
    throw Failure(ExitCode::Usage,
                  filled("%1..%2 has %3, no whole number of values of type %4", range.first.text(),
                         range.at(range.count - 1).text(), counted(bytes, "byte"), item.typeText()),
                  item.count > 0 ? filled("end it with %1 or %2", shorterEnd, longerEnd)
                                 : "end it with " + longerEnd);
}

// Values of memory fill the bytes of a range, whatever their width; bits and objects are counted.
Item itemOfRange(const QString &text, std::optional<int> station)
{
    const QString place = addressIn(text);
    if (text.contains('*'))
        throw Failure(ExitCode::Usage, "a range needs no count", "write " + text.section('*', 0, 0));
    if (!isRange(place))
        throw Failure(ExitCode::Usage, "the type is not in its place",
                      "name it behind the range, as VB0..VB15:hex");
    const AddressRange range = parseAddressRange(place);
    Item item = {range.first, ValueType::Bool, range.count, station};
    takeType(item, text);
    if (item.address.kind == AddressKind::Memory || item.address.kind == AddressKind::Analog) {
        item.count = item.countOf(range.count * item.address.elementWidth);
        checkFills(item, range);
    }
    checkCount(item);
    return item;
}

} // namespace

int Item::valueSize() const
{
    switch (type) {
    case ValueType::Bool:
    case ValueType::U8:
    case ValueType::I8:
    case ValueType::Str:
    case ValueType::String:
        return 1;
    case ValueType::U16:
    case ValueType::I16:
        return 2;
    case ValueType::U32:
    case ValueType::I32:
    case ValueType::F32:
        return 4;
    case ValueType::U64:
    case ValueType::I64:
    case ValueType::F64:
        return 8;
    case ValueType::Hex:
    case ValueType::Bcd:
        break;
    }
    return address.elementWidth;
}

Address Item::valueAddress(int index) const
{
    Address result = address;
    if (address.kind == AddressKind::Bit) {
        const int bit = address.bit + index;
        result.number += bit / 8;
        result.bit = bit % 8;
    } else {
        result.number += address.isObject() ? index : index * valueSize();
    }
    return result;
}

QString Item::place() const
{
    return station ? filled("%1@%2", address.text(), *station) : address.text();
}

Item parseItem(QString text)
{
    const std::optional<int> station = takeStation(text);
    if (isRange(text))
        return itemOfRange(text, station);
    const QString beforeCount = text.section('*', 0, 0);
    Item item = {parseAddress(addressIn(text)), ValueType::Bool, 1, station};
    takeType(item, beforeCount);
    if (text.contains('*'))
        item.count = parseCount(text.section('*', 1));
    else
        checkNeedsNoCount(item.type, beforeCount);
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
    if (item.type == ValueType::String && item.count > kLongestString)
        throw Failure(ExitCode::Usage, filled("a string has no room for %1 characters", item.count),
                      filled("the controller's strings have up to %1", kLongestString));
    const int largest = largestCount(item);
    if (item.count <= largest)
        return;
    throw Failure(ExitCode::Usage, item.address.text() + " is not followed by that many values",
                  QString("the largest count here is %1").arg(largest));
}

void checkNeedsNoCount(ValueType type, const QString &item)
{
    if (type == ValueType::String)
        throw Failure(ExitCode::Usage, "the string's room is not named",
                      filled("write %1*20 when there is room for 20 characters", item));
}

QString NamedType::text() const
{
    return isSwapped ? typeName(type) + kSwap : typeName(type);
}

QString typeName(ValueType type)
{
    for (const auto &entry : typeTable())
        if (entry.first == type)
            return entry.second;
    return QString();
}

QStringList typeNames()
{
    QStringList names;
    for (const auto &entry : typeTable())
        names << entry.second;
    return names;
}

QStringList typeTexts()
{
    QStringList texts;
    for (const NamedType &type : namedTypes())
        texts << type.text();
    return texts;
}

bool isText(ValueType type)
{
    return type == ValueType::Str || type == ValueType::String;
}

bool hasNumbers(ValueType type)
{
    return type != ValueType::Bool && type != ValueType::Hex && !isText(type);
}

bool isFloat(ValueType type)
{
    return type == ValueType::F32 || type == ValueType::F64;
}

NamedType parseType(const QString &text)
{
    const QString nearest = commonTypeText(text);
    for (const NamedType &type : namedTypes()) {
        if (type.text() == text)
            return type;
        if (type.text() == nearest)
            throw Failure(ExitCode::Usage, '"' + text + "\" is not a type",
                          "write " + nearest + " instead of " + text);
    }
    const QString swappedTypes = typesWithWords().join(' ');
    for (const QString &name : typeNames())
        if (text == name + kSwap)
            throw Failure(ExitCode::Usage, "values of type " + name + " have no words to swap",
                          filled("%1 stands behind %2", kSwap, swappedTypes));
    throw Failure(ExitCode::Usage, '"' + text + "\" is not a type",
                  filled("types are %1; %2 may stand behind %3", typeNames().join(' '), kSwap, swappedTypes));
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

} // namespace host
