// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Texts that tests compare with what the programs do.

#ifndef TESTS_HOST_SUPPORT_DOCUMENT_H
#define TESTS_HOST_SUPPORT_DOCUMENT_H

#include <QFile>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

inline QString contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// What the pattern's first group matches, wherever it does; ^ and $ are those of lines.
inline QStringList captured(const QString &pattern, const QString &text)
{
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    QStringList found;
    auto matches = expression.globalMatch(text);
    while (matches.hasNext())
        found << matches.next().captured(1);
    return found;
}

#endif
