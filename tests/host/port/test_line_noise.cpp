// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is told of a line that never falls silent.

#include "host/port/line_noise.h"

#include "hex.h"
#include "test_class.h"

#include <QtTest>

using namespace host;

class TestLineNoise : public QObject
{
    Q_OBJECT

private slots:
    void itsBytesAreShown();
    void aFrameInItTellsWhoSends();
    void noFrameIsLookedForInAnotherProtocol();
};

void TestLineNoise::itsBytesAreShown()
{
    const Failure failure = noiseFailure({bytes("686868686868686868686868"), 512, 500});
    QCOMPARE(int(failure.code()), 5);
    QCOMPARE(failure.text(), QString("the line is never silent"));
    QVERIFY(failure.hint().startsWith("512 bytes in 500 ms, as 68 68 68 68 68 68 68 68: something keeps"));
    QVERIFY(noiseFailure({bytes("55"), 1, 40}).hint().startsWith("1 byte in 40 ms, as 55: "));
}

void TestLineNoise::aFrameInItTellsWhoSends()
{
    const Failure failure = noiseFailure({bytes("5e16e51005007c8116e510"), 60, 100});
    QCOMPARE(failure.text(), QString("the line is never silent; on it: poll of station 5"));
    QVERIFY(failure.hint().startsWith("60 bytes in 100 ms, as 10 05 00 7c 81 16: something keeps sending"));
}

void TestLineNoise::noFrameIsLookedForInAnotherProtocol()
{
    const Failure failure = noiseFailure({bytes("5e16e51005007c8116e510"), 60, 100}, false);
    QCOMPARE(failure.text(), QString("the line is never silent"));
}

TEST_CLASS(TestLineNoise)
#include "test_line_noise.moc"
