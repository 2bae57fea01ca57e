// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Drops the messages written through Qt's message functions while it lives, and takes nothing from the
// heap for it.

#ifndef TESTS_QUIET_LOG_H
#define TESTS_QUIET_LOG_H

#include <QtGlobal>

class QuietLog
{
public:
#if QT_VERSION >= 0x050000
    QuietLog() : previous(qInstallMessageHandler(drop)) {}
    ~QuietLog()
    {
        qInstallMessageHandler(previous);
    }
#else
    QuietLog() : previous(qInstallMsgHandler(drop)) {}
    ~QuietLog()
    {
        qInstallMsgHandler(previous);
    }
#endif

private:
    QuietLog(const QuietLog &);
    QuietLog &operator=(const QuietLog &);

#if QT_VERSION >= 0x050000
    static void drop(QtMsgType, const QMessageLogContext &, const QString &) {}
    QtMessageHandler previous;
#else
    static void drop(QtMsgType, const char *) {}
    QtMsgHandler previous;
#endif
};

#endif
