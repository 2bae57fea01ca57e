// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/text/hex_text.h"

#include "host/base/failure.h"

#include <QRegularExpression>
#include <QStringList>

namespace host {

namespace {

const char kHint[] =
    "write bytes as two hexadecimal digits each, as 10 02 00 5c 5e 16, or 0x10,0x02, or 10:02";

// One digit alone is a byte, when it says so: 0x5.
QByteArray parseWord(const QString &word)
{
    static const QRegularExpression digits("^[0-9A-Fa-f]*$");
    const bool isMarked = word.startsWith("0x", Qt::CaseInsensitive);
    const QString text = isMarked ? word.mid(2) : word;
    if (!digits.match(text).hasMatch() || (isMarked && text.isEmpty()))
        throw Failure(ExitCode::Usage, '"' + word + "\" is not hexadecimal", kHint);
    if (isMarked && text.size() == 1)
        return QByteArray::fromHex('0' + text.toLatin1());
    if (text.size() % 2)
        throw Failure(ExitCode::Usage, '"' + word + "\" is an odd number of digits", kHint);
    return QByteArray::fromHex(text.toLatin1());
}

} // namespace

QByteArray parseHex(const QString &text)
{
    static const QRegularExpression separators("[\\s,;:_-]+");
    QByteArray bytes;
    const QStringList lines = text.split('\n');
    for (const QString &line : lines) {
        const QStringList words = line.section(": ", -1).split(separators, Qt::SkipEmptyParts);
        for (const QString &word : words)
            bytes += parseWord(word);
    }
    return bytes;
}

} // namespace host
