// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/text/number_list.h"

#include "host/base/failure.h"
#include "host/base/filled.h"

#include <QStringList>

namespace host {

namespace {

Failure wrong(const QString &text, const NumberKind &kind)
{
    const QString limits = filled("from %1 to %2", kind.least, kind.most);
    const QString span = kind.hasSpans ? ", or spans as 2..9" : "";
    return Failure(ExitCode::Usage, QString("\"%1\" is no %2").arg(text, kind.name),
                   QString("write numbers %1, commas between%2").arg(limits, span));
}

int parseNumber(const QString &text, const NumberKind &kind)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber && number >= kind.least && number <= kind.most ? number : throw wrong(text, kind);
}

void add(QList<int> &numbers, const QString &text, const NumberKind &kind)
{
    const bool isSpan = kind.hasSpans && text.contains("..");
    const int first = parseNumber(isSpan ? text.section("..", 0, 0) : text, kind);
    const int last = isSpan ? parseNumber(text.section("..", 1), kind) : first;
    if (last < first)
        throw Failure(ExitCode::Usage, filled("%1 is less than %2", last, first),
                      filled("write %1..%2", last, first));
    for (int number = first; number <= last; ++number)
        if (!numbers.contains(number))
            numbers << number;
}

} // namespace

QList<int> parseNumbers(const QString &text, const NumberKind &kind)
{
    QList<int> numbers;
    const QStringList parts = text.split(',');
    for (const QString &part : parts)
        add(numbers, part.trimmed(), kind);
    return numbers;
}

} // namespace host
