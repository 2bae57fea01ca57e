// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Writes of more than memory, an array or a frame can hold: they fail, and the driver goes on.

#include "answer.h"
#include "commands.h"
#include "hex.h"
#include "log_capture.h"
#include "outcome.h"
#include "scripted_port.h"
#include "short_memory.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QtTest>

#include <climits>

class TestHugeWrites : public QObject
{
    Q_OBJECT

private slots:
    void countsThatNoArrayHoldsFail_data();
    void countsThatNoArrayHoldsFail();
    void countsThatMemoryDoesNotHoldFail_data();
    void countsThatMemoryDoesNotHoldFail();
    void nextWriteIsTakenAfterACountThatNothingHolds();
    void countsThatNothingHoldsDoNotMatterForBytesAndBits_data();
    void countsThatNothingHoldsDoNotMatterForBytesAndBits();
    void dataThatNoFrameHoldsFail();
};

void TestHugeWrites::countsThatNoArrayHoldsFail_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::newRow("2^31 bytes of words") << int(kWords) << "VW0" << 0x40000000;
    QTest::newRow("INT_MAX words") << int(kWords) << "VW0" << INT_MAX;
    QTest::newRow("INT_MAX words of bytes") << int(kWords) << "VB0" << INT_MAX;
    QTest::newRow("2^31 bytes of double words") << int(kDoubleWords) << "VD0" << 0x20000000;
    QTest::newRow("2^32 bytes of double words") << int(kDoubleWords) << "VD0" << 0x40000000;
    QTest::newRow("INT_MAX double words") << int(kDoubleWords) << "VD0" << INT_MAX;
    QTest::newRow("INT_MAX timers") << int(kWords) << "T0" << INT_MAX;
    QTest::newRow("INT_MAX counters") << int(kDoubleWords) << "C0" << INT_MAX;
}

void TestHugeWrites::countsThatNoArrayHoldsFail()
{
    QFETCH(int, dataType);
    QFETCH(QString, address);
    QFETCH(int, count);
    ScriptedPort port;
    port.retries(1);
    const Outcome outcome = outcomeOfWrite(command(dataType, address, count), bytes("3412"), port);
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("invalid request to PLC"));
    QCOMPARE(outcome.texts, copies("invalid request to PLC", 2));
    QVERIFY(port.scriptIsFinished());
}

void TestHugeWrites::countsThatMemoryDoesNotHoldFail_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    const int million = 1000000;
    QTest::newRow("1 GB of words") << int(kWords) << "VW0" << 500 * million;
    QTest::newRow("1 GB of double words") << int(kDoubleWords) << "VD0" << 250 * million;
    QTest::newRow("1 GB of timers") << int(kWords) << "T0" << 500 * million;
    QTest::newRow("1 GB of counters") << int(kWords) << "C0" << 500 * million;
    QTest::newRow("40 MB of words, which fit once") << int(kWords) << "VW0" << 20 * million;
    QTest::newRow("40 MB of timers, which fit once") << int(kWords) << "T0" << 20 * million;
}

void TestHugeWrites::countsThatMemoryDoesNotHoldFail()
{
    QFETCH(int, dataType);
    QFETCH(QString, address);
    QFETCH(int, count);
    ScriptedPort port;
    const ShortMemory shortMemory;
    const Outcome outcome = outcomeOfWrite(command(dataType, address, count), bytes("3412"), port);
    QCOMPARE(outcome.result, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("invalid request to PLC"));
    QCOMPARE(outcome.texts, QStringList() << "invalid request to PLC");
    QVERIFY(port.scriptIsFinished());
}

void TestHugeWrites::nextWriteIsTakenAfterACountThatNothingHolds()
{
    ScriptedPort port;
    port.serves(Answer("05 01 ff", 1));
    DriverS7_200_PPI driver;
    LogCapture log;
    QCOMPARE(driver.write(&port, wordCommand("VW0", INT_MAX), bytes("3412")), 0);
    QVERIFY(driver.write(&port, wordCommand("VW0", 1), bytes("3412")) != 0);
    QVERIFY(!driver.hasError());
}

void TestHugeWrites::countsThatNothingHoldsDoNotMatterForBytesAndBits_data()
{
    QTest::addColumn<CommunicatorCommand>("write");
    QTest::newRow("bytes") << byteCommand("VB0", INT_MAX);
    QTest::newRow("block") << command(kBlock, "VB0", INT_MIN);
    QTest::newRow("bits") << bitCommand("V0.0", INT_MAX);
    QTest::newRow("bit block") << command(kBitBlock, "V0.0", INT_MIN);
}

void TestHugeWrites::countsThatNothingHoldsDoNotMatterForBytesAndBits()
{
    QFETCH(CommunicatorCommand, write);
    QCOMPARE(outcomeOfWrite(write, bytes("01"), Answer("05 01 ff")).result, QString(kTaken));
}

// They must not be touched: there is only one byte of them.
void TestHugeWrites::dataThatNoFrameHoldsFail()
{
    const QByteArray data = QByteArray::fromRawData("", INT_MAX / 4 + 1);
    ScriptedPort port;
    const Outcome outcome = outcomeOfWrite(byteCommand("VB0", 1), data, port);
    QCOMPARE(outcome.result, QString(""));
    QCOMPARE(outcome.reason, QString("invalid request to PLC"));
    QCOMPARE(outcome.texts, QStringList() << "invalid request to PLC");
    QVERIFY(port.scriptIsFinished());
}

QTEST_APPLESS_MAIN(TestHugeWrites)

#include "test_huge_writes.moc"
