// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Reads of bits: what they ask for, which answers they take, and what they record and log.

#include "answer.h"
#include "commands.h"
#include "log_capture.h"
#include "outcome.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

#include <QtTest>

#include <climits>

class TestBitReads : public QObject
{
    Q_OBJECT

private slots:
    void eightBitsOfV10();
    void requestCountsTheBytesThatHoldTheBits_data();
    void requestCountsTheBytesThatHoldTheBits();
    void countsBeyond16Bits_data();
    void countsBeyond16Bits();
    void resultIsOneBytePerBit_data();
    void resultIsOneBytePerBit();
    void bitBlockIsReadAsBits();
    void noBitsAreNoError();
    void bitsThatStraddleOneByteMoreAreRefused();
    void answerThatDoesNotHoldTheBitsIsRefused_data();
    void answerThatDoesNotHoldTheBitsIsRefused();
    void bitsOfTimersAndCountersAreTheirStatus_data();
    void bitsOfTimersAndCountersAreTheirStatus();
    void timersAndCountersThatDoNotDecode_data();
    void timersAndCountersThatDoNotDecode();
    void countersAreTracedBeforeTheyAreDecoded();
    void countersAreTracedOncePerAttempt();
    void countersOfAWrongAnswerAreNotTraced();
    void timersAndMemoryAreNotTraced_data();
    void timersAndMemoryAreNotTraced();
    void traceAndFailuresHaveLinesOfTheirOwn();
};

void TestBitReads::eightBitsOfV10()
{
    ScriptedPort port;
    port.expects("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                 "04 01 12 0a 10 02 00 01 00 01 84 00 00 50 b9 16")
        .answers("e5")
        .expects("10 02 00 5c 5e 16")
        .answers(Answer("04 01 ff 04 00 08 a5"));
    const Outcome outcome = outcomeOf(bitCommand("V10.0", 8), port);
    QCOMPARE(outcome.data, QString("0100010000010001"));
    QVERIFY(port.scriptIsFinished());
}

void TestBitReads::requestCountsTheBytesThatHoldTheBits_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("block");
    QTest::newRow("V10.0, 1 bit") << "V10.0" << 1 << "0401120a10020001000184000050";
    QTest::newRow("V10.0, 8 bits") << "V10.0" << 8 << "0401120a10020001000184000050";
    QTest::newRow("V10.0, 9 bits") << "V10.0" << 9 << "0401120a10020002000184000050";
    QTest::newRow("V10.6, 2 bits") << "V10.6" << 2 << "0401120a10020001000184000050";
    QTest::newRow("V10.6, 3 bits") << "V10.6" << 3 << "0401120a10020002000184000050";
    QTest::newRow("V10.7, 9 bits") << "V10.7" << 9 << "0401120a10020002000184000050";
    QTest::newRow("V10.7, 10 bits") << "V10.7" << 10 << "0401120a10020003000184000050";
    QTest::newRow("no bits at bit 0") << "V10.0" << 0 << "0401120a10020000000184000050";
    QTest::newRow("no bits at bit 3") << "V10.3" << 0 << "0401120a10020001000184000050";
    QTest::newRow("I0.7") << "I0.7" << 1 << "0401120a10020001000081000000";
    QTest::newRow("SM0.5") << "SM0.5" << 1 << "0401120a10020001000005000000";
    QTest::newRow("M13 is byte 13, bit 3") << "M13" << 6 << "0401120a10020002000083000068";
    QTest::newRow("V10.12 is bit 2") << "V10.12" << 6 << "0401120a10020001000184000050";
    QTest::newRow("V10.A is bit 17") << "V10.A" << 8 << "0401120a10020004000184000050";
    QTest::newRow("a bit number below 0 wraps") << "V10./" << 8 << "0401120a10020001000184000050";
    QTest::newRow("VW10.0 in words") << "VW10.0" << 8 << "0401120a10040001000184000050";
    QTest::newRow("VW10.0, 17 bits in words") << "VW10.0" << 17 << "0401120a10040002000184000050";
    QTest::newRow("VD10.0 in double words") << "VD10.0" << 8 << "0401120a10060001000184000050";
    QTest::newRow("T37, 3 timers") << "T37" << 3 << "0401120a101f000300001f000025";
    QTest::newRow("C5, 3 counters") << "C5" << 3 << "0401120a101e000300001e000005";
    QTest::newRow("HC3 as memory") << "HC3" << 8 << "0401120a10020002000020000003";
    QTest::newRow("unknown prefix") << "DB10.0" << 1 << "0401120a10020001000000000050";
    QTest::newRow("empty address") << "" << 1 << "0401120a10020001000000000000";
}

