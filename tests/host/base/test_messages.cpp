// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How failures and what helps against them are told.

#include "host/base/messages.h"

#include "host/base/failure.h"
#include "tests/host/support/taken_stderr.h"

#include "test_class.h"

#include <QtTest>

using namespace host;

class TestMessages : public QObject
{
    Q_OBJECT

private slots:
    void aHintIsToldOnceAmongMany();
};

void TestMessages::aHintIsToldOnceAmongMany()
{
    const Failure noisy(ExitCode::NoAnswer, "noise", "look at the shield");
    const TakenStderr messages;
    reportFailure(noisy);
    reportFailure("VB0", noisy);
    const QStringList twice = {"s7ppi: noise", "hint: look at the shield", "s7ppi: VB0: noise"};
    QCOMPARE(messages.lines(), twice);

    for (int i = 1; i < 1000; ++i)
        reportFailure(Failure(ExitCode::NoAnswer, "noise", QString("the bytes are %1").arg(i)));
    reportFailure(noisy);
    QCOMPARE(messages.lines().last(), QString("s7ppi: noise"));
    reportFailure(Failure(ExitCode::NoAnswer, "noise", "the bytes are 1000"));
    reportFailure(noisy);
    QCOMPARE(messages.lines().last(), QString("hint: look at the shield"));
}

TEST_CLASS(TestMessages)
#include "test_messages.moc"
