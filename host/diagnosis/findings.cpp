// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/diagnosis/findings.h"

#include "host/base/filled.h"
#include "host/port/echo_port.h"

#include <QStringList>

#include <algorithm>
#include <optional>

namespace host {

namespace {

constexpr int kVerdictWidth = 8;
constexpr int kCheckWidth = 14;

QString timesText(QList<qint64> times)
{
    std::sort(times.begin(), times.end());
    return filled("%1 ms at least, %2 ms median, %3 ms at most", times.first(), times.at(times.size() / 2),
                  times.last());
}

// A time of which a user sees that it is an estimate: the next hundred milliseconds, above a second the next
// half one.
qint64 roundedUp(qint64 milliseconds)
{
    const qint64 step = milliseconds <= 1000 ? 100 : 500;
    return (milliseconds + step - 1) / step * step;
}

} // namespace

QString verdictName(Verdict verdict)
{
    return QStringList({"ok", "warning", "failed"}).at(int(verdict));
}

QString findingText(const Finding &finding)
{
    const QString line = verdictName(finding.verdict).leftJustified(kVerdictWidth) +
                         finding.check.leftJustified(kCheckWidth) + finding.text;
    return finding.advice.isEmpty() ? line
                                    : line + '\n' + QString(kVerdictWidth, ' ') + "-> " + finding.advice;
}

Finding goodFinding(const QString &check, const QString &text)
{
    return {check, Verdict::Good, text, QString()};
}

Finding findingWith(const QString &check, const QString &text, const QString &advice)
{
    return {check, advice.isEmpty() ? Verdict::Good : Verdict::Warning, text, advice};
}

Finding failedFinding(const QString &check, const Failure &failure)
{
    return {check, Verdict::Failed, failure.text(), failure.hint(), failure.code(), failure.cause()};
}

Finding judgeAnswers(const ReadTrial &trial)
{
    const int good = int(trial.answerTimes.size());
    if (good == 0)
        return failedFinding("answers", *trial.failure);
    const QString text = filled("%1 of %2 reads: ", good, trial.reads) + timesText(trial.answerTimes);
    if (!trial.failure)
        return goodFinding("answers", text);
    return failedFinding("answers", trial.failure->withText(text + "; " + trial.failure->text()));
}

Finding judgeRetries(const ReadTrial &trial)
{
    const int repetitions = trial.requests - trial.reads;
    if (repetitions == 0)
        return goodFinding("retries", "none were needed");
    return findingWith("retries", filled("%1 in %2 reads", repetitions, trial.reads),
                       "answers get lost or damaged: check cable, termination and biasing");
}

Finding judgeTimeout(const ReadTrial &trial, int timeout)
{
    const QString waits = QString(", and answers began and ended within %1 ms").arg(trial.longestWait);
    const QString text = QString("%1 ms").arg(timeout) + (trial.longestWait > 0 ? waits : QString());
    const bool isTight = 2 * trial.longestWait > timeout;
    return findingWith(
        "time-out", text,
        isTight ? QString("that is close: choose --timeout %1").arg(roundedUp(4 * trial.longestWait))
                : QString());
}

Finding judgeEcho(bool heard, bool hasEcho, bool isTakenOut)
{
    if (hasEcho)
        return failedFinding("echo", echoFailure());
    if (isTakenOut)
        return goodFinding("echo", "taken out, as --echo says");
    return goodFinding("echo", heard ? "none" : "none, as far as one can tell: nothing was heard at all");
}

Finding judgeLineErrors(const std::optional<LineErrors> &before, const std::optional<LineErrors> &after)
{
    if (!before || !after)
        return goodFinding("line errors", "not counted by this port's driver");
    const QString text = errorsText(*after - *before);
    if (text.isEmpty())
        return goodFinding("line errors", "none");
    return findingWith("line errors", text,
                       "check baud rate and parity, then cable, termination and biasing");
}

} // namespace host