void TestBitReads::requestCountsTheBytesThatHoldTheBits()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, block);
    QCOMPARE(askedFor(bitCommand(address, count)), block);
}

void TestBitReads::countsBeyond16Bits_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("elements");
    QTest::newRow("524280 bits") << "V0.0" << 524280 << "ffff";
    QTest::newRow("524288 bits") << "V0.0" << 524288 << "0000";
    QTest::newRow("524289 bits") << "V0.0" << 524289 << "0001";
    QTest::newRow("524289 bits in words") << "VW0.0" << 524289 << "0001";
    QTest::newRow("524289 bits in double words") << "VD0.0" << 524289 << "0001";
    QTest::newRow("INT_MAX bits") << "V0.0" << INT_MAX << "0000";
    QTest::newRow("INT_MAX bits from bit 7") << "V0.7" << INT_MAX << "0001";
    QTest::newRow("65537 timers") << "T0" << 65537 << "0001";
    QTest::newRow("65537 counters") << "C0" << 65537 << "0001";
    QTest::newRow("INT_MAX counters") << "C0" << INT_MAX << "ffff";
}

void TestBitReads::countsBeyond16Bits()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, elements);
    QCOMPARE(askedFor(bitCommand(address, count)).mid(12, 4), elements);
}

void TestBitReads::resultIsOneBytePerBit_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
    QTest::newRow("lowest bit first") << "V10.0" << 8 << "04 01 ff 04 00 08 a5"
                                      << "0100010000010001";
    QTest::newRow("fewer bits than the byte") << "V10.0" << 3 << "04 01 ff 04 00 08 a5"
                                              << "010001";
    QTest::newRow("from bit 2") << "V10.2" << 3 << "04 01 ff 04 00 08 24"
                                << "010000";
    QTest::newRow("to the last bit") << "V10.6" << 2 << "04 01 ff 04 00 08 80"
                                     << "0001";
    QTest::newRow("only the last bit") << "V10.7" << 1 << "04 01 ff 04 00 08 80"
                                       << "01";
    QTest::newRow("all but the first bit set") << "V10.0" << 1 << "04 01 ff 04 00 08 fe"
                                               << "00";
    QTest::newRow("9 bits") << "V10.0" << 9 << "04 01 ff 04 00 10 01 01"
                            << "010000000000000001";
    QTest::newRow("9 bits from bit 7") << "V10.7" << 9 << "04 01 ff 04 00 10 80 55"
                                       << "010100010001000100";
    QTest::newRow("16 bits") << "V10.0" << 16 << "04 01 ff 04 00 10 0f f0"
                             << "01010101000000000000000001010101";
    QTest::newRow("bytes of a word stay in their order") << "VW10.0" << 16 << "04 01 ff 04 00 10 01 00"
                                                         << "01000000000000000000000000000000";
    QTest::newRow("9 data bits are 1 byte") << "V10.0" << 8 << "04 01 ff 04 00 09 a5 00"
                                            << "0100010000010001";
    QTest::newRow("15 data bits are 1 byte") << "V10.0" << 8 << "04 01 ff 04 00 0f a5 00"
                                             << "0100010000010001";
    QTest::newRow("HC as memory") << "HC0" << 8 << "04 01 ff 04 00 08 a5"
                                  << "0100010000010001";
}

void TestBitReads::resultIsOneBytePerBit()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, item);
    QFETCH(QString, data);
    const CommunicatorCommand command = bitCommand(address, count);
    QCOMPARE(outcomeOf(command, Answer(item)).data, data);
}

void TestBitReads::bitBlockIsReadAsBits()
{
    const Outcome outcome = outcomeOf(command(kBitBlock, "V10.2", 3), Answer("04 01 ff 04 00 08 24"));
    QCOMPARE(outcome.data, QString("010000"));
}

