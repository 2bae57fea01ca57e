// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Every call of the port is looked at: what is asked of it decides whether a driver waits for bytes that
// never come, or takes those of the next answer.

#include "hex.h"
#include "scripted_port.h"
#include "short_memory.h"
#include "test_class.h"
#include "tools/receive.h"

#include <QtTest>

#include <climits>

namespace {

// The line carries these bytes, as if they were the answer to a request.
void carry(ScriptedPort &port, const QByteArray &bytes)
{
    port.expects("00").answers(bytes);
    const unsigned char request = 0;
    port.send(&request, 1);
}

// The calls of receive(), as "1>1 2>0": so many bytes asked for, so many received.
QString callsOf(const ScriptedPort &port)
{
    QStringList calls;
    for (const QString &event : port.events())
        if (event.startsWith("receive("))
            calls << QString(event).remove("receive(").replace(") -> ", ">");
    return calls.join(" ");
}

QByteArray leftIn(ScriptedPort &port)
{
    QByteArray bytes(100, '\0');
    bytes.resize(port.receive(reinterpret_cast<unsigned char *>(bytes.data()), int(bytes.size())));
    return bytes;
}

// Hands over one byte at a time, however many it is asked for.
class SlowPort : public ScriptedPort
{
public:
    int receive(unsigned char *buffer, int maxLength) override
    {
        return ScriptedPort::receive(buffer, qMin(maxLength, 1));
    }
};

} // namespace

class TestReceive : public QObject
{
    Q_OBJECT

private slots:
    void endsHaveTheirNumbers();
    void answersEndAtTheirTerminator_data();
    void answersEndAtTheirTerminator();
    void whatComesBehindTheTerminatorStaysInThePort();
    void bytesThatComeOneByOneMakeAnAnswer();
    void silenceEndsAnAnswer_data();
    void silenceEndsAnAnswer();
    void theLimitEndsAnAnswer_data();
    void theLimitEndsAnAnswer();
    void anEmptyTerminatorIsThereAtOnce();
    void linesComeWithoutTheirEnd_data();
    void linesComeWithoutTheirEnd();
    void aLineThatIsNotWholeIsLeftAsItCame();
    void aKnownLengthIsReceivedWhole();
    void aKnownLengthThatDoesNotComeIsShort();
    void noBytesAreReceivedWithoutACall();
    void anErrorOfThePortIsSilence();
    void aPortThatClaimsTooMuchIsNotBelieved();
    void aLengthBeyondMemoryIsRefused();
};

// They are compiled into drivers.
void TestReceive::endsHaveTheirNumbers()
{
    QCOMPARE(int(kReceptionWhole), 0);
    QCOMPARE(int(kReceptionShort), 1);
    QCOMPARE(int(kReceptionLong), 2);
}

void TestReceive::answersEndAtTheirTerminator_data()
{
    QTest::addColumn<QByteArray>("terminator");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("calls");
    QTest::newRow("a byte") << QByteArray("\r") << QByteArray("OK\r") << "1>1 1>1 1>1";
    QTest::newRow("two bytes in one read") << QByteArray("\r\n") << QByteArray("OK\r\n") << "2>2 2>2";
    QTest::newRow("two bytes in two reads") << QByteArray("\r\n") << QByteArray("ACK\r\n") << "2>2 2>2 1>1";
    QTest::newRow("its beginning twice") << QByteArray("\r\n") << QByteArray("A\r\r\n") << "2>2 1>1 1>1";
    QTest::newRow("its beginning within it") << QByteArray("aab") << QByteArray("aaab") << "3>3 1>1";
    QTest::newRow("nothing but it") << QByteArray("\r\n") << QByteArray("\r\n") << "2>2";
    QTest::newRow("zero bytes") << QByteArray("\0\0", 2) << QByteArray("1\0002\0\0", 5) << "2>2 1>1 2>2";
}

void TestReceive::answersEndAtTheirTerminator()
{
    QFETCH(QByteArray, terminator);
    QFETCH(QByteArray, answer);
    ScriptedPort port;
    carry(port, answer);
    const Reception reception = receiveUntil(&port, terminator, 100);
    QCOMPARE(reception.end, kReceptionWhole);
    QVERIFY(reception.isWhole());
    QCOMPARE(hex(reception.bytes), hex(answer));
    QTEST(callsOf(port), "calls");
}

void TestReceive::whatComesBehindTheTerminatorStaysInThePort()
{
    ScriptedPort port;
    carry(port, "OK\r\n!late\r\n");
    QCOMPARE(receiveUntil(&port, "\r\n", 100).bytes, QByteArray("OK\r\n"));
    QCOMPARE(leftIn(port), QByteArray("!late\r\n"));
}

void TestReceive::bytesThatComeOneByOneMakeAnAnswer()
{
    SlowPort port;
    carry(port, "N 17\r\n12345");
    QCOMPARE(receiveUntil(&port, "\r\n", 100).bytes, QByteArray("N 17\r\n"));
    QCOMPARE(receiveExactly(&port, 4).bytes, QByteArray("1234"));
    QCOMPARE(leftIn(port), QByteArray("5"));
}

void TestReceive::silenceEndsAnAnswer_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("calls");
    QTest::newRow("nothing came") << QByteArray() << "2>0";
    QTest::newRow("no terminator") << QByteArray("OK") << "2>2 2>0";
    QTest::newRow("half a terminator") << QByteArray("A\r") << "2>2 1>0";
    QTest::newRow("half of what was asked for") << QByteArray("A") << "2>1 2>0";
}

