// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "log_capture.h"

#include <QtGlobal>

namespace {

const char kDriverSource[] = "../../../runtime/drivers/simatic_s7_200_ppi/s7_200_ppi.cpp:";

thread_local QStringList g_lines;

void keep(QtMsgType type, const QString &text)
{
    g_lines += type == QtDebugMsg ? text : QLatin1String("not debug: ") + text;
}

#if QT_VERSION >= 0x050000
QtMessageHandler g_previous = nullptr;

void handle(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    keep(type, text);
}

void install()
{
    g_previous = qInstallMessageHandler(handle);
}

void restore()
{
    qInstallMessageHandler(g_previous);
}
#else
QtMsgHandler g_previous = nullptr;

void handle(QtMsgType type, const char *text)
{
    keep(type, QString::fromUtf8(text));
}

void install()
{
    g_previous = qInstallMsgHandler(handle);
}

void restore()
{
    qInstallMsgHandler(g_previous);
}
#endif

struct ParsedLine
{
    int number;
    QString text;
};

ParsedLine malformed(const QString &line)
{
    const ParsedLine parsed = {0, QLatin1String("malformed: ") + line};
    return parsed;
}

ParsedLine parse(const QString &line)
{
    const QString source = QLatin1String(kDriverSource);
    const int digits = int(source.size());
    const int colon = int(line.indexOf(QLatin1Char(':'), digits));
    if (!line.startsWith(source) || colon < 0)
        return malformed(line);
    bool isNumber = false;
    const int number = line.mid(digits, colon - digits).toInt(&isNumber);
    if (!isNumber || number <= 0)
        return malformed(line);
    const ParsedLine parsed = {number, line.mid(colon + 1)};
    return parsed;
}

} // namespace

LogCapture::LogCapture()
{
    g_lines.clear();
    install();
}

LogCapture::~LogCapture()
{
    restore();
}

QStringList LogCapture::lines() const
{
    return g_lines;
}

QStringList LogCapture::texts() const
{
    QStringList texts;
    for (int i = 0; i < int(g_lines.size()); ++i)
        texts += parse(g_lines.at(i)).text;
    return texts;
}

QList<int> LogCapture::lineNumbers() const
{
    QList<int> numbers;
    for (int i = 0; i < int(g_lines.size()); ++i)
        numbers += parse(g_lines.at(i)).number;
    return numbers;
}