void TestBitReads::noBitsAreNoError()
{
    const Outcome outcome = outcomeOf(bitCommand("V10.0", 0), Answer("04 01 ff 04 00 00"));
    QCOMPARE(outcome.data, QString(""));
    QVERIFY(!outcome.failed);
}

// 3 bits need 1 byte, V10.6 to V11.0 lie in 2: those are asked for, and their answer is too long.
void TestBitReads::bitsThatStraddleOneByteMoreAreRefused()
{
    QCOMPARE(askedFor(bitCommand("V10.6", 3)), QString("0401120a10020002000184000050"));
    const Outcome outcome = outcomeOf(bitCommand("V10.6", 3), Answer("04 01 ff 04 00 10 c0 01"));
    QCOMPARE(outcome.data, QString(""));
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
    QTest::newRow("no data") << "V10.0" << 8 << "04 01 ff 04 00 00";
    QTest::newRow("function 5") << "V10.0" << 8 << "05 01 ff 04 00 08 a5";
    QTest::newRow("0 items") << "V10.0" << 8 << "04 00 ff 04 00 08 a5";
    QTest::newRow("2 items") << "V10.0" << 8 << "04 02 ff 04 00 08 a5";
    QTest::newRow("return code 05") << "V10.0" << 8 << "04 01 05 04 00 08 a5";
    QTest::newRow("return code 05 without data") << "V10.0" << 8 << "04 01 05 00 00 00";
    QTest::newRow("return code 00") << "V10.0" << 8 << "04 01 00 04 00 08 a5";
    QTest::newRow("transport size 3") << "V10.0" << 8 << "04 01 ff 03 00 08 a5";
    QTest::newRow("transport size 9") << "V10.0" << 8 << "04 01 ff 09 00 01 a5";
    QTest::newRow("HC answered as an object") << "HC0" << 8 << "04 01 ff 09 00 05 00 01 02 03 04";
}

void TestBitReads::answerThatDoesNotHoldTheBitsIsRefused()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, item);
    const CommunicatorCommand command = bitCommand(address, count);
    const Outcome outcome = outcomeOf(command, Answer(item));
    QCOMPARE(outcome.data, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, QString("invalid response"));
    QCOMPARE(outcome.texts, QStringList() << "invalid response");
}

void TestBitReads::bitsOfTimersAndCountersAreTheirStatus_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
    const QString timers("04 01 ff 09 00 0a 02 00 00 00 00 10 ff ff ff ff");
    const QString counters("04 01 ff 09 00 09 10 00 00 02 ff ff ff 00 00");
    QTest::newRow("timers") << "T37" << 2 << timers << "0100";
    QTest::newRow("more timers than asked for") << "T37" << 1 << timers << "0100";
    QTest::newRow("fewer timers than asked for") << "T37" << 9 << timers << "0100";
    QTest::newRow("counters") << "C5" << 3 << counters << "010001";
    QTest::newRow("more counters than asked for") << "C5" << 1 << counters << "010001";
    QTest::newRow("fewer counters than asked for") << "C5" << 9 << counters << "010001";
}

void TestBitReads::bitsOfTimersAndCountersAreTheirStatus()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, item);
    QFETCH(QString, data);
    const CommunicatorCommand command = bitCommand(address, count);
    QCOMPARE(outcomeOf(command, Answer(item)).data, data);
}

void TestBitReads::timersAndCountersThatDoNotDecode_data()
{
    const QString invalid("invalid response");
    const QString undecoded("invalid PLC response");
    const QStringList trace(QString(""));
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("logged");
    QTest::newRow("T, code 05") << "T37"
                                << "04 01 05 00 00 00" << undecoded << QStringList();
    QTest::newRow("T, function 5") << "T37"
                                   << "05 01 ff 09 00 05 02 00 00 12 34" << undecoded << QStringList();
    QTest::newRow("T, transport size 4") << "T37"
                                         << "04 01 ff 04 00 08 02" << undecoded << QStringList();
    QTest::newRow("T, empty list") << "T37"
                                   << "04 01 ff 09 00 00" << invalid << QStringList(invalid);
    QTest::newRow("C, code 05") << "C5"
                                << "04 01 05 00 00 00" << undecoded << trace;
    QTest::newRow("C, 2 items") << "C5"
                                << "04 02 ff 09 00 03 10 12 34" << undecoded << trace;
    QTest::newRow("C, transport size 4") << "C5"
                                         << "04 01 ff 04 00 08 10" << undecoded << trace;
    QTest::newRow("C, empty list") << "C5"
                                   << "04 01 ff 09 00 00" << invalid << (trace + QStringList(invalid));
}

