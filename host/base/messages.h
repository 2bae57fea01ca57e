// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the user reads: data on stdout, everything else on stderr, with the messages of driver and Qt.

#ifndef HOST_BASE_MESSAGES_H
#define HOST_BASE_MESSAGES_H

#include <QByteArray>
#include <QString>
#include <QtGlobal>

namespace host {

class Failure;

// What may be left out, with -q.
void setQuiet(bool quiet);
void reportNote(const QString &text);

// What is said with --verbose only.
void setVerbose(bool verbose);
void reportDetail(const QString &text);

// What stays with -q, though it is no failure of the command.
void reportWarning(const QString &text);

// Two lines: the error, and the hint that goes with it.
void reportFailure(const Failure &failure);
void reportFailure(const QString &subject, const Failure &failure);

// A line of the trace, without the program's name.
void reportTrace(const QString &line);

// A line of data. It is out when this returns: what was read is seen even if the program is stopped then.
// A Failure when stdout does not take it.
void printData(const QString &line);

// The same for bytes of any kind.
void printBytes(const QByteArray &bytes);

// Where the messages of driver and Qt go: debug messages to stderr when verbose and nowhere otherwise;
// warnings always go to stderr.
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
