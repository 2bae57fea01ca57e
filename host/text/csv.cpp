// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/text/csv.h"

namespace host {

namespace {

constexpr QChar kQuote = '"';

QString unquoted(const QString &cell)
{
    const QString text = cell.trimmed();
    const bool isQuoted = text.size() >= 2 && text.startsWith(kQuote) && text.endsWith(kQuote);
    return isQuoted ? text.mid(1, text.size() - 2).replace("\"\"", "\"") : text;
}

} // namespace

QChar csvSeparator(const QString &head)
{
    for (const QChar separator : {QChar('\t'), QChar(';')})
        if (head.contains(separator))
            return separator;
    return ',';
}

// A doubled quote in a quoted cell closes and opens again, which comes to the same.
std::optional<QStringList> csvCells(const QString &line, QChar separator)
{
    QStringList cells;
    QString cell;
    bool isQuoted = false;
    for (const QChar character : line) {
        if (character == kQuote)
            isQuoted = !isQuoted;
        if (character == separator && !isQuoted) {
            cells << unquoted(cell);
            cell.clear();
        } else {
            cell += character;
        }
    }
    if (isQuoted)
        return std::nullopt;
    return cells << unquoted(cell);
}

} // namespace host
