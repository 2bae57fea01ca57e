// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/messages.h"

#include "common/terminal_text.h"
#include "host/base/colour.h"
#include "host/base/failure.h"
#include "host/base/interruption.h"
#include "host/base/system_reason.h"

#include <QSet>

#include <cerrno>
#include <iostream>
#include <string>

#include <unistd.h>

namespace host {

namespace {

const char kProgramLabel[] = "s7ppi:";
const char kHintLabel[] = "hint:";

// Some hints have bytes of the line, of which there is no end, and a program may run for years.
constexpr int kMostToldHints = 1000;

bool isQuiet = false;
bool isVerbose = false;

void printNotice(const QByteArray &label, const char *colour, const QString &text)
{
    std::cerr << coloured(label, colour, STDERR_FILENO).constData() << ' '
              << qUtf8Printable(common::messageText(text)) << std::endl;
}

// Values and names come from controllers and files.
QString visibleLines(const QString &text)
{
    return common::visibleText(text, "\n\t");
}

void printAsItIs(const QByteArray &bytes)
{
    std::cout.write(bytes.constData(), bytes.size()).flush();
    if (std::cout)
        return;
    const int reason = errno;
    if (interruptingSignal() != 0)
        throw Interrupted();
    throw Failure(ExitCode::OutputLost, "stdout takes no more data: " + systemReason(reason),
                  "the rest was not printed: make room, or send the output elsewhere");
}

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

void setQuiet(bool quiet)
{
    isQuiet = quiet;
}

void setVerbose(bool verbose)
{
    isVerbose = verbose;
}

void reportDetail(const QString &text)
{
    if (isVerbose)
        reportNote(text);
}

void reportNote(const QString &text)
{
    if (!isQuiet)
        printNotice(kProgramLabel, kPlain, text);
}

void reportWarning(const QString &text)
{
    printNotice(kProgramLabel, kYellow, text);
}

// What helps is told once, with the first failure that it helps against.
void reportFailure(const Failure &failure)
{
    static QSet<QString> toldHints;
    printNotice(kProgramLabel, kRed, failure.text());
    if (toldHints.contains(failure.hint()))
        return;
    if (toldHints.size() == kMostToldHints)
        toldHints.clear();
    toldHints.insert(failure.hint());
    printNotice(kHintLabel, kCyan, failure.hint());
}

void reportFailure(const QString &subject, const Failure &failure)
{
    reportFailure(failure.about(subject.isEmpty() ? "\"\"" : subject));
}

void reportTrace(const QString &line)
{
    std::cerr << qUtf8Printable(common::visibleText(line)) << std::endl;
}

void printData(const QString &line)
{
    printBytes(line.toUtf8() + '\n');
}

void printText(const QString &text)
{
    const bool isTerminal = isatty(STDOUT_FILENO);
    const QString shown = isTerminal ? visibleLines(text) : text;
    printAsItIs(withDimEscapes(shown, STDOUT_FILENO).toUtf8());
}

void printBytes(const QByteArray &data)
{
    if (!isatty(STDOUT_FILENO))
        printAsItIs(data);
    else
        printAsItIs(visibleLines(QString::fromUtf8(data.constData(), int(data.size()))).toUtf8());
}

void installDriverLog(bool verbose)
{
    qInstallMessageHandler(verbose ? show : showWarnings);
}

DriverLogPause::DriverLogPause() : before(qInstallMessageHandler(showWarnings)) {}

DriverLogPause::~DriverLogPause()
{
    qInstallMessageHandler(before);
}

} // namespace host