void TestReceive::silenceEndsAnAnswer()
{
    QFETCH(QByteArray, answer);
    ScriptedPort port;
    carry(port, answer);
    const Reception reception = receiveUntil(&port, "\r\n", 100);
    QCOMPARE(reception.end, kReceptionShort);
    QVERIFY(!reception.isWhole());
    QCOMPARE(hex(reception.bytes), hex(answer));
    QTEST(callsOf(port), "calls");
}

void TestReceive::theLimitEndsAnAnswer_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<int>("end");
    QTest::newRow("the terminator just fits") << 6 << QByteArray("ABCD\r\n") << int(kReceptionWhole);
    QTest::newRow("half of the terminator is beyond") << 5 << QByteArray("ABCD\r") << int(kReceptionLong);
    QTest::newRow("the terminator is beyond") << 3 << QByteArray("ABC") << int(kReceptionLong);
    QTest::newRow("no byte is allowed") << 0 << QByteArray() << int(kReceptionLong);
    QTest::newRow("a limit below 0") << INT_MIN << QByteArray() << int(kReceptionLong);
}

void TestReceive::theLimitEndsAnAnswer()
{
    QFETCH(int, limit);
    QFETCH(QByteArray, received);
    const QByteArray answer("ABCD\r\n");
    ScriptedPort port;
    carry(port, answer);
    const Reception reception = receiveUntil(&port, "\r\n", limit);
    QTEST(int(reception.end), "end");
    QCOMPARE(hex(reception.bytes), hex(received));
    QCOMPARE(hex(leftIn(port)), hex(answer.mid(received.size())));
}

void TestReceive::anEmptyTerminatorIsThereAtOnce()
{
    ScriptedPort port;
    carry(port, "OK");
    QVERIFY(receiveUntil(&port, QByteArray(), 100).isWhole());
    QCOMPARE(callsOf(port), QString());
}

void TestReceive::linesComeWithoutTheirEnd_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("line feed") << QByteArray("OK 17\n") << QByteArray("OK 17");
    QTest::newRow("carriage return and line feed") << QByteArray("OK 17\r\n") << QByteArray("OK 17");
    QTest::newRow("carriage returns within and twice") << QByteArray("A\rB\r\r\n") << QByteArray("A\rB\r");
    QTest::newRow("an empty one") << QByteArray("\r\n") << QByteArray();
}

void TestReceive::linesComeWithoutTheirEnd()
{
    QFETCH(QByteArray, answer);
    QFETCH(QByteArray, line);
    ScriptedPort port;
    carry(port, answer + "next\n");
    const Reception reception = receiveLine(&port, int(answer.size()));
    QVERIFY(reception.isWhole());
    QCOMPARE(hex(reception.bytes), hex(line));
    QCOMPARE(leftIn(port), QByteArray("next\n"));
}

void TestReceive::aLineThatIsNotWholeIsLeftAsItCame()
{
    ScriptedPort port;
    carry(port, "OK\r\n");
    QCOMPARE(receiveLine(&port, 3).bytes, QByteArray("OK\r"));
    QCOMPARE(receiveLine(&port, 3).bytes, QByteArray());
    QCOMPARE(receiveLine(&port, 3).end, kReceptionShort);
}

void TestReceive::aKnownLengthIsReceivedWhole()
{
    ScriptedPort port;
    carry(port, "12345678");
    QCOMPARE(receiveExactly(&port, 5).bytes, QByteArray("12345"));
    QCOMPARE(callsOf(port), QString("5>5"));
    QCOMPARE(leftIn(port), QByteArray("678"));
}

void TestReceive::aKnownLengthThatDoesNotComeIsShort()
{
    ScriptedPort port;
    carry(port, "123");
    const Reception reception = receiveExactly(&port, 5);
    QCOMPARE(reception.end, kReceptionShort);
    QCOMPARE(reception.bytes, QByteArray("123"));
    QCOMPARE(callsOf(port), QString("5>3 2>0"));
}

void TestReceive::noBytesAreReceivedWithoutACall()
{
    ScriptedPort port;
    carry(port, "123");
    QVERIFY(receiveExactly(&port, 0).isWhole());
    QVERIFY(receiveExactly(&port, -1).isWhole());
    QCOMPARE(callsOf(port), QString());
}

void TestReceive::anErrorOfThePortIsSilence()
{
    ScriptedPort port;
    port.receiveClaims(1, -1);
    carry(port, "OK\r\n");
    const Reception reception = receiveLine(&port, 100);
    QCOMPARE(reception.end, kReceptionShort);
    QCOMPARE(reception.bytes, QByteArray());
}

void TestReceive::aPortThatClaimsTooMuchIsNotBelieved()
{
    ScriptedPort port;
    port.receiveClaims(1, 1000);
    carry(port, "12");
    const Reception reception = receiveExactly(&port, 2);
    QVERIFY(reception.isWhole());
    QCOMPARE(reception.bytes, QByteArray("12"));
}

void TestReceive::aLengthBeyondMemoryIsRefused()
{
    ScriptedPort port;
    carry(port, "123");
    const ShortMemory memory;
    const Reception reception = receiveExactly(&port, INT_MAX - 100);
    QCOMPARE(reception.end, kReceptionLong);
    QCOMPARE(int(reception.bytes.size()), 0);
    QCOMPARE(callsOf(port), QString());
}

TEST_CLASS(TestReceive)
#include "test_receive.moc"
