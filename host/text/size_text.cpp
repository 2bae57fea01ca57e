// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/text/size_text.h"

#include <QRegularExpression>

namespace host {

std::optional<qint64> parseSize(const QString &text)
{
    static const QRegularExpression pattern("^([0-9]{1,9})([kMG]?)$");
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const int power = int(QString("kMG").indexOf(match.captured(2)));
    const qint64 unit = match.captured(2).isEmpty() ? 1 : qint64(1) << (10 * (power + 1));
    return match.captured(1).toLongLong() * unit;
}

} // namespace host
