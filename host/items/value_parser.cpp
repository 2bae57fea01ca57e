// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/value_parser.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/items/value.h"
#include "host/text/number_text.h"

#include <QHash>
#include <QRegularExpression>
#include <QString>

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

namespace host {

namespace {

Failure bad(const QString &complaint, const QString &hint)
{
    return Failure(ExitCode::Usage, complaint, hint);
}

QString inQuotes(const QString &text)
{
    return '"' + text + '"';
}

QByteArray bigEndian(quint64 number, int size)
{
    QByteArray bytes;
    for (int i = size - 1; i >= 0; --i)
        bytes += char(number >> (8 * i) & 0xff);
    return bytes;
}

QByteArray encodeBit(const QString &text)
{
    static const QHash<QString, char> names = {{"0", 0}, {"off", 0}, {"false", 0},
                                               {"1", 1}, {"on", 1},  {"true", 1}};
    if (names.contains(text))
        return QByteArray(1, names.value(text));
    const QString nearest = text.toLower();
    throw bad(inQuotes(text) + " is not a bit", names.contains(nearest)
                                                    ? "write " + nearest + " instead of " + text
                                                    : QString("bits are 0 off false and 1 on true"));
}

// A whole number as it was written: 64 bits are not enough for the sign beside all of u64.
struct Whole
{
    bool isNegative;
    std::optional<quint64> magnitude; // none: of more than 64 bits
};

struct Range
{
    qint64 least;
    quint64 most;

    bool has(const Whole &number) const
    {
        const quint64 largest = number.isNegative ? 0 - quint64(least) : most;
        return number.magnitude && *number.magnitude <= largest;
    }

