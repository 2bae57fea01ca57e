// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/driver_log.h"

#include "host/base/report.h"

#include <QtGlobal>

namespace host {

namespace {

void show(QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString &text)
{
    reportTrace("driver: " + text);
}

void showWarnings(QtMsgType type, const QMessageLogContext & /*context*/, const QString &text)
{
    if (type != QtDebugMsg && type != QtInfoMsg)
        reportWarning(text);
}

} // namespace

void installDriverLog(bool verbose)
{
    qInstallMessageHandler(verbose ? show : showWarnings);
}

} // namespace host
