// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is made of what was measured.

#include "host/diagnosis/findings.h"

#include "test_class.h"

#include <QtTest>

#include <optional>

using namespace host;

namespace {

const Failure kSilence(ExitCode::NoAnswer, "plc no response", "check cable");

ReadTrial trialOf(const QList<qint64> &times, int reads, int requests)
{
    ReadTrial trial;
    trial.answerTimes = times;
    trial.reads = reads;
    trial.requests = requests;
    return trial;
}

// "warning: text / advice / exit code"
QString told(const Finding &finding)
{
    return QString("%1: %2 / %3 / %4")
        .arg(verdictName(finding.verdict), finding.text, finding.advice)
        .arg(int(finding.code));
}

} // namespace

class TestFindings : public QObject
{
    Q_OBJECT

private slots:
    void aFindingIsALineAndItsAdviceAnother();
    void answersAreToldWithTheirTimes();
    void noAnswerIsTheFailureOfTheReads();
    void someAnswersAreAFailureStill();
    void repetitionsAreAWarning();
    void aTimeOutShouldBeTwiceTheLongestWait();
    void anEchoFailsUnlessItIsTakenOut();
    void onlyNewLineErrorsCount();
};

void TestFindings::aFindingIsALineAndItsAdviceAnother()
{
    QCOMPARE(findingText(goodFinding("echo", "none")), QString("ok      echo          none"));
    QCOMPARE(findingText(findingWith("latency", "16 ms", "set it to 1")),
             QString("warning latency       16 ms\n        -> set it to 1"));
    QCOMPARE(findingText(failedFinding("answers", kSilence)),
             QString("failed  answers       plc no response\n        -> check cable"));
}

void TestFindings::answersAreToldWithTheirTimes()
{
    QCOMPARE(told(judgeAnswers(trialOf({31, 24, 90, 25, 26}, 5, 5))),
             QString("ok: 5 of 5 reads: 24 ms at least, 26 ms median, 90 ms at most /  / 0"));
}

void TestFindings::noAnswerIsTheFailureOfTheReads()
{
    ReadTrial trial = trialOf({}, 3, 12);
    trial.failure = kSilence;
    QCOMPARE(told(judgeAnswers(trial)), QString("failed: plc no response / check cable / 4"));
}

void TestFindings::someAnswersAreAFailureStill()
{
    ReadTrial trial = trialOf({24}, 2, 5);
    trial.failure = kSilence;
    QCOMPARE(told(judgeAnswers(trial)),
             QString("failed: 1 of 2 reads: 24 ms at least, 24 ms median, 24 ms at most; plc no response / "
                     "check cable / 4"));
}

void TestFindings::repetitionsAreAWarning()
{
    QCOMPARE(told(judgeRetries(trialOf({24, 25}, 2, 2))), QString("ok: none were needed /  / 0"));
    QVERIFY(
        told(judgeRetries(trialOf({24, 25}, 2, 5))).startsWith("warning: 3 in 2 reads / answers get lost"));
}

void TestFindings::aTimeOutShouldBeTwiceTheLongestWait()
{
    ReadTrial trial = trialOf({24}, 1, 1);
    QCOMPARE(told(judgeTimeout(trial, 500)), QString("ok: 500 ms /  / 0"));
    trial.longestWait = 250;
    QCOMPARE(told(judgeTimeout(trial, 500)),
             QString("ok: 500 ms, and answers began and ended within 250 ms /  / 0"));
    QCOMPARE(told(judgeTimeout(trial, 499)),
             QString("warning: 499 ms, and answers began and ended within 250 ms / "
                     "that is close: choose --timeout 1000 / 0"));
    // What is advised is a round number.
    const auto advice = [&trial](qint64 longestWait) {
        trial.longestWait = longestWait;
        return judgeTimeout(trial, int(longestWait)).advice;
    };
    QCOMPARE(advice(31), QString("that is close: choose --timeout 200"));
    QCOMPARE(advice(481), QString("that is close: choose --timeout 2000"));
    QCOMPARE(advice(1101), QString("that is close: choose --timeout 4500"));
}

void TestFindings::anEchoFailsUnlessItIsTakenOut()
{
    QVERIFY(told(judgeEcho(true, true, false))
                .startsWith("failed: the adapter hears what it sends / use --echo"));
    QCOMPARE(told(judgeEcho(true, false, true)), QString("ok: taken out, as --echo says /  / 0"));
    QCOMPARE(told(judgeEcho(true, false, false)), QString("ok: none /  / 0"));
    QCOMPARE(told(judgeEcho(false, false, false)),
             QString("ok: none, as far as one can tell: nothing was heard at all /  / 0"));
}

void TestFindings::onlyNewLineErrorsCount()
{
    const LineErrors before = {7, 1, 0, 2};
    const LineErrors after = {10, 2, 2, 2};
    QCOMPARE(told(judgeLineErrors(before, before)), QString("ok: none /  / 0"));
    QCOMPARE(told(judgeLineErrors(LineErrors(), LineErrors{0, 0, 1, 0})).section(" / ", 0, 0),
             QString("warning: 1 lost character"));
    QVERIFY(
        told(judgeLineErrors(before, after))
            .startsWith("warning: 3 framing errors, 1 parity error, 2 lost characters / check baud rate"));
    QVERIFY(told(judgeLineErrors(before, std::nullopt)).startsWith("ok: not counted"));
    QVERIFY(told(judgeLineErrors(std::nullopt, after)).startsWith("ok: not counted"));
    QCOMPARE(told(judgeLineErrors(std::nullopt, std::nullopt)),
             QString("ok: not counted by this port's driver /  / 0"));
}

TEST_CLASS(TestFindings)
#include "test_findings.moc"
