// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Reads lines of separated cells, as spreadsheets write them.

#ifndef HOST_TEXT_CSV_H
#define HOST_TEXT_CSV_H

#include <QString>
#include <QStringList>

#include <optional>

namespace host {

// The character that separates the cells of a file with this first line: a tabulator, a semicolon or a comma.
QChar csvSeparator(const QString &head);

// Splits a line into its cells, without the blanks around them. Quotes around a cell are taken away, doubled
// ones in it become one. Returns nothing when a quote is not closed.
std::optional<QStringList> csvCells(const QString &line, QChar separator);

} // namespace host

#endif
