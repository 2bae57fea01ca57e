// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is made of what was found out about a port, a controller or a plug-in: a verdict, and advice where it
// helps.

#ifndef HOST_DIAGNOSIS_FINDINGS_H
#define HOST_DIAGNOSIS_FINDINGS_H

#include "host/base/failure.h"
#include "host/port/line_errors.h"

#include <QList>
#include <QString>

#include <optional>

namespace host {

enum class Verdict { Good, Warning, Failed };

struct Finding
{
    QString check;
    Verdict verdict;
    QString text;
    QString advice;                            // empty when all is well
    ExitCode code = ExitCode::Success;         // what a failed check lets the program exit with
    std::optional<Cause> cause = std::nullopt; // of a failed check
};

// "ok", "warning" or "failed"
QString verdictName(Verdict verdict);

// The verdict, the check and what was found, and the advice below.
QString findingText(const Finding &finding);

Finding goodFinding(const QString &check, const QString &text);

// A warning when there is advice.
Finding findingWith(const QString &check, const QString &text, const QString &advice);

Finding failedFinding(const QString &check, const Failure &failure);

// What some reads, one after the other, brought.
struct ReadTrial
{
    QList<qint64> answerTimes;      // of the good reads, repetitions included; milliseconds
    std::optional<Failure> failure; // of the first read that failed
    int reads = 0;
    int requests = 0;       // repetitions included
    qint64 longestWait = 0; // from a frame sent to the whole of the next one received; milliseconds
};

Finding judgeAnswers(const ReadTrial &trial);
Finding judgeRetries(const ReadTrial &trial);

// timeout: milliseconds
Finding judgeTimeout(const ReadTrial &trial, int timeout);

// heard: whether anything came. isTakenOut: the echo is expected and never seen here.
Finding judgeEcho(bool heard, bool hasEcho, bool isTakenOut);

Finding judgeLineErrors(const std::optional<LineErrors> &before, const std::optional<LineErrors> &after);

} // namespace host

#endif
