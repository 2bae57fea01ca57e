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

// Returns what the whole file holds. Fails with the hint when it cannot be read.
QByteArray readFile(const QString &name, const QString &hint);

// Returns what a file that the user names holds, or what comes from stdin for "-". Fails when it cannot be
// read.
QByteArray readInput(const QString &fileName);

// Returns the text without the byte order mark with which some editors begin a file of UTF-8.
QByteArray withoutByteOrderMark(const QByteArray &text);

// Returns the text that the bytes are in UTF-8, without a byte order mark at its beginning, and with what
// stands behind a NUL: Qt 5's own conversion of a byte array ends there.
QString utf8Text(const QByteArray &bytes);

// Returns why a file takes no more data. It must be called right after the call that failed: Qt itself does
// not know the reason when a part of the data was taken, and the kernel's is soon overwritten.
QString writeReason(const QFileDevice &file);

} // namespace host

#endif
