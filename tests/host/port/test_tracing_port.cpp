// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The trace: one line per frame, whatever the pieces it came in; the port behind it sees every call.

#include "host/port/tracing_port.h"

#include "hex.h"
#include "host/frames/trace_printer.h"
#include "test_class.h"
#include "tests/host/support/prepared_port.h"

#include <QtTest>

using namespace host;

class TestTracingPort : public QObject
{
    Q_OBJECT

private slots:
    void anExchangeIsFourLines();
    void silenceAndLossAreShown();
    void aReceiveThatFallsShortIsShownAtOnce();
    void anIncompleteFrameIsShownBeforeTheNextOneIsSent();
    void whatIsLeftIsShownAtTheEnd();
    void everythingIsPassedOn();
    void anUnknownFrameEndsWhenTheDriverIsDone();

private:
    static void receive(TracingPort &port, int length);
    static void send(TracingPort &port, const char *frame);
};

void TestTracingPort::receive(TracingPort &port, int length)
{
    unsigned char buffer[300] = {};
    port.receive(buffer, length);
}

void TestTracingPort::send(TracingPort &port, const char *frame)
{
    const QByteArray data = bytes(frame);
    QCOMPARE(port.send(reinterpret_cast<const unsigned char *>(data.constData()), int(data.size())),
             int(data.size()));
}

void TestTracingPort::anExchangeIsFourLines()
{
    PreparedPort prepared({bytes("e5"), bytes("68 12 12 68 00 02 08"),
                           bytes("32 03 00 00 00 01 00 02 00 01 00 00 05 01 ff 48 16")});
    QStringList lines;
    TracePrinter shown([&](const QString &line) { lines << line; });
    TracingPort port(prepared, {&shown});
    send(port, "10 02 00 5c 5e 16");
    receive(port, 1);
    send(port, "10 02 00 5c 5e 16");
    receive(port, 7);
    QCOMPARE(lines.size(), 3);
    receive(port, 17);
    QCOMPARE(lines, QStringList(
                        {"-> poll of station 2: 10 02 00 5c 5e 16", "<- acknowledgement: e5",
                         "-> poll of station 2: 10 02 00 5c 5e 16",
                         "<- answer to request 1 from station 2: done (FF): 68 12 12 68 00 02 08 32 03 00 00 "
                         "00 01 00 02 00 01 00 00 05 01 ff 48 16"}));
}

void TestTracingPort::silenceAndLossAreShown()
{
    PreparedPort prepared({QByteArray()});
    QStringList lines;
    TracePrinter shown([&](const QString &line) { lines << line; });
    TracingPort port(prepared, {&shown});
    receive(port, 1);
    receive(port, 1);
    QCOMPARE(lines, QStringList({"<- silence", "<- nothing more"}));
}

void TestTracingPort::aReceiveThatFallsShortIsShownAtOnce()
{
    PreparedPort prepared({bytes("10 00 02")});
    QStringList lines;
    TracePrinter shown([&](const QString &line) { lines << line; });
    TracingPort port(prepared, {&shown});
    receive(port, 6);
    QCOMPARE(lines, QStringList({"<- incomplete frame: 10 00 02"}));
}

void TestTracingPort::anIncompleteFrameIsShownBeforeTheNextOneIsSent()
{
    PreparedPort prepared({bytes("10 00 02")});
    QStringList lines;
    TracePrinter shown([&](const QString &line) { lines << line; });
    TracingPort port(prepared, {&shown});
    receive(port, 3);
    QCOMPARE(lines, QStringList());
    send(port, "10 02 00 5c 5e 16");
    QCOMPARE(lines,
             QStringList({"<- incomplete frame: 10 00 02", "-> poll of station 2: 10 02 00 5c 5e 16"}));
}

void TestTracingPort::whatIsLeftIsShownAtTheEnd()
{
    PreparedPort prepared({bytes("10 00 02")});
    QStringList lines;
    TracePrinter shown([&](const QString &line) { lines << line; });
    {
        TracingPort port(prepared, {&shown});
        receive(port, 3);
    }
    QCOMPARE(lines, QStringList({"<- incomplete frame: 10 00 02"}));
}

void TestTracingPort::everythingIsPassedOn()
{
    PreparedPort prepared({bytes("e5")});
    TracingPort port(prepared, {});
    unsigned char buffer[1] = {};
    QCOMPARE(port.receive(buffer, 1), 1);
    QCOMPARE(int(buffer[0]), 0xe5);
    send(port, "01 02");
    QCOMPARE(hex(prepared.sent), QString("0102"));
    QVERIFY(port.setOption(kClearInput, 0));
    QVERIFY(!port.setOption(kClearInput, 1));
    QVERIFY(!port.setOption(kClearInput - 1, 0));
    QCOMPARE(port.retry(), 4);
    QCOMPARE(port.stationId(), 5);
    QCOMPARE(port.delay(), 6);
}

void TestTracingPort::anUnknownFrameEndsWhenTheDriverIsDone()
{
    PreparedPort prepared({bytes("e5 10 68"), bytes("0d")});
    QStringList lines;
    TracePrinter shown([&](const QString &line) { lines << line; }, false);
    TracingPort port(prepared, {&shown}, false);
    send(port, "10 02 00 5c 5e 16");
    receive(port, 3);
    receive(port, 1);
    QCOMPARE(lines, QStringList({"-> 10 02 00 5c 5e 16"}));
    port.tellReceived();
    QCOMPARE(lines.mid(1), QStringList({"<- e5 10 68 0d"}));
}

TEST_CLASS(TestTracingPort)
#include "test_tracing_port.moc"