    QString nearestTo(const Whole &number) const
    {
        return number.isNegative ? QString::number(least) : QString::number(most);
    }
};

template <typename Number> Range rangeOf()
{
    return {std::numeric_limits<Number>::min(), quint64(std::numeric_limits<Number>::max())};
}

Range rangeOf(const Item &item)
{
    switch (item.type) {
    case ValueType::U8:
        return rangeOf<quint8>();
    case ValueType::I8:
        return rangeOf<qint8>();
    case ValueType::U16:
        return rangeOf<quint16>();
    case ValueType::I16:
        return rangeOf<qint16>();
    case ValueType::U32:
        return rangeOf<quint32>();
    case ValueType::I32:
        return rangeOf<qint32>();
    case ValueType::U64:
        return {0, std::numeric_limits<quint64>::max()};
    case ValueType::I64:
        return rangeOf<qint64>();
    default: // bcd: two decimal digits per byte
        return {0, quint64(std::pow(100, item.valueSize())) - 1};
    }
}

std::optional<quint64> magnitudeIn(const QString &digits, int base)
{
    bool isRepresentable = false;
    const quint64 magnitude = digits.toULongLong(&isRepresentable, base);
    return isRepresentable ? std::optional<quint64>(magnitude) : std::nullopt;
}

// Advises on a text that is no whole number, by what it was probably meant to be.
QString numberHint(const Item &item, const QString &text)
{
    static const QRegularExpression based("^(16|2)#([0-9a-fA-F]+)$");
    static const QRegularExpression hexDigits("^[0-9a-fA-F]+$");
    static const QRegularExpression fraction("^[+-]?[0-9]*\\.[0-9]*$");
    if (text.startsWith("0b", Qt::CaseInsensitive))
        return "0b begins a number of 0 and 1 only, 0x one of hexadecimal digits";
    const QRegularExpressionMatch match = based.match(text);
    const QString digits = match.hasMatch() ? match.captured(2) : text;
    const int base = match.captured(1) == "2" ? 2 : 16;
    const bool isInRange = rangeOf(item).has({false, magnitudeIn(digits, base)});
    if (isInRange && (match.hasMatch() || hexDigits.match(text).hasMatch()))
        return QString("write %1%2 instead of %3").arg(base == 2 ? "0b" : "0x", digits, text);
    if (fraction.match(text).hasMatch())
        return "this type holds whole numbers; fractions need f32 or f64";
    return "whole numbers are written 10, -10, 0x0a or 0b1010, with commas between";
}

Whole parseInteger(const Item &item, const QString &text)
{
    static const QRegularExpression form("^([+-]?)(0[xX][0-9a-fA-F]+|0[bB][01]+|[0-9]+)$");
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        throw bad(inQuotes(text) + " is not a whole number", numberHint(item, text));
    const QString digits = match.captured(2).toLower();
    const int base = digits.startsWith("0x") ? 16 : digits.startsWith("0b") ? 2 : 10;
    return {match.captured(1) == "-", magnitudeIn(base == 10 ? digits : digits.mid(2), base)};
}

// Advises on a number that does not fit: the nearest one, or, when it is negative and the type has no sign,
// the narrowest type that holds it.
QString rangeHint(Item item, const QString &text, const Whole &number)
{
    QString hint = "the nearest value is " + rangeOf(item).nearestTo(number);
    if (!number.isNegative || !typeName(item.type).startsWith('u'))
        return hint;
    for (const ValueType type : {ValueType::I8, ValueType::I16, ValueType::I32, ValueType::I64}) {
        item.type = type;
        if (canBeTakenAs(item.address, type) && rangeOf(item).has(number))
            return hint + "; for " + text + " there is " + typeName(type);
    }
    return hint;
}

// Returns the magnitude of a number that the type can hold.
quint64 magnitudeOf(const Item &item, const QString &text, const Whole &number)
{
    const Range range = rangeOf(item);
    if (range.has(number))
        return *number.magnitude;
    throw bad(filled("%1 is too %2 for %3: %4 to %5", text, number.isNegative ? "small" : "large",
                     typeName(item.type), range.least, range.most),
              rangeHint(item, text, number));
}

QByteArray encodeInteger(const Item &item, const QString &text)
{
    const Whole number = parseInteger(item, text);
    const quint64 magnitude = magnitudeOf(item, text, number);
    return bigEndian(number.isNegative ? 0 - magnitude : magnitude, item.valueSize());
}

QByteArray encodeBcd(const Item &item, const QString &text)
{
    const quint64 number = magnitudeOf(item, text, parseInteger(item, text));
    return QByteArray::fromHex(QByteArray::number(number).rightJustified(2 * item.valueSize(), '0'));
}

template <typename Number> Failure beyondFloat(const Item &item, const QString &text)
{
    const QString type = typeName(item.type);
    const double number = text.toDouble();
    if (std::abs(number) < 1)
        return bad(text + " is too near to 0 for " + type, "the nearest value is 0");
    const QString largest = valueText(std::numeric_limits<Number>::max());
    const bool isNegative = text.startsWith('-');
    return bad(
        QString("%1 is too %2 for %3: -%4 to %4").arg(text, isNegative ? "small" : "large", type, largest),
        "the nearest value is " + (isNegative ? "-" + largest : largest));
}

// The text becomes a float in one step: by way of a double some numbers would be rounded twice.
template <typename Number, typename Bits> QByteArray encodeFloat(const Item &item, const QString &text)
{
    static const QRegularExpression form(
        "^(-?(?:inf|nan)|([+-]?)(?:[0-9]+\\.?[0-9]*|\\.[0-9]+)(?:[eE][+-]?[0-9]+)?)$");
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        throw bad(inQuotes(text) + " is not a number", "numbers are written 1.5, -2e3, inf or nan");
    const QByteArray digits = (match.captured(2) == "+" ? text.mid(1) : text).toLatin1();
    Number number = 0;
    const char *end = digits.constData() + digits.size();
    if (std::from_chars(digits.constData(), end, number).ec != std::errc())
        throw beyondFloat<Number>(item, text);
    Bits bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bigEndian(bits, int(sizeof bits));
}

QString hexHint(const Item &item)
{
    const int digits = 2 * item.valueSize();
    return filled("hex is %1 digits for each value of %2, as %3", digits, item.address.text(),
                  "0x" + QString("1a2b3c4d").left(digits));
}

QByteArray encodeHex(const Item &item, const QString &text)
{
    static const QRegularExpression form("^(?:0[xX])?((?:[0-9a-fA-F]{2})+)$");
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        throw bad(inQuotes(text) + " is not a row of bytes in hex", hexHint(item));
    QByteArray bytes = QByteArray::fromHex(match.captured(1).toLatin1());
    if (bytes.size() % item.valueSize() != 0)
        throw bad(inQuotes(text) + " is no whole number of values", hexHint(item));
    return bytes;
}

QByteArray encodeValue(const Item &item, const QString &text)
{
    switch (item.type) {
    case ValueType::Bool:
        return encodeBit(text);
    case ValueType::F32:
        return encodeFloat<float, quint32>(item, text);
    case ValueType::F64:
        return encodeFloat<double, quint64>(item, text);
    case ValueType::Hex:
        return encodeHex(item, text);
    case ValueType::Bcd:
        return encodeBcd(item, text);
    default:
        return encodeInteger(item, text);
    }
}

// The character at the start of a text, and how many letters name it.
std::pair<char, int> takeCharacter(const QString &text)
{
    static const QRegularExpression escape("^\\\\(?:([\"\\\\])|x([0-9a-fA-F]{2}))");
    const QChar letter = text.front();
    if (letter != '\\') {
        if (letter < ' ' || letter > '~')
            throw bad(QString(letter) + " is no character of plain ASCII",
                      "write other characters as the bytes that the display shows them for, \\xNN each");
        return {letter.toLatin1(), 1};
    }
    const QRegularExpressionMatch match = escape.match(text);
    if (!match.hasMatch())
        throw bad(text.left(2) + " means nothing",
                  "write \\\\ for \\, \\\" for \" and \\xNN for any other byte");
    if (!match.captured(1).isEmpty())
        return {match.captured(1).front().toLatin1(), 2};
    return {char(match.captured(2).toInt(nullptr, 16)), 4};
}

QByteArray encodeCharacters(QString text)
{
    const bool isQuoted = text.startsWith('"');
    if (isQuoted)
        text.remove(0, 1);
    QByteArray bytes;
    while (!text.isEmpty() && !(isQuoted && text.startsWith('"'))) {
        const auto [character, length] = takeCharacter(text);
        bytes += character;
        text.remove(0, length);
    }
    if (isQuoted && text != "\"")
        throw bad("the quotes do not stand around the whole text", "write \\\" for a quote within it");
    if (bytes.isEmpty())
        throw bad("the text is empty", "a text is one character or more; \\x00 is the character 0");
    return bytes;
}

// The length byte and so many characters. What lies behind them in the string's room is not written.
QByteArray encodeString(const Item &item, const QString &text)
{
    if (text.isEmpty())
        throw bad("the text is empty", "write \"\", with the quotes, for a string without a character");
    const QByteArray characters = text == "\"\"" ? QByteArray() : encodeCharacters(text);
    if (characters.size() > item.count)
        throw bad(filled("the text has %1, and the string has room for %2",
                         counted(characters.size(), "character"), item.count),
                  "shorten it; what stands behind * is the room that the program gives the string");
    return char(characters.size()) + characters;
}

} // namespace

QByteArray encodeValues(const Item &item, const QString &text)
{
    if (item.type == ValueType::Str)
        return encodeCharacters(text);
    if (item.type == ValueType::String)
        return encodeString(item, text);
    QByteArray bytes;
    for (const QString &value : text.split(','))
        bytes += encodeValue(item, value.trimmed());
    return item.isSwapped ? wordsSwapped(bytes, item.valueSize()) : bytes;
}

} // namespace host
