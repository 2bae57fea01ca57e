// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/port_opening.h"

#include "common/port_lock.h"
#include "host/base/messages.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host {

namespace {

// Milliseconds.
constexpr int kPatience = 1000;
constexpr int kPause = 10;

// Returns the directory, locked against other processes, or -1. No file has to be made for that.
int lockedDirectory(const QString &name)
{
    const int directory = ::open(QFile::encodeName(name).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0)
        return -1;
    const QDeadlineTimer deadline(kPatience);
    while (flock(directory, LOCK_EX | LOCK_NB) != 0) {
        if (deadline.hasExpired()) {
            close(directory);
            return -1;
        }
        poll(nullptr, 0, kPause);
    }
    return directory;
}

// Whether the open file is the one that has the name, and is empty.
bool isEmptyFile(int descriptor, const QByteArray &name)
{
    struct stat opened = {};
    struct stat named = {};
    return fstat(descriptor, &opened) == 0 && lstat(name.constData(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino && S_ISREG(opened.st_mode) &&
           opened.st_size == 0;
}

// Returns the empty lock file, open and held, so that nobody else takes it over; -1 when there is none, or
// somebody holds it.
int heldLeftLock(const QString &lockFile)
{
    const QByteArray name = QFile::encodeName(lockFile);
    const int descriptor = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return -1;
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0 && isEmptyFile(descriptor, name))
        return descriptor;
    close(descriptor);
    return -1;
}

} // namespace

PortOpening::PortOpening(const QString &lockFile_)
    : lockFile(lockFile_), directory(lockedDirectory(QFileInfo(lockFile).path()))
{
}

PortOpening::~PortOpening()
{
    if (directory >= 0)
        close(directory);
}

bool PortOpening::removeLeftLock() const
{
    return removeLeft(common::lockGuardOf(lockFile)) && removeLeft(lockFile);
}

bool PortOpening::removeLeft(const QString &file) const
{
    // Without the directory's lock the file may be another s7ppi's, which has just made it.
    const int descriptor = directory >= 0 ? heldLeftLock(file) : -1;
    if (descriptor < 0)
        return true;
    const bool isRemoved = unlink(QFile::encodeName(file).constData()) == 0;
    close(descriptor);
    if (isRemoved)
        reportNote(file +
                   " was empty and held by nobody: a program that was killed left it, and it is removed");
    return isRemoved;
}

} // namespace host
