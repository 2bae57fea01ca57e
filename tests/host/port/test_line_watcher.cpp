// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the passing frames tell of an adapter.

#include "host/port/line_watcher.h"

#include "hex.h"

#include <QtTest>

using namespace host;

namespace {

const QByteArray kRequest = bytes("681b1b6802006c320100000001000e00000401120a10020001000183000000e316");
const QByteArray kPoll = bytes("1002005c5e16");
const QByteArray kAcknowledgementFrame = bytes("e5");

} // namespace

class TestLineWatcher : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsHeardOfSilence();
    void anAnswerIsNoEcho();
    void requestsThatAllComeBackAreAnEcho();
    void oneByteOfNoiseIsNoEcho();
    void anEchoedPollIsNotCounted();
    void theLongestWaitIsThatForTheFirstFrame();
};

void TestLineWatcher::nothingIsHeardOfSilence()
{
    LineWatcher watcher;
    watcher.sent(kRequest);
    watcher.heardNothing(false);
    QVERIFY(!watcher.hasHeard());
    QVERIFY(!watcher.hasEcho());
}

void TestLineWatcher::anAnswerIsNoEcho()
{
    LineWatcher watcher;
    watcher.sent(kRequest);
    watcher.received(kAcknowledgementFrame);
    QVERIFY(watcher.hasHeard());
    QVERIFY(!watcher.hasEcho());
}

// The first byte of the last one is still on its way to the listeners when the driver has given up.
void TestLineWatcher::requestsThatAllComeBackAreAnEcho()
{
    LineWatcher watcher;
    watcher.sent(kRequest);
    watcher.received(kRequest.left(1));
    watcher.sent(kRequest);
    watcher.received(kRequest.left(1));
    watcher.sent(kRequest);
    QVERIFY(watcher.hasEcho());
}

void TestLineWatcher::oneByteOfNoiseIsNoEcho()
{
    LineWatcher watcher;
    watcher.sent(kRequest);
    watcher.received(kRequest.left(1));
    watcher.sent(kRequest);
    watcher.received(kAcknowledgementFrame);
    watcher.sent(kRequest);
    QVERIFY(!watcher.hasEcho());
}

void TestLineWatcher::anEchoedPollIsNotCounted()
{
    LineWatcher watcher;
    watcher.sent(kRequest);
    watcher.received(kAcknowledgementFrame);
    watcher.sent(kPoll);
    watcher.received(kPoll);
    QVERIFY(!watcher.hasEcho());
}

void TestLineWatcher::theLongestWaitIsThatForTheFirstFrame()
{
    LineWatcher watcher;
    watcher.sent(kPoll);
    watcher.received(kAcknowledgementFrame);
    const qint64 wait = watcher.longestWait();
    QTest::qSleep(50);
    watcher.received(kAcknowledgementFrame);
    QCOMPARE(watcher.longestWait(), wait);
    watcher.sent(kPoll);
    QTest::qSleep(50);
    watcher.received(kAcknowledgementFrame);
    QVERIFY(watcher.longestWait() >= 50);
}

QTEST_APPLESS_MAIN(TestLineWatcher)
#include "test_line_watcher.moc"
