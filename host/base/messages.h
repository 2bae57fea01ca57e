// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the user reads: data on stdout, everything else on stderr, with the messages of driver and Qt. On a
// terminal, and in messages always, characters that would steer the terminal are written out.

#ifndef HOST_BASE_MESSAGES_H
#define HOST_BASE_MESSAGES_H

#include <QByteArray>
#include <QString>
#include <QtGlobal>

namespace host {

class Failure;

// Tells something that a user may do without: -q silences it.
void setQuiet(bool quiet);
void reportNote(const QString &text);

// Tells something that only --verbose asks for.
void setVerbose(bool verbose);
void reportDetail(const QString &text);

// Tells something that -q does not silence, though it is no failure of the command.
void reportWarning(const QString &text);

// Tells a failure in two lines: the error, and the hint that goes with it, unless that was told not long
// before. A subject stands in front of the error.
void reportFailure(const Failure &failure);
void reportFailure(const QString &subject, const Failure &failure);

// Tells a line of the trace, without the program's name in front.
void reportTrace(const QString &line);

// Prints a line of data. The line is out when this returns, so that what was read is seen even if the program
// is stopped then. Fails when stdout does not take it.
void printData(const QString &line);

// Prints text for people in the same way; on a terminal that has colours its escapes, as \x00, are dim.
void printText(const QString &text);

// Prints data that are no lines, in the same way.
void printBytes(const QByteArray &data);

// Sends the messages of driver and Qt to stderr: warnings always, debug messages only when verbose.
void installDriverLog(bool verbose);

// While it lives, debug messages of driver and Qt go nowhere.
class DriverLogPause
{
public:
    DriverLogPause();
    ~DriverLogPause();

private:
    Q_DISABLE_COPY(DriverLogPause)

    QtMessageHandler before;
};

} // namespace host

#endif
