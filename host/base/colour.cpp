// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/colour.h"

#include <QRegularExpression>
#include <QtGlobal>

#include <unistd.h>

namespace host {

bool takesControls(int descriptor)
{
    const QByteArray terminal = qgetenv("TERM");
    return isatty(descriptor) && !terminal.isEmpty() && terminal != "dumb";
}

bool wantsColour(int descriptor)
{
    return takesControls(descriptor) && qEnvironmentVariableIsEmpty("NO_COLOR");
}

QByteArray coloured(const QByteArray &text, const char *colour, int descriptor)
{
    if (!*colour || !wantsColour(descriptor))
        return text;
    return QByteArray("\x1b[1;") + colour + 'm' + text + "\x1b[0m";
}

QList<TextPart> partsOf(const QString &text)
{
    static const QRegularExpression escape("\\\\(?:[\"\\\\]|x[0-9a-f]{2}|u[0-9a-f]{4})");
    QList<TextPart> parts;
    int end = 0;
    QRegularExpressionMatchIterator escapes = escape.globalMatch(text);
    while (escapes.hasNext()) {
        const QRegularExpressionMatch match = escapes.next();
        parts << TextPart{text.mid(end, int(match.capturedStart()) - end), false}
              << TextPart{match.captured(), true};
        end = int(match.capturedEnd());
    }
    return parts << TextPart{text.mid(end), false};
}

QString withDimEscapes(const QString &text, int descriptor)
{
    if (!wantsColour(descriptor))
        return text;
    QString dim;
    for (const TextPart &part : partsOf(text))
        dim += part.isEscape ? "\x1b[2m" + part.text + "\x1b[22m" : part.text;
    return dim;
}

} // namespace host
