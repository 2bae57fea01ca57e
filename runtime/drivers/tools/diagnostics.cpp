// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "diagnostics.h"

#include <cerrno>
#include <limits>

#include <signal.h>
#include <sys/types.h>

bool ProcessIsRunning(long long pid)
{
    // A number that does not fit would name another process.
    if (pid < std::numeric_limits<pid_t>::min() || pid > std::numeric_limits<pid_t>::max())
        return false;
    return kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM;
}

QString dumpByteArray(const QByteArray &bytes)
{
    QString text = QLatin1String("(");
    for (int i = 0; i < bytes.size(); ++i) {
        const int byte = static_cast<unsigned char>(bytes.at(i));
        text += QLatin1String("0X") + QString::number(byte, 16) + QLatin1Char(' ');
    }
    const int zero = static_cast<int>(bytes.indexOf('\0'));
    const int length = zero < 0 ? static_cast<int>(bytes.size()) : zero;
    return text + QLatin1String(") : ") + QString::fromLatin1(bytes.constData(), length);
}

QList<int> EmptyPackageSizeList()
{
    return QList<int>();
}
