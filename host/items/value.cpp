// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/value.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/text/number_text.h"

#include <QStringList>
#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace host {

namespace {

template <typename Number> qint64 bigEndian(const char *bytes)
{
    return qFromBigEndian<Number>(bytes);
}

template <typename Number, typename Bits> Number floatAt(const char *bytes)
{
    const Bits bits = qFromBigEndian<Bits>(bytes);
    Number value;
    static_assert(sizeof value == sizeof bits, "the bits are those of the number");
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

HexDigits hexAt(const char *bytes, int size)
{
    return {QString::fromLatin1(QByteArray(bytes, size).toHex())};
}

qint64 bcdAt(const char *bytes, int size)
{
    const QString digits = hexAt(bytes, size).digits;
    bool isDecimal = false;
    const qint64 value = digits.toLongLong(&isDecimal);
    if (!isDecimal)
        throw Failure(ExitCode::Usage, Cause::NotBcd, "0x" + digits + " is not BCD",
                      "read it with :hex to see what it is");
    return value;
}

Value valueAt(const Item &item, const char *bytes)
{
    switch (item.type) {
    case ValueType::Bool:
        return *bytes != 0;
    case ValueType::U8:
        return bigEndian<quint8>(bytes);
    case ValueType::I8:
        return bigEndian<qint8>(bytes);
    case ValueType::U16:
        return bigEndian<quint16>(bytes);
    case ValueType::I16:
        return bigEndian<qint16>(bytes);
    case ValueType::U32:
        return bigEndian<quint32>(bytes);
    case ValueType::I32:
        return bigEndian<qint32>(bytes);
    case ValueType::U64:
        return qFromBigEndian<quint64>(bytes);
    case ValueType::I64:
        return bigEndian<qint64>(bytes);
    case ValueType::F32:
        return floatAt<float, quint32>(bytes);
    case ValueType::F64:
        return floatAt<double, quint64>(bytes);
    case ValueType::Bcd:
        return bcdAt(bytes, item.valueSize());
    case ValueType::Hex:
    case ValueType::Str: // never one by one
    case ValueType::String:
        break;
    }
    return hexAt(bytes, item.valueSize());
}

// The length byte comes first; what lies behind so many characters is none of the text.
Characters stringIn(const QByteArray &data, int room)
{
    const int length = uchar(data.at(0));
    if (length > room)
        throw Failure(
            ExitCode::Usage, Cause::NotString,
            filled("the length byte is %1, and the string has room for %2", length,
                   counted(room, "character")),
            "name the room that the program gives it, or read its bytes with :hex to see what they are");
    return {data.mid(1, length)};
}

QString characterText(char character)
{
    const uchar code = uchar(character);
    if (character == '"' || character == '\\')
        return QString("\\") + character;
    if (code < 0x20 || code > 0x7e)
        return QString("\\x%1").arg(uint(code), 2, 16, QChar('0'));
    return QString(QChar(code));
}

QString quoted(const QByteArray &bytes)
{
    QString text = "\"";
    for (char character : bytes)
        text += characterText(character);
    return text + '"';
}

struct Writer
{
    QString operator()(bool bit) const { return bit ? "1" : "0"; }
    QString operator()(qint64 number) const { return QString::number(number); }
    QString operator()(quint64 number) const { return QString::number(number); }
    QString operator()(float number) const { return shortestText(number); }
    QString operator()(double number) const { return shortestText(number); }
    QString operator()(const Characters &text) const { return quoted(text.bytes); }
    QString operator()(const HexDigits &hex) const { return "0x" + hex.digits; }
};

} // namespace

std::vector<Value> decodeValues(const Item &item, const QByteArray &data)
{
    if (item.type == ValueType::Str)
        return {Characters{data}};
    if (item.type == ValueType::String)
        return {stringIn(data, item.count)};
    std::vector<Value> values;
    values.reserve(size_t(item.count));
    const QByteArray ordered = item.isSwapped ? wordsSwapped(data, item.valueSize()) : data;
    const char *bytes = ordered.constData();
    for (int i = 0; i < item.count; ++i, bytes += item.valueSize())
        values.push_back(valueAt(item, bytes));
    return values;
}

QByteArray wordsSwapped(QByteArray data, int groupSize)
{
    constexpr int kWord = 2;
    for (auto group = data.begin(); group != data.end(); group += groupSize) {
        std::reverse(group, group + groupSize);
        for (auto word = group; word != group + groupSize; word += kWord)
            std::reverse(word, word + kWord);
    }
    return data;
}

QString valueText(const Value &value)
{
    return std::visit(Writer(), value);
}

QString valuesText(const std::vector<Value> &values)
{
    QStringList texts;
    for (const Value &value : values)
        texts << valueText(value);
    return texts.join(' ');
}

} // namespace host
