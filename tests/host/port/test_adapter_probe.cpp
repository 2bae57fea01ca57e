// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the passing frames tell of an adapter, and that requests are counted, polls are not.

#include "host/port/adapter_probe.h"

#include "hex.h"
#include "test_class.h"

#include <QtTest>

using namespace host;

namespace {

const QByteArray kSentRequest = bytes("681b1b6802006c320100000001000e00000401120a10020001000183000000e316");
const QByteArray kSentPoll = bytes("1002005c5e16");
const QByteArray kAcknowledgementFrame = bytes("e5");

} // namespace

class TestAdapterProbe : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsHeardOfSilence();
    void anAnswerIsHeard();
    void theLongestWaitIsThatForTheFirstFrame();
    void requestsCountAndPollsDoNot();
    void ofAnotherProtocolTheFirstFrameOfACallIsItsRequest();
    void whatWasHeardBeforeARequestIsNoAnswerToIt();
};

void TestAdapterProbe::nothingIsHeardOfSilence()
{
    AdapterProbe probe;
    probe.sent(kSentRequest);
    probe.heardNothing(false);
    QVERIFY(!probe.hasHeard());
}

void TestAdapterProbe::anAnswerIsHeard()
{
    AdapterProbe probe;
    probe.sent(kSentRequest);
    probe.received(kAcknowledgementFrame);
    QVERIFY(probe.hasHeard());
}

void TestAdapterProbe::theLongestWaitIsThatForTheFirstFrame()
{
    AdapterProbe probe;
    probe.sent(kSentPoll);
    probe.received(kAcknowledgementFrame);
    const qint64 wait = probe.longestWait();
    QTest::qSleep(50);
    probe.received(kAcknowledgementFrame);
    QCOMPARE(probe.longestWait(), wait);
    probe.sent(kSentPoll);
    QTest::qSleep(50);
    probe.received(kAcknowledgementFrame);
    QVERIFY(probe.longestWait() >= 50);
}

void TestAdapterProbe::requestsCountAndPollsDoNot()
{
    AdapterProbe probe;
    QCOMPARE(probe.requestCount(), 0);
    probe.sent(kSentRequest);
    QCOMPARE(probe.requestCount(), 1);
    probe.received(kAcknowledgementFrame);
    probe.sent(kSentPoll);
    QCOMPARE(probe.requestCount(), 1);
    probe.heardNothing(false);
    probe.sent(kSentRequest);
    QCOMPARE(probe.requestCount(), 2);
}

void TestAdapterProbe::ofAnotherProtocolTheFirstFrameOfACallIsItsRequest()
{
    const QByteArray enquiry = bytes("05");
    const QByteArray command = bytes("02 4e 31 03");
    AdapterProbe probe;
    probe.beginCall();
    for (int attempt = 0; attempt < 3; ++attempt) {
        probe.sent(enquiry);
        probe.sent(command);
    }
    QCOMPARE(probe.requestCount(), 3);
    QCOMPARE(probe.frameCount(), 6);
    probe.beginCall();
    probe.sent(command);
    QCOMPARE(probe.requestCount(), 4);
}

void TestAdapterProbe::whatWasHeardBeforeARequestIsNoAnswerToIt()
{
    AdapterProbe probe;
    probe.sent(kSentRequest);
    probe.received(kAcknowledgementFrame);
    probe.sent(kSentPoll);
    QVERIFY(probe.hasHeardSinceRequest());
    probe.sent(kSentRequest);
    QVERIFY(!probe.hasHeardSinceRequest());
    QVERIFY(probe.hasHeard());
}

TEST_CLASS(TestAdapterProbe)
#include "test_adapter_probe.moc"
