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
    void aFrameInItTellsWhoSends_data();
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

void TestLineNoise::aFrameInItTellsWhoSends_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<QString>("words");
    QTest::newRow("poll") << bytes("1005007c8116") << "poll of station 5";
    QTest::newRow("no resource") << bytes("100005020716") << "refused by station 5: no resource";
    QTest::newRow("request") << bytes("681b1b6807006c320100000001000e00000401120a100200040001840003209416")
                             << "request to station 7";
    QTest::newRow("the next request")
        << bytes("681b1b6807006c320100000002000e00000401120a100200040001840003209516")
        << "request to station 7";
    QTest::newRow("answer") << bytes("681616680002083203000000010002000500000401ff040008116816")
                            << "answer from station 2";
    QTest::newRow("the next answer") << bytes("681616680002083203000000020002000500000401ff040008116916")
                                     << "answer from station 2";
}

void TestLineNoise::aFrameInItTellsWhoSends()
{
    QFETCH(QByteArray, frame);
    QFETCH(QString, words);
    const Failure failure = noiseFailure({bytes("5e16e5") + frame + bytes("e510"), 60, 100});
    QCOMPARE(failure.text(), "the line is never silent; on it: " + words);
    QVERIFY(failure.hint().startsWith("60 bytes in 100 ms, as " + frame.toHex(' ') +
                                      ": something keeps sending"));
}

void TestLineNoise::noFrameIsLookedForInAnotherProtocol()
{
    const Failure failure = noiseFailure({bytes("5e16e51005007c8116e510"), 60, 100}, false);
    QCOMPARE(failure.text(), QString("the line is never silent"));
}

TEST_CLASS(TestLineNoise)
#include "test_line_noise.moc"
