// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A new directory among the system's temporary files, removed with everything in it.

#ifndef TESTS_TEMPORARY_DIRECTORY_H
#define TESTS_TEMPORARY_DIRECTORY_H

#include <QString>

class TemporaryDirectory
{
public:
    TemporaryDirectory();
    ~TemporaryDirectory();

    // The absolute path of the directory, without links in it.
    QString path() const { return absolutePath; }

    // The path of a file or directory in it.
    QString path(const QString &name) const { return absolutePath + QLatin1Char('/') + name; }

private:
    TemporaryDirectory(const TemporaryDirectory &);
    TemporaryDirectory &operator=(const TemporaryDirectory &);

    QString absolutePath;
};

#endif
