// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Keeps the messages written through Qt's message functions while it lives, instead of printing them.
// One exists at a time; a thread sees in it what it wrote itself.

#ifndef TESTS_LOG_CAPTURE_H
#define TESTS_LOG_CAPTURE_H

#include <QList>
#include <QString>
#include <QStringList>

class LogCapture
{
public:
    LogCapture();
    ~LogCapture();

    // The messages as they were written, one without debug level marked as such.
    QStringList lines() const;

    // What stands behind "<path of the driver's source>:<line number>:" in each message; a message of
    // another form whole, marked as malformed.
    QStringList texts() const;

    // The line numbers in the messages, 0 for a message of another form.
    QList<int> lineNumbers() const;

private:
    LogCapture(const LogCapture &);
    LogCapture &operator=(const LogCapture &);
};

#endif
