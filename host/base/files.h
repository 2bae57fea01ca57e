// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Files and stdin as a command reads them, and why a file takes no more data.

#ifndef HOST_BASE_FILES_H
#define HOST_BASE_FILES_H

#include <QByteArray>
#include <QFileDevice>
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

// Why a file takes no more data, right after the call that failed. Qt itself does not know the reason when a
// part was taken.
QString writeReason(const QFileDevice &file);

} // namespace host

#endif
