// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/colour.h"

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

} // namespace host
