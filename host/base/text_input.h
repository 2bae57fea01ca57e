// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a command reads besides its arguments.

#ifndef HOST_BASE_TEXT_INPUT_H
#define HOST_BASE_TEXT_INPUT_H

#include <QByteArray>
#include <QString>

namespace host {

// The whole file. Fails with the hint when it cannot be read.
QByteArray readFile(const QString &name, const QString &hint);

// The same; "-" is stdin.
QByteArray readInput(const QString &fileName);

// Without the mark that some editors begin a file of UTF-8 with.
QByteArray withoutByteOrderMark(const QByteArray &text);

// All of it: Qt 5's own conversion of a byte array ends at the first NUL. Takes away the mark that some
// editors begin a file with.
QString utf8Text(const QByteArray &bytes);

} // namespace host

#endif
