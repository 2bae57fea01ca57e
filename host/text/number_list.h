// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Lists of numbers on the command line: "9600,19200", and with spans "1..126" or "2,5..9".

#ifndef HOST_TEXT_NUMBER_LIST_H
#define HOST_TEXT_NUMBER_LIST_H

#include <QList>
#include <QString>

namespace host {

struct NumberKind
{
    QString name; // for errors
    int least;
    int most;
    bool hasSpans;
};

// Returns all numbers of the list, each once, in their order. Fails on what is no number, and on one outside
// the limits.
QList<int> parseNumbers(const QString &text, const NumberKind &kind);

} // namespace host

#endif
