// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/input_file.h"

#include "host/base/files_in_use.h"
#include "host/base/interruption.h"
#include "host/base/system_reason.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host {

namespace {

const char kHint[] = "check the file's name and rights";
const char kStdinHint[] = "check where stdin comes from";
const char kTooLargeHint[] = "check the name: it may be another file, or a device";

// Without O_NONBLOCK a pipe that nobody writes to would be waited for here, where no signal ends it for good.
int openForReading(const QString &name)
{
    return ::open(QFile::encodeName(name).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

} // namespace

InputFile::InputFile(const QString &name_, const QString &hint_, qint64 largest_)
    : name(name_), hint(hint_), largest(largest_), descriptor(-1)
{
    if (name.isEmpty())
        throw Failure(ExitCode::Usage, "no name is given", hint);
    claimFile(name, FileRole::Input);
    descriptor = openForReading(name);
    if (descriptor < 0) {
        const int reason = errno;
        throw unreadable(systemReason(reason));
    }
    try {
        checkKind();
    } catch (...) {
        close(descriptor);
        throw;
    }
}

InputFile::InputFile(qint64 largest_)
    : name("stdin"), hint(kStdinHint), largest(largest_), descriptor(STDIN_FILENO)
{
    claimFile("/dev/stdin", FileRole::Input);
}

InputFile::~InputFile()
{
    if (descriptor != STDIN_FILENO)
        close(descriptor);
}

QByteArray InputFile::readSome()
{
    char buffer[65536];
    while (true) {
        // A pipe has bytes, or has come to its end, only when somebody has written to it.
        awaitReadable(descriptor);
        const ssize_t count = read(descriptor, buffer, sizeof buffer);
        if (count < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (count < 0) {
            const int reason = errno;
            throw unreadable(systemReason(reason));
        }
        total += count;
        if (total > largest)
            throw Failure(ExitCode::Usage, name + " is too large: it has more than " + limitText(largest),
                          kTooLargeHint);
        return QByteArray(buffer, int(count));
    }
}

void InputFile::checkKind() const
{
    struct stat state = {};
    if (fstat(descriptor, &state) == 0 && S_ISDIR(state.st_mode))
        throw unreadable("it is a directory");
}

Failure InputFile::unreadable(const QString &reason) const
{
    return Failure(ExitCode::Usage, name + " cannot be read: " + reason, hint);
}

std::unique_ptr<InputFile> inputNamed(const QString &fileName, qint64 largest)
{
    if (fileName == "-")
        return std::make_unique<InputFile>(largest);
    return std::make_unique<InputFile>(fileName, kHint, largest);
}

QString limitText(qint64 bytes)
{
    constexpr qint64 kMebi = 1 << 20;
    return bytes % kMebi != 0 ? QString("%1 KiB").arg(bytes / 1024) : QString("%1 MiB").arg(bytes / kMebi);
}

} // namespace host
