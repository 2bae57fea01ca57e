// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Records as rows of texts, and rows as lines.

#ifndef HOST_OUTPUT_TABLE_H
#define HOST_OUTPUT_TABLE_H

#include "host/text/json.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <utility>

namespace host {

// The record's members of these names, each as text, bits as 0 or 1; what it does not have is empty. A record
// with a list in one of them, or of the same name in the plural, gives a row per element, with its number in
// the column "index".
QList<QStringList> cellRows(const Json &record, const QStringList &columns);

// All members that hold one value, by their path: "serial.baud".
QList<std::pair<QString, Json>> flatFields(const Json &record);

// Columns as wide as their widest cell, two blanks between, none at the end.
QStringList alignedLines(const QList<QStringList> &rows);

// Cells that need it between quotes, quotes in them doubled.
QByteArray csvLine(const QStringList &cells);

// Tabulators, line ends and backslashes in cells as \t \n \r \\.
QByteArray tsvLine(const QStringList &cells);

} // namespace host

#endif
