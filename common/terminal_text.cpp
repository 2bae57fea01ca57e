// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "common/terminal_text.h"

#include <QChar>
#include <QRegularExpression>
#include <QVector>

namespace common {

namespace {

const char kGap[] = " ... ";
constexpr int kLongestMessage = 1000;

bool isShownAsItself(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    default:
        return true;
    }
}

QString written(char32_t character)
{
    const QString digits = QString::number(uint(character), 16);
    return character <= 0xFF ? "\\x" + digits.rightJustified(2, '0') : "\\u" + digits.rightJustified(4, '0');
}

// Keeps as much of the end as of the beginning: the place of a fault stands there, its reason here.
QString withoutMiddle(const QString &text, int longest)
{
    const int half = longest / 2;
    return text.size() <= longest ? text : text.left(half) + kGap + text.right(half);
}

} // namespace

QString visibleText(const QString &text, const QString &kept)
{
    QString visible;
    const QVector<uint> characters = text.toUcs4();
    for (const char32_t character : characters) {
        const bool isKept = character <= 0xFFFF && kept.contains(QChar(ushort(character)));
        visible +=
            isKept || isShownAsItself(character) ? QString::fromUcs4(&character, 1) : written(character);
    }
    return visible;
}

QString messageText(const QString &text)
{
    static const QRegularExpression longQuotation("\"([^\"]{40})[^\"]+([^\"]{40})\"");
    const QString quoted = QString(text).replace(longQuotation, QString("\"\\1%1\\2\"").arg(kGap));
    return visibleText(withoutMiddle(quoted, kLongestMessage));
}

} // namespace common
