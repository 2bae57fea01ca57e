// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What only reads of bits do: they check the length of the answer, and trace counters.

#include "answer.h"
#include "commands.h"
#include "log_capture.h"
#include "outcome.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"
#include "test_class.h"

#include <QtTest>

namespace {

const char kCounter[] = "04 01 ff 09 00 03 10 12 34";

}

class TestBitReads : public QObject
{
    Q_OBJECT

private slots:
    void bitsThatStraddleOneByteMoreAreRefused();
    void answerThatDoesNotHoldTheBitsIsRefused_data();
    void answerThatDoesNotHoldTheBitsIsRefused();
    void countersAreTracedBeforeTheyAreDecoded();
    void countersAreTracedOncePerAttempt();
    void countersOfAWrongAnswerAreNotTraced();
    void timersAndMemoryAreNotTraced_data();
    void timersAndMemoryAreNotTraced();
};

// 3 bits need 1 byte, V10.6 to V11.0 lie in 2: those are asked for, and their answer is too long.
void TestBitReads::bitsThatStraddleOneByteMoreAreRefused()
{
    QCOMPARE(askedFor(bitCommand("V10.6", 3)), QString("0401120a10020002000184000050"));
    const Outcome outcome = outcomeOfRead(bitCommand("V10.6", 3), Answer("04 01 ff 04 00 10 c0 01"));
    QCOMPARE(outcome.result, QString(""));
    QCOMPARE(outcome.reason, QString("invalid response"));
    QCOMPARE(outcome.texts, QStringList() << "invalid response");
}

void TestBitReads::answerThatDoesNotHoldTheBitsIsRefused_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("item");
    QTest::newRow("bits beyond the data") << "V10.6" << 3 << "04 01 ff 04 00 08 c0";
    QTest::newRow("first bit beyond the data") << "V10.9" << 1 << "04 01 ff 04 00 08 ff";
    QTest::newRow("bit 17 beyond the data") << "V10.A" << 1 << "04 01 ff 04 00 08 ff";
    QTest::newRow("wrapped bit beyond the data") << "V10./" << 1 << "04 01 ff 04 00 08 ff";
    QTest::newRow("1 byte more") << "V10.0" << 8 << "04 01 ff 04 00 10 a5 00";
    QTest::newRow("1 byte less") << "V10.0" << 9 << "04 01 ff 04 00 08 a5";
    QTest::newRow("7 bits") << "V10.0" << 8 << "04 01 ff 04 00 07 a5";
    QTest::newRow("a whole word") << "VW10.0" << 8 << "04 01 ff 04 00 10 a5 00";
    QTest::newRow("return code 05") << "V10.0" << 8 << "04 01 05 04 00 08 a5";
    QTest::newRow("return code 00") << "V10.0" << 8 << "04 01 00 04 00 08 a5";
    QTest::newRow("transport size 3, 8 bits") << "V10.0" << 8 << "04 01 ff 03 00 08 a5";
    QTest::newRow("HC answered as an object") << "HC0" << 8 << "04 01 ff 09 00 05 00 01 02 03 04";
}

void TestBitReads::answerThatDoesNotHoldTheBitsIsRefused()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, item);
    const Outcome outcome = outcomeOfRead(bitCommand(address, count), Answer(item));
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("invalid response"));
    QCOMPARE(outcome.texts, QStringList() << "invalid response");
}

void TestBitReads::countersAreTracedBeforeTheyAreDecoded()
{
    const QString source("../../../runtime/drivers/simatic_s7_200_ppi/s7_200_ppi.cpp:");
    ScriptedPort port;
    port.serves(Answer(kCounter));
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, bitCommand("C5", 1));
    QCOMPARE(log.lines(), QStringList() << source + QString::number(log.lineNumbers().value(0)) + ":");
}

void TestBitReads::countersAreTracedOncePerAttempt()
{
    ScriptedPort port;
    port.retries(1).serves(Answer("04 01 05 00 00 00", 1)).serves(Answer(kCounter, 2));
    QCOMPARE(outcomeOfRead(bitCommand("C5", 1), port).texts, copies("", 2));
}

void TestBitReads::countersOfAWrongAnswerAreNotTraced()
{
    const CommunicatorCommand counter = bitCommand("C5", 1);
    const Answer withError = Answer(kCounter).withByte(Answer::kErrorClass, 1).sealed();
    QCOMPARE(outcomeOfRead(counter, Answer(kCounter, 9)).texts, QStringList() << "invalid response");
    QCOMPARE(outcomeOfRead(counter, withError).texts, QStringList() << "invalid request to PLC");
}

void TestBitReads::timersAndMemoryAreNotTraced_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("item");
    const auto row = [](const char *name, const char *address, const char *item) {
        QTest::newRow(name) << address << item;
    };
    row("T", "T37", "04 01 ff 09 00 05 02 00 00 12 34");
    row("V", "V10.0", "04 01 ff 04 00 08 a5");
    row("HC", "HC0", "04 01 ff 04 00 08 a5");
}

void TestBitReads::timersAndMemoryAreNotTraced()
{
    QFETCH(QString, address);
    QFETCH(QString, item);
    const Outcome outcome = outcomeOfRead(bitCommand(address, 1), Answer(item));
    QVERIFY(!outcome.failed);
    QCOMPARE(outcome.texts, QStringList());
}

TEST_CLASS(TestBitReads)

#include "test_bit_reads.moc"
