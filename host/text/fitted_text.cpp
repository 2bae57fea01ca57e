// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/text/fitted_text.h"

#include <QRegularExpression>

#include <algorithm>

namespace host {

namespace {

const char kGap[] = "...";
constexpr int kGapSize = 3;
constexpr int kAllDigits = 17;

// Without the + and the zeros that tell nothing: 4.3e9, and not 4.3e+09.
QString shortExponent(QString number)
{
    static const QRegularExpression exponent("e\\+?(-?)0*([0-9])");
    return number.replace(exponent, "e\\1\\2");
}

// Empty when not even one digit has room.
QString shortenedNumber(double number, int columns)
{
    for (int digits = kAllDigits; digits > 0; --digits) {
        QString text = '~' + shortExponent(QString::number(number, 'g', digits));
        if (text.size() <= columns)
            return text;
    }
    return QString();
}

// Loses whole characters: an escape has up to four letters. Empty when not even one has room.
QString shortenedQuotation(const QString &quotation, int columns)
{
    static const QRegularExpression character("\\\\x[0-9a-f]{2}|\\\\.|[^\\\\\"]");
    const int room = columns - kGapSize - 1; // for the quotes' end and the gap
    QString text = "\"";
    QRegularExpressionMatchIterator characters = character.globalMatch(quotation);
    while (characters.hasNext()) {
        const QString next = characters.next().captured();
        if (text.size() + next.size() > room)
            break;
        text += next;
    }
    return text.size() > 1 ? text + '"' + kGap : QString();
}

} // namespace

QString withoutMiddle(const QString &text, int columns)
{
    const int room = std::max(columns, 0);
    if (text.size() <= room)
        return text;
    if (room <= kGapSize + 1)
        return text.left(room);
    const int end = (room - kGapSize) / 2;
    return text.left(room - kGapSize - end) + kGap + text.right(end);
}

QString firstThatFits(const QStringList &texts, int columns)
{
    const auto found =
        std::find_if(texts.begin(), texts.end(), [&](const QString &text) { return text.size() <= columns; });
    return found != texts.end() ? *found : withoutMiddle(texts.last(), columns);
}

QStringList wrapped(const QString &text, int columns)
{
    const int room = std::max(columns, 1);
    QStringList lines;
    QString rest = text;
    while (rest.size() > room) {
        const int blank = int(rest.lastIndexOf(' ', room));
        lines << rest.left(blank > 0 ? blank : room);
        rest = rest.mid(blank > 0 ? blank + 1 : room);
    }
    return lines << rest;
}

QString shortened(const QString &value, int columns)
{
    if (value.size() <= columns)
        return value;
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    QString text;
    if (isNumber)
        text = shortenedNumber(number, columns);
    else if (value.startsWith('"'))
        text = shortenedQuotation(value, columns);
    return text.isEmpty() ? QString(std::max(columns, 0), '#') : text;
}

} // namespace host
