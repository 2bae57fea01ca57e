// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The first failure of several parts gives the exit code, whoever tells of it.

#include "host/base/outcome.h"

#include "test_class.h"

#include <QtTest>

using namespace host;

class TestOutcome : public QObject
{
    Q_OBJECT

private slots:
    void nothingThatFailsIsASuccess();
    void theFirstFailureGivesTheExitCode();
    void whatIsToldElsewhereCountsToo();
};

void TestOutcome::nothingThatFailsIsASuccess()
{
    Outcome outcome;
    QVERIFY(!outcome.attempt("VB0", [] {}));
    outcome.keep(ExitCode::Success);
    QVERIFY(outcome.isSuccess());
    QCOMPARE(outcome.exitCode(), 0);
}

void TestOutcome::theFirstFailureGivesTheExitCode()
{
    Outcome outcome;
    const auto failure = outcome.attempt("VB0", [] { throw Failure(ExitCode::NoAnswer, "silence", "wait"); });
    QVERIFY(failure.has_value());
    QCOMPARE(failure->text(), QString("silence"));
    outcome.keep(ExitCode::Refused);
    QVERIFY(outcome.attempt("VB1", [] { throw Failure(ExitCode::PortLost, "gone", "wait"); }));
    QVERIFY(!outcome.isSuccess());
    QCOMPARE(outcome.exitCode(), 4);
}

void TestOutcome::whatIsToldElsewhereCountsToo()
{
    Outcome outcome;
    outcome.keep(ExitCode::Success);
    outcome.keep(ExitCode::Usage);
    outcome.add("VB0", Failure(ExitCode::NoAnswer, "silence", "wait"));
    QVERIFY(!outcome.isSuccess());
    QCOMPARE(int(outcome.code()), 2);
}

TEST_CLASS(TestOutcome)
#include "test_outcome.moc"
