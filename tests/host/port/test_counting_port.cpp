// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Requests are counted, polls are not, and everything is passed on.

#include "host/port/counting_port.h"

#include "hex.h"
#include "tests/host/support/prepared_port.h"

#include <QtTest>

using namespace host;

class TestCountingPort : public QObject
{
    Q_OBJECT

private slots:
    void requestsCountAndPollsDoNot();
    void everythingIsPassedOn();
};

namespace {

void send(CountingPort &port, const char *frame)
{
    const QByteArray data = bytes(frame);
    QCOMPARE(port.send(reinterpret_cast<const unsigned char *>(data.constData()), int(data.size())),
             int(data.size()));
}

const char kRequest[] = "68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                        "04 01 12 0a 10 02 00 04 00 01 84 00 03 20 8f 16";
const char kPoll[] = "10 02 00 5c 5e 16";

} // namespace

void TestCountingPort::requestsCountAndPollsDoNot()
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

void TestCountingPort::everythingIsPassedOn()
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

QTEST_APPLESS_MAIN(TestCountingPort)
#include "test_counting_port.moc"
