// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "common/port_lock.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace common {

namespace {

// Where QSerialPort looks for a place, in this order.
const char *const kDirectories[] = {"/var/lock", "/etc/locks", "/var/spool/locks",  "/var/spool/uucp",
                                    "/tmp",      "/var/tmp",   "/var/lock/lockdev", "/run/lock"};

} // namespace

QString lockFileOf(const QString &device)
{
    const QString name = device.startsWith("/dev/") ? device.mid(5) : device;
    for (const char *const directory : kDirectories) {
        QString lockFile = QString(directory) + "/LCK.." + QString(name).replace('/', '_');
        const QFileInfo place(directory);
        if (place.isReadable() && (QFile::exists(lockFile) || place.isWritable()))
            return lockFile;
    }
    return QString();
}

QString lockGuardOf(const QString &lockFile)
{
    return lockFile.isEmpty() ? QString() : lockFile + ".rmlock";
}

QString lockObstacle(const QString &lockFile)
{
    for (const QString &file : {lockFile, lockGuardOf(lockFile)}) {
        struct stat state = {};
        if (lstat(QFile::encodeName(file).constData(), &state) == 0 && !S_ISREG(state.st_mode))
            return file;
    }
    return QString();
}

} // namespace common
