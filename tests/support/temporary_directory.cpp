// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "temporary_directory.h"

#include <QDir>
#include <QFileInfo>

#include <cstdlib>

namespace {

void removeAll(const QString &path)
{
    const QDir directory(path);
    const QFileInfoList entries =
        directory.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (entry.isDir() && !entry.isSymLink())
            removeAll(entry.filePath());
        else
            QFile::remove(entry.filePath());
    }
    QDir().rmdir(path);
}

} // namespace

TemporaryDirectory::TemporaryDirectory()
{
    QByteArray name = QFile::encodeName(QDir::tempPath() + QLatin1String("/s7ppi-test-XXXXXX"));
    if (mkdtemp(name.data()))
        absolutePath = QFileInfo(QFile::decodeName(name)).canonicalFilePath();
}

TemporaryDirectory::~TemporaryDirectory()
{
    if (!absolutePath.isEmpty())
        removeAll(absolutePath);
}
