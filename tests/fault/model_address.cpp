// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "model_address.h"

#include <cstring>

namespace {

// Every area with the letters that may follow its name; a blank stands for none.
struct AreaName
{
    const char *name;
    const char *widths;
    int code;
};

const AreaName kAreaNames[] = {
    {"I", " BWD", 0x81}, {"Q", " BWD", 0x82},  {"M", " BWD", 0x83}, {"V", " BWD", 0x84},
    {"S", " BWD", 0x04}, {"SM", " BWD", 0x05}, {"AI", "W", 0x06},   {"AQ", "W", 0x07},
    {"C", " ", 0x1e},    {"T", " ", 0x1f},     {"HC", " ", 0x20},
};

bool isName(const QByteArray &prefix, const char *name, char width)
{
    if (width == ' ')
        return prefix == name;
    return prefix.endsWith(width) && prefix.startsWith(name) && prefix.size() == int(std::strlen(name)) + 1;
}

int areaOf(const QByteArray &prefix)
{
    for (const AreaName &area : kAreaNames) {
        for (const char *width = area.widths; *width; ++width) {
            if (isName(prefix, area.name, *width))
                return area.code;
        }
    }
    return 0;
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool belongsToPrefix(QChar c)
{
    const bool isCapital = c >= QLatin1Char('A') && c <= QLatin1Char('Z');
    const bool isSmall = c >= QLatin1Char('a') && c <= QLatin1Char('z');
    return isCapital || isSmall || c == QLatin1Char('_');
}

QByteArray prefixOf(const QString &text)
{
    int length = 0;
    while (length < int(text.size()) && belongsToPrefix(text.at(length)))
        ++length;
    return text.left(length).toLatin1();
}

quint32 digitsOf(const QString &text)
{
    quint32 value = 0;
    for (int i = 0; i < int(text.size()); ++i) {
        if (isDigit(text.at(i)))
            value = value * 10 + quint32(text.at(i).unicode() - '0');
    }
    return value;
}

// Characters beyond Latin-1 count as code 0.
quint32 lastCharacterLessZero(const QString &text)
{
    if (text.isEmpty())
        return 0;
    const quint32 code = text.at(text.size() - 1).unicode();
    return (code > 0xff ? 0 : code) - quint32('0');
}

int widthOf(const QByteArray &prefix)
{
    return prefix.endsWith('D') ? 4 : prefix.endsWith('W') ? 2 : 1;
}

} // namespace

ModelAddress::ModelAddress(const QString &text)
    : prefix(prefixOf(text)), area(areaOf(prefix)), dataBlock(prefix.startsWith('V') ? 1 : 0),
      width(widthOf(prefix)), number(digitsOf(text)), byte(digitsOf(text.section(QLatin1Char('.'), 0, 0))),
      bit(lastCharacterLessZero(text))
{
}
