// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/files.h"

#include "host/base/failure.h"
#include "host/base/files_in_use.h"
#include "host/base/interruption.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <system_error>

#include <unistd.h>

namespace host {

namespace {

const char kHint[] = "check the file's name and rights";

Failure unreadable(const QString &name, const QString &reason, const QString &hint)
{
    return Failure(ExitCode::Usage, name + " cannot be read: " + reason, hint);
}

// Stdin is read without QFile, which begins a read that a signal ended once more.
QByteArray readStdin()
{
    claimFile("/dev/stdin", FileRole::Input);
    QByteArray bytes;
    char buffer[65536];
    while (true) {
        const ssize_t count = read(STDIN_FILENO, buffer, sizeof buffer);
        if (count > 0)
            bytes.append(buffer, int(count));
        else if (interruptingSignal() != 0)
            throw Interrupted();
        else if (count == 0)
            return bytes;
        else if (errno != EINTR)
            throw unreadable("stdin", std::strerror(errno), kHint);
    }
}

} // namespace

QByteArray readFile(const QString &name, const QString &hint)
{
    if (name.isEmpty())
        throw Failure(ExitCode::Usage, "no name is given", hint);
    claimFile(name, FileRole::Input);
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        throw unreadable(name, file.errorString(), hint);
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw unreadable(name, file.errorString(), hint);
    return bytes;
}

QByteArray readInput(const QString &fileName)
{
    if (fileName == "-")
        return readStdin();
    if (QFileInfo(fileName).isDir())
        throw unreadable(fileName, "it is a directory", kHint);
    return readFile(fileName, kHint);
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
    return QString::fromStdString(std::generic_category().message(reason));
}

} // namespace host
