// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The port that leads nowhere: one request, its acknowledgement, its poll, silence.

#include "host/driver/dry_run_port.h"

#include "hex.h"
#include "test_class.h"

#include <QtTest>

using namespace host;

class TestDryRunPort : public QObject
{
    Q_OBJECT

private slots:
    void framesAreHandedOverAndCountAsSent();
    void onlyTheAcknowledgementIsReceived();
    void nothingIsRepeatedOrWaitedFor();
    void aDriverOfAnotherProtocolReceivesNothing();
};

void TestDryRunPort::framesAreHandedOverAndCountAsSent()
{
    QStringList frames;
    DryRunPort port(2, [&](const QByteArray &sent) { frames << hex(sent); });
    QVERIFY(!port.hasSent());
    const QByteArray frame = bytes("10 02 00 5c 5e 16");
    QCOMPARE(port.send(reinterpret_cast<const unsigned char *>(frame.constData()), 6), 6);
    QVERIFY(port.hasSent());
    QCOMPARE(frames, QStringList({"1002005c5e16"}));
}

void TestDryRunPort::onlyTheAcknowledgementIsReceived()
{
    DryRunPort port(2, [](const QByteArray &) {});
    unsigned char buffer[7] = {};
    QCOMPARE(port.receive(buffer, 1), 1);
    QCOMPARE(int(buffer[0]), 0xe5);
    QCOMPARE(port.receive(buffer, 7), 0);
    QCOMPARE(port.receive(buffer, 1), 0);
}

void TestDryRunPort::nothingIsRepeatedOrWaitedFor()
{
    DryRunPort port(7, [](const QByteArray &) {});
    QCOMPARE(port.retry(), 0);
    QCOMPARE(port.delay(), 0);
    QCOMPARE(port.stationId(), 7);
    QVERIFY(port.setOption(kClearInput, 0));
}

void TestDryRunPort::aDriverOfAnotherProtocolReceivesNothing()
{
    DryRunPort port(
        2, [](const QByteArray &) {}, false);
    unsigned char buffer[1] = {};
    QCOMPARE(port.receive(buffer, 1), 0);
}

TEST_CLASS(TestDryRunPort)
#include "test_dry_run_port.moc"
