// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "text_input.h"

#include "failure.h"
#include "interruption.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace host {

namespace {

Failure unreadable(const QString &name, const QString &reason)
{
    return Failure(ExitCode::Usage, name + " cannot be read: " + reason, "check the file's name and rights");
}

// QFile would begin a read again that a signal ended.
QByteArray readStdin()
{
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
            throw unreadable("stdin", std::strerror(errno));
    }
}

} // namespace

QByteArray readInput(const QString &fileName)
{
    if (fileName == "-")
        return readStdin();
    if (QFileInfo(fileName).isDir())
        throw unreadable(fileName, "it is a directory");
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw unreadable(fileName, file.errorString());
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw unreadable(fileName, file.errorString());
    return bytes;
}

} // namespace host
