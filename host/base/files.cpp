// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/files.h"

#include "host/base/input_file.h"
#include "host/base/line_reader.h"
#include "host/base/system_reason.h"

#include <QFile>

#include <cerrno>

#include <sys/file.h>
#include <sys/stat.h>

namespace host {

namespace {

QByteArray allOf(InputFile &file)
{
    QByteArray bytes;
    for (QByteArray more = file.readSome(); !more.isEmpty(); more = file.readSome())
        bytes += more;
    return bytes;
}

bool isRemoved(int handle)
{
    struct stat state = {};
    return fstat(handle, &state) == 0 && state.st_nlink == 0;
}

} // namespace

QByteArray readFile(const QString &name, const QString &hint, qint64 largest)
{
    InputFile file(name, hint, largest);
    return allOf(file);
}

QByteArray readTextFile(const QString &name, const QString &hint, qint64 largest)
{
    QByteArray text = readFile(name, hint, largest);
    checkLines(name, text);
    return text;
}

QByteArray readInput(const QString &fileName, qint64 largest)
{
    return allOf(*inputNamed(fileName, largest));
}

bool lockForWriting(const QFileDevice &file)
{
    const bool isLocked = flock(file.handle(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    return !isLocked && !isRemoved(file.handle());
}

QString firstLine(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readLine()).trimmed() : QString();
}

QByteArray withoutByteOrderMark(const QByteArray &text)
{
    return text.startsWith("\xef\xbb\xbf") ? text.mid(3) : text;
}

QString utf8Text(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes.constData(), int(bytes.size()));
}

QString writeReason(const QFileDevice &file)
{
    const int reason = errno;
    const bool isKnown = file.error() != QFileDevice::WriteError && file.error() != QFileDevice::NoError;
    if (isKnown || reason == 0)
        return file.errorString();
    return systemReason(reason);
}

Failure unwritable(const QFileDevice &file, const char *hint)
{
    const QString reason = writeReason(file);
    return Failure(ExitCode::OutputLost, file.fileName() + " cannot be written: " + reason, hint);
}

void throwUnwritable(const QFileDevice &file, const char *hint)
{
    const Failure failure = unwritable(file, hint);
    throw Failure(failure);
}

} // namespace host
