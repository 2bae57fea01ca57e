// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Files and stdin as a command reads them, and why a file takes no more data.

#ifndef HOST_BASE_FILES_H
#define HOST_BASE_FILES_H

#include "host/base/failure.h"

#include <QByteArray>
#include <QFileDevice>
#include <QString>

namespace host {

// The largest files, in bytes. Settings and tags are written by people. A dump has three characters for a
// byte, and a controller's addresses end at two megabytes.
constexpr qint64 kLargestText = 4 << 20;
constexpr qint64 kLargestDump = 16 << 20;

// Returns what the whole file holds. Fails with the hint when it cannot be read, or when it is larger than
// the limit.
QByteArray readFile(const QString &name, const QString &hint, qint64 largest);

// Returns the lines of a file of text, of which none may be too long.
QByteArray readTextFile(const QString &name, const QString &hint, qint64 largest);

// Returns what a file that the user names holds, or what comes from stdin for "-". Fails when it cannot be
// read, or when it is larger than the limit.
QByteArray readInput(const QString &fileName, qint64 largest);

// Returns the first line of a file that the system provides, without blanks around it; nothing when it cannot
// be read.
QString firstLine(const QString &name);

// Locks an open file for this process alone; the system gives the lock back when the process ends, however
// that happens. False when another one has it, or has removed the file meanwhile. On a file system without
// locks there are none.
bool lockForWriting(const QFileDevice &file);

// Returns the text without the byte order mark with which some editors begin a file of UTF-8.
QByteArray withoutByteOrderMark(const QByteArray &text);

// Returns the text that the bytes are in UTF-8, without a byte order mark at its beginning, and with what
// stands behind a NUL: Qt 5's own conversion of a byte array ends there.
QString utf8Text(const QByteArray &bytes);

// Returns why a file takes no more data. It must be called right after the call that failed: Qt itself does
// not know the reason when a part of the data was taken, and the kernel's is soon overwritten.
QString writeReason(const QFileDevice &file);

// The failure of a file that cannot be written, with the reason why. Both must be called like writeReason().
// The second one throws the failure itself: a throw overwrites the reason with what it takes from the heap.
Failure unwritable(const QFileDevice &file, const char *hint);
[[noreturn]] void throwUnwritable(const QFileDevice &file, const char *hint);

} // namespace host

#endif
