// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/port_holder.h"

#include "host/base/files.h"
#include "host/base/filled.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <unistd.h>

namespace host {

namespace {

// Returns the names of the files that a process has open, one for each descriptor.
QStringList openFiles(const QString &process)
{
    QStringList files;
    const QDir descriptors("/proc/" + process + "/fd");
    const QStringList names = descriptors.entryList(QDir::NoDotAndDotDot | QDir::System | QDir::AllEntries);
    for (const QString &name : names)
        files << QFile::symLinkTarget(descriptors.filePath(name));
    return files;
}

// The kernel tells beside a master's descriptor which pseudo-terminal it drives: "tty-index:	3".
bool isMasterOf(const QString &process, const QString &device)
{
    const QDir infos("/proc/" + process + "/fdinfo");
    const QStringList names = infos.entryList(QDir::Files);
    for (const QString &name : names) {
        QFile info(infos.filePath(name));
        if (!info.open(QIODevice::ReadOnly))
            continue;
        const QStringList lines = QString::fromLatin1(info.readAll()).split('\n');
        for (const QString &line : lines)
            if (line.startsWith("tty-index:") && device == "/dev/pts/" + line.section(':', 1).trimmed())
                return true;
    }
    return false;
}

bool isOther(const QString &process)
{
    bool isProcess = false;
    return process.toInt(&isProcess) != int(getpid()) && isProcess;
}

} // namespace

QList<PortHolder> portHolders(const QString &device)
{
    const QString file = QFileInfo(device).canonicalFilePath();
    QList<PortHolder> holders;
    const QStringList processes = QDir("/proc").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &process : processes)
        if (isOther(process) && openFiles(process).contains(file) && !isMasterOf(process, file))
            holders << PortHolder{process.toInt(), firstLine("/proc/" + process + "/comm")};
    return holders;
}

QString holderText(const QList<PortHolder> &holders)
{
    QStringList texts;
    for (const PortHolder &holder : holders)
        texts << filled("%1 (process %2)", holder.program, holder.process);
    return texts.join(", ");
}

} // namespace host
