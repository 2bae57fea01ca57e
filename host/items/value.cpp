// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/value.h"

#include "host/base/failure.h"
#include "host/text/number_text.h"

#include <QStringList>
#include <QtEndian>

#include <cstring>

namespace host {

namespace {

template <typename Number> qint64 bigEndian(const char *bytes)
{
    return qFromBigEndian<Number>(bytes);
}

float floatAt(const char *bytes)
{
    const quint32 bits = qFromBigEndian<quint32>(bytes);
    float value;
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
        throw Failure(ExitCode::Usage, digits + " is not BCD", "read it with :hex to see what it is");
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
    case ValueType::F32:
        return floatAt(bytes);
    case ValueType::Bcd:
        return bcdAt(bytes, item.valueSize());
    case ValueType::Hex:
    case ValueType::Str: // never one by one
        break;
    }
    return hexAt(bytes, item.valueSize());
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
    QString operator()(float number) const { return shortestText(number); }
    QString operator()(const Characters &text) const { return quoted(text.bytes); }
    QString operator()(const HexDigits &hex) const { return hex.digits; }
};

} // namespace

std::vector<Value> decodeValues(const Item &item, const QByteArray &data)
{
    if (item.type == ValueType::Str)
        return {Characters{data}};
    std::vector<Value> values;
    values.reserve(size_t(item.count));
    const char *bytes = data.constData();
    for (int i = 0; i < item.count; ++i, bytes += item.valueSize())
        values.push_back(valueAt(item, bytes));
    return values;
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
