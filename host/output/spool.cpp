// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/output/spool.h"

#include "host/base/files.h"
#include "host/base/filled.h"
#include "host/base/system_reason.h"

#include <cerrno>
#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace host {

namespace {

constexpr int kMostInMemory = 1 << 20;

// Qt's own takes the root directory when there is none of the name in TMPDIR.
QString directory()
{
    const QString name = qEnvironmentVariable("TMPDIR");
    return name.isEmpty() ? "/tmp" : name;
}

} // namespace

void Spool::put(const QByteArray &bytes)
{
    kept += bytes;
    if (kept.size() > kMostInMemory)
        moveToFile();
}

void Spool::moveToFile()
{
    if (!file.isOpen())
        openFile();
    if (file.write(kept) != kept.size())
        fail(writeReason(file));
    kept.resize(0);
}

void Spool::openFile()
{
    QByteArray name = QFile::encodeName(directory() + "/s7ppi.XXXXXX");
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0)
        fail(systemReason(errno));
    unlink(name.constData());
    if (!file.open(descriptor, QIODevice::ReadWrite | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle))
        fail(file.errorString());
}

void Spool::rewind()
{
    if (file.isOpen() && !file.seek(0))
        fail(file.errorString());
}

QByteArray Spool::next()
{
    const QByteArray some = file.isOpen() ? file.read(kMostInMemory) : QByteArray();
    if (some.isEmpty() && file.error() != QFileDevice::NoError)
        fail(file.errorString());
    return some.isEmpty() ? std::exchange(kept, QByteArray()) : some;
}

void Spool::fail(const QString &reason)
{
    throw Failure(ExitCode::OutputLost,
                  filled("a temporary file in %1 cannot be used: %2", directory(), reason),
                  "make room there, or name another directory in the environment variable TMPDIR");
}

} // namespace host