void TestBitReads::timersAndCountersThatDoNotDecode()
{
    QFETCH(QString, address);
    QFETCH(QString, item);
    QFETCH(QString, text);
    QFETCH(QStringList, logged);
    const CommunicatorCommand command = bitCommand(address, 1);
    const Outcome outcome = outcomeOf(command, Answer(item));
    QCOMPARE(outcome.data, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, logged);
}

void TestBitReads::countersAreTracedBeforeTheyAreDecoded()
{
    const QString source("../../../runtime/drivers/simatic_s7_200_ppi/s7_200_ppi.cpp:");
    ScriptedPort port;
    port.serves(Answer("04 01 ff 09 00 03 10 12 34"));
    DriverS7_200_PPI driver;
    LogCapture log;
    driver.read(&port, bitCommand("C5", 1));
    QCOMPARE(log.lines(), QStringList() << source + QString::number(log.lineNumbers().value(0)) + ":");
}

void TestBitReads::countersAreTracedOncePerAttempt()
{
    ScriptedPort port;
    port.retries(1).serves(Answer("04 01 05 00 00 00", 1)).serves(Answer("04 01 ff 09 00 03 10 12 34", 2));
    QCOMPARE(outcomeOf(bitCommand("C5", 1), port).texts, QStringList() << ""
                                                                       << "");
}

void TestBitReads::countersOfAWrongAnswerAreNotTraced()
{
    const Answer good("04 01 ff 09 00 03 10 12 34");
    const CommunicatorCommand command = bitCommand("C5", 1);
    const Answer older("04 01 ff 09 00 03 10 12 34", 9);
    const Answer withError = Answer(good).withByte(Answer::kErrorClass, 1).sealed();
    QCOMPARE(outcomeOf(command, older).texts, QStringList() << "invalid response");
    QCOMPARE(outcomeOf(command, withError).texts, QStringList() << "invalid request to PLC");
}

void TestBitReads::timersAndMemoryAreNotTraced_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("item");
    QTest::newRow("T") << "T37"
                       << "04 01 ff 09 00 05 02 00 00 12 34";
    QTest::newRow("V") << "V10.0"
                       << "04 01 ff 04 00 08 a5";
    QTest::newRow("HC") << "HC0"
                        << "04 01 ff 04 00 08 a5";
}

void TestBitReads::timersAndMemoryAreNotTraced()
{
    QFETCH(QString, address);
    QFETCH(QString, item);
    const CommunicatorCommand command = bitCommand(address, 1);
    const Outcome outcome = outcomeOf(command, Answer(item));
    QVERIFY(!outcome.failed);
    QCOMPARE(outcome.texts, QStringList());
}

void TestBitReads::traceAndFailuresHaveLinesOfTheirOwn()
{
    const CommunicatorCommand command = bitCommand("C5", 1);
    const Answer answer("04 01 ff 09 00 00");
    const QList<int> traceAndEmptyList = outcomeOf(command, answer).numbers;
    const int header = outcomeOf(command, Answer("04 01 ff 09 00 00", 9)).numbers.value(0);
    const int errorClass =
        outcomeOf(command, Answer(answer).withByte(Answer::kErrorClass, 1).sealed()).numbers.value(0);
    QCOMPARE(int(traceAndEmptyList.size()), 2);
    QVERIFY(traceAndEmptyList.at(0) != traceAndEmptyList.at(1));
    QVERIFY(!traceAndEmptyList.contains(header));
    QVERIFY(!traceAndEmptyList.contains(errorClass));
    QVERIFY(header != errorClass);
}

QTEST_APPLESS_MAIN(TestBitReads)

#include "test_bit_reads.moc"
