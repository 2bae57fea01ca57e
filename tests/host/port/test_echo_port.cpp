// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Behind an adapter that hears itself: the echo is taken out, and compared.

#include "host/port/echo_port.h"

#include "hex.h"
#include "test_class.h"
#include "tests/host/support/prepared_port.h"

#include <QtTest>

#include <optional>

using namespace host;

namespace {

int send(EchoPort &port, const char *frame)
{
    const QByteArray data = bytes(frame);
    return port.send(reinterpret_cast<const unsigned char *>(data.constData()), int(data.size()));
}

int receive(EchoPort &port)
{
    unsigned char byte = 0;
    return port.receive(&byte, 1) == 1 ? byte : -1;
}

QString textOf(const std::optional<Failure> &failure)
{
    return failure ? QString("%1: %2").arg(int(failure->code())).arg(failure->text()) : QString();
}

} // namespace

class TestEchoPort : public QObject
{
    Q_OBJECT

private slots:
    void theEchoIsTakenOut();
    void anotherEchoEndsTheRequest_data();
    void anotherEchoEndsTheRequest();
    void theNextRequestBeginsAnew();
};

void TestEchoPort::theEchoIsTakenOut()
{
    PreparedPort prepared({bytes("10 02 00 5c 5e 16"), bytes("e5")});
    EchoPort port(prepared);
    QCOMPARE(send(port, "10 02 00 5c 5e 16"), 6);
    QCOMPARE(receive(port), 0xe5);
    QCOMPARE(port.retry(), 4);
    QCOMPARE(textOf(port.takeFailure()), QString());
}

void TestEchoPort::anotherEchoEndsTheRequest_data()
{
    QTest::addColumn<QByteArray>("heard");
    QTest::addColumn<QString>("failure");
    QTest::newRow("damaged")
        << bytes("10 02 00 5d 5e 16")
        << "5: the echo is not what was sent: 10 02 00 5d 5e 16 and not 10 02 00 5c 5e 16";
    QTest::newRow("too short") << bytes("10 02")
                               << "5: the echo is not what was sent: 10 02 and not 10 02 00 5c 5e 16";
    QTest::newRow("none") << QByteArray() << "5: the adapter did not echo what was sent";
}

void TestEchoPort::anotherEchoEndsTheRequest()
{
    QFETCH(QByteArray, heard);
    PreparedPort prepared({heard, bytes("e5")});
    EchoPort port(prepared);
    QCOMPARE(send(port, "10 02 00 5c 5e 16"), -1);
    QCOMPARE(receive(port), -1);
    QCOMPARE(port.retry(), 0);
    QTEST(textOf(port.takeFailure()), "failure");
}

void TestEchoPort::theNextRequestBeginsAnew()
{
    PreparedPort prepared({bytes("00"), bytes("ff"), bytes("e5")});
    EchoPort port(prepared);
    QCOMPARE(send(port, "01"), -1);
    port.takeFailure();
    QCOMPARE(send(port, "ff"), 1);
    QCOMPARE(receive(port), 0xe5);
}

TEST_CLASS(TestEchoPort)
#include "test_echo_port.moc"
