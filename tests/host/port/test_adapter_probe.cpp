// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the passing frames tell of an adapter, and that requests are counted, polls are not.

#include "host/port/adapter_probe.h"

#include "hex.h"
#include "tests/host/support/prepared_port.h"

#include <QtTest>

using namespace host;

namespace {

const QByteArray kRequest = bytes("681b1b6802006c320100000001000e00000401120a10020001000183000000e316");
const QByteArray kPoll = bytes("1002005c5e16");
const QByteArray kAcknowledgementFrame = bytes("e5");

void send(CountingPort &port, const QByteArray &frame)
{
    QCOMPARE(port.send(reinterpret_cast<const unsigned char *>(frame.constData()), int(frame.size())),
             int(frame.size()));
}

} // namespace

class TestAdapterProbe : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsHeardOfSilence();
    void anAnswerIsNoEcho();
    void requestsThatAllComeBackAreAnEcho();
    void oneByteOfNoiseIsNoEcho();
    void anEchoedPollIsNotCounted();
    void theLongestWaitIsThatForTheFirstFrame();
    void requestsCountAndPollsDoNot();
    void everythingIsPassedOn();
};

void TestAdapterProbe::nothingIsHeardOfSilence()
{
    AdapterProbe probe;
    probe.sent(kRequest);
    probe.heardNothing(false);
    QVERIFY(!probe.hasHeard());
    QVERIFY(!probe.hasEcho());
}

void TestAdapterProbe::anAnswerIsNoEcho()
{
    AdapterProbe probe;
    probe.sent(kRequest);
    probe.received(kAcknowledgementFrame);
    QVERIFY(probe.hasHeard());
    QVERIFY(!probe.hasEcho());
}

// The first byte of the last one is still on its way to the listeners when the driver has given up.
void TestAdapterProbe::requestsThatAllComeBackAreAnEcho()
{
    AdapterProbe probe;
    probe.sent(kRequest);
    probe.received(kRequest.left(1));
    probe.sent(kRequest);
    probe.received(kRequest.left(1));
    probe.sent(kRequest);
    QVERIFY(probe.hasEcho());
}

void TestAdapterProbe::oneByteOfNoiseIsNoEcho()
{
    AdapterProbe probe;
    probe.sent(kRequest);
    probe.received(kRequest.left(1));
    probe.sent(kRequest);
    probe.received(kAcknowledgementFrame);
    probe.sent(kRequest);
    QVERIFY(!probe.hasEcho());
}

void TestAdapterProbe::anEchoedPollIsNotCounted()
{
    AdapterProbe probe;
    probe.sent(kRequest);
    probe.received(kAcknowledgementFrame);
    probe.sent(kPoll);
    probe.received(kPoll);
    QVERIFY(!probe.hasEcho());
}

void TestAdapterProbe::theLongestWaitIsThatForTheFirstFrame()
{
    AdapterProbe probe;
    probe.sent(kPoll);
    probe.received(kAcknowledgementFrame);
    const qint64 wait = probe.longestWait();
    QTest::qSleep(50);
    probe.received(kAcknowledgementFrame);
    QCOMPARE(probe.longestWait(), wait);
    probe.sent(kPoll);
    QTest::qSleep(50);
    probe.received(kAcknowledgementFrame);
    QVERIFY(probe.longestWait() >= 50);
}

void TestAdapterProbe::requestsCountAndPollsDoNot()
{
    PreparedPort prepared({});
    CountingPort port(prepared);
    QCOMPARE(port.requestCount(), 0);
    send(port, kRequest);
    QCOMPARE(port.requestCount(), 1);
    send(port, kPoll);
    QCOMPARE(port.requestCount(), 1);
    send(port, kRequest);
    QCOMPARE(port.requestCount(), 2);
}

void TestAdapterProbe::everythingIsPassedOn()
{
    PreparedPort prepared({bytes("e5")});
    CountingPort port(prepared);
    unsigned char buffer[1] = {};
    QCOMPARE(port.receive(buffer, 1), 1);
    QCOMPARE(int(buffer[0]), 0xe5);
    send(port, kPoll);
    QCOMPARE(hex(prepared.sent), QString("1002005c5e16"));
    QVERIFY(port.setOption(12, 0));
    QVERIFY(!port.setOption(11, 0));
    QCOMPARE(port.retry(), 4);
    QCOMPARE(port.stationId(), 5);
    QCOMPARE(port.delay(), 6);
}

QTEST_APPLESS_MAIN(TestAdapterProbe)
#include "test_adapter_probe.moc"
