// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Turns records into rows of texts, and rows into lines.

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
// the column "index", where the first one has that of the record's own "index", or 0.
QList<QStringList> cellRows(const Json &record, const QStringList &columns);

// All members of a record that hold one value, by their path: "serial.baud".
QList<std::pair<QString, Json>> flatFields(const Json &record);

// Lines in which each column is as wide as its widest cell, with two blanks between and none at the end.
QStringList alignedLines(const QList<QStringList> &rows);

// A line of CSV: cells that need it stand between quotes, and quotes in them are doubled.
QByteArray csvLine(const QStringList &cells);

// A line of TSV: tabulators, line ends and backslashes in cells are written \t \n \r \\.
QByteArray tsvLine(const QStringList &cells);

} // namespace host

#endif
