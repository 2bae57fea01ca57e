// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Reads of 32-bit double words: what they ask for, what they return, and what they record and log.

#include "answer.h"
#include "commands.h"
#include "outcome.h"
#include "scripted_port.h"

#include <QtTest>

#include <climits>

class TestDWordReads : public QObject
{
    Q_OBJECT

private slots:
    void twoDoubleWordsOfVD100();
    void requestCountsElements_data();
    void requestCountsElements();
    void countsBeyond16Bits_data();
    void countsBeyond16Bits();
    void resultOfMemoryIsFitted_data();
    void resultOfMemoryIsFitted();
    void resultOfObjectsIsNotFitted_data();
    void resultOfObjectsIsNotFitted();
    void refusedItemsKeepTheirReason_data();
    void refusedItemsKeepTheirReason();
    void memoryAndObjectsNameAnInvalidHeaderDifferently_data();
    void memoryAndObjectsNameAnInvalidHeaderDifferently();
    void failurePointsOfMemoryHaveLinesOfTheirOwn();
};

void TestDWordReads::twoDoubleWordsOfVD100()
{
    ScriptedPort port;
    port.expects("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                 "04 01 12 0a 10 06 00 02 00 01 84 00 03 20 91 16")
        .answers("e5")
        .expects("10 02 00 5c 5e 16")
        .answers(Answer("04 01 ff 04 00 40 11 22 33 44 55 66 77 88"));
    const Outcome outcome = outcomeOf(doubleWordCommand("VD100", 2), port);
    QCOMPARE(outcome.data, QString("4433221188776655"));
    QVERIFY(port.scriptIsFinished());
}

void TestDWordReads::requestCountsElements_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("block");
    QTest::newRow("VD100, 3 double words") << "VD100" << 3 << "0401120a10060003000184000320";
    QTest::newRow("VW100, 3 double words are 6 words") << "VW100" << 3 << "0401120a10040006000184000320";
    QTest::newRow("VB100, 3 double words are 12 bytes") << "VB100" << 3 << "0401120a1002000c000184000320";
    QTest::newRow("V100, 1 double word is 4 bytes") << "V100" << 1 << "0401120a10020004000184000320";
    QTest::newRow("SMD28, 1 double word") << "SMD28" << 1 << "0401120a100600010000050000e0";
    QTest::newRow("T37, 2 double words are 4 timers") << "T37" << 2 << "0401120a101f000400001f000025";
    QTest::newRow("C5, 1 double word is 2 counters") << "C5" << 1 << "0401120a101e000200001e000005";
    QTest::newRow("HC1, 2 double words are 2 counters") << "HC1" << 2 << "0401120a10200002000020000001";
    QTest::newRow("no double words") << "VD100" << 0 << "0401120a10060000000184000320";
    QTest::newRow("unknown prefix") << "DB100" << 1 << "0401120a10020004000000000320";
}

void TestDWordReads::requestCountsElements()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, block);
    QCOMPARE(askedFor(doubleWordCommand(address, count)), block);
}

void TestDWordReads::countsBeyond16Bits_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("elements");
    QTest::newRow("65535 double words") << "VD0" << 65535 << "ffff";
    QTest::newRow("65537 double words") << "VD0" << 65537 << "0001";
    QTest::newRow("32769 double words as words") << "VW0" << 32769 << "0002";
    QTest::newRow("16385 double words as bytes") << "VB0" << 16385 << "0004";
    QTest::newRow("32769 double words of timers") << "T0" << 32769 << "0002";
    QTest::newRow("32769 double words of counters") << "C0" << 32769 << "0002";
    QTest::newRow("65537 high-speed counters") << "HC0" << 65537 << "0001";
    QTest::newRow("INT_MAX double words") << "VD0" << INT_MAX << "ffff";
    QTest::newRow("INT_MAX double words as bytes") << "VB0" << INT_MAX << "fffc";
    QTest::newRow("INT_MAX double words of timers") << "T0" << INT_MAX << "fffe";
    QTest::newRow("INT_MIN double words as bytes") << "VB0" << INT_MIN << "0000";
    QTest::newRow("-1 double words as words") << "VW0" << -1 << "fffe";
}

void TestDWordReads::countsBeyond16Bits()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, elements);
    QCOMPARE(askedFor(doubleWordCommand(address, count)).mid(12, 4), elements);
}

void TestDWordReads::resultOfMemoryIsFitted_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
    const QString eight("04 01 ff 04 00 40 11 22 33 44 55 66 77 88");
    QTest::newRow("double words are reversed") << "VD100" << 2 << eight << "4433221188776655";
    QTest::newRow("words are swapped") << "VW100" << 2 << eight << "2211443366558877";
    QTest::newRow("bytes stay in the controller's order") << "VB100" << 2 << eight << "1122334455667788";
    QTest::newRow("longer is cut") << "VD100" << 1 << eight << "44332211";
    QTest::newRow("shorter is extended") << "VD100" << 3 << eight << "443322118877665500000000";
    QTest::newRow("no double words") << "VD100" << 0 << eight << "";
    QTest::newRow("48 bits are 1 double word") << "VD100" << 2 << "04 01 ff 04 00 30 11 22 33 44 55 66"
                                               << "4433221100000000";
}

void TestDWordReads::resultOfMemoryIsFitted()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, item);
    QFETCH(QString, data);
    const CommunicatorCommand command = doubleWordCommand(address, count);
    const Outcome outcome = outcomeOf(command, Answer(item));
    QCOMPARE(outcome.data, data);
    QVERIFY(!outcome.failed);
}

void TestDWordReads::resultOfObjectsIsNotFitted_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
    const QString timers("04 01 ff 09 00 0a 02 00 00 12 34 00 00 00 56 78");
    const QString counters("04 01 ff 09 00 06 10 12 34 00 56 78");
    const QString fast("04 01 ff 09 00 0a 00 01 02 03 04 00 05 06 07 08");
    const QString fourTimers("04 01 ff 09 00 14 00 00 00 00 01 00 00 00 00 02 00 00 00 00 03 00 00 00 00 04");
    QTest::newRow("4 timers") << "T37" << 2 << fourTimers << "0100020003000400";
    QTest::newRow("more timers than asked for") << "T37" << 1 << fourTimers << "0100020003000400";
    QTest::newRow("fewer timers than asked for") << "T37" << 2 << timers << "34127856";
    QTest::newRow("fewer counters than asked for") << "C5" << 2 << counters << "34127856";
    QTest::newRow("more high-speed counters") << "HC0" << 1 << fast << "0403020108070605";
    QTest::newRow("fewer high-speed counters") << "HC0" << 3 << fast << "0403020108070605";
}

void TestDWordReads::resultOfObjectsIsNotFitted()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, item);
    QFETCH(QString, data);
    const CommunicatorCommand command = doubleWordCommand(address, count);
    QCOMPARE(outcomeOf(command, Answer(item)).data, data);
}

void TestDWordReads::refusedItemsKeepTheirReason_data()
{
    const QString hardware("Hardware fault");
    const QString invalid("invalid response");
    const QString noData("invalid response2");
    const QString undecoded("invalid PLC response");
    const QString address("Invalid address (incorrect variable address)");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("logged");
    QTest::newRow("memory, code 05") << "VD100"
                                     << "04 01 05 00 00 00" << address << false;
    QTest::newRow("memory, code 01") << "VB100"
                                     << "04 01 01 00 00 00" << hardware << false;
    QTest::newRow("memory, code 04") << "VW100"
                                     << "04 01 04 00 00 00"
                                     << "unknow error" << false;
    QTest::newRow("memory, no data") << "VD100"
                                     << "04 01 ff 04 00 00" << noData << true;
    QTest::newRow("memory, function 5") << "VD100"
                                        << "05 01 ff 04 00 20 11 22 33 44" << noData << true;
    QTest::newRow("memory, 2 items") << "VD100"
                                     << "04 02 ff 04 00 20 11 22 33 44" << noData << true;
    QTest::newRow("memory, transport size 9") << "VD100"
                                              << "04 01 ff 09 00 04 11 22 33 44" << noData << true;
    QTest::newRow("memory, 24 bits of double words") << "VD100"
                                                     << "04 01 ff 04 00 18 11 22 33" << noData << true;
    QTest::newRow("T, code 05") << "T37"
                                << "04 01 05 00 00 00" << undecoded << false;
    QTest::newRow("T, function 5") << "T37"
                                   << "05 01 ff 09 00 05 00 00 00 12 34" << undecoded << false;
    QTest::newRow("T, empty list") << "T37"
                                   << "04 01 ff 09 00 00" << invalid << true;
    QTest::newRow("C, code 05") << "C5"
                                << "04 01 05 00 00 00" << undecoded << false;
    QTest::newRow("C, transport size 4") << "C5"
                                         << "04 01 ff 04 00 03 10 12 34" << undecoded << false;
    QTest::newRow("C, empty list") << "C5"
                                   << "04 01 ff 09 00 00" << invalid << true;
    QTest::newRow("HC, code 05") << "HC0"
                                 << "04 01 05 00 00 00" << address << true;
    QTest::newRow("HC, function 5") << "HC0"
                                    << "05 01 ff 09 00 05 00 01 02 03 04" << invalid << true;
    QTest::newRow("HC, no data") << "HC0"
                                 << "04 01 ff 09 00 00" << invalid << true;
}

void TestDWordReads::refusedItemsKeepTheirReason()
{
    QFETCH(QString, address);
    QFETCH(QString, item);
    QFETCH(QString, text);
    QFETCH(bool, logged);
    const CommunicatorCommand command = doubleWordCommand(address, 1);
    const Outcome outcome = outcomeOf(command, Answer(item));
    QCOMPARE(outcome.data, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, logged ? QStringList(text) : QStringList());
}

void TestDWordReads::memoryAndObjectsNameAnInvalidHeaderDifferently_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("text");
    QTest::newRow("VD") << "VD100"
                        << "invalid response1";
    QTest::newRow("VW") << "VW100"
                        << "invalid response1";
    QTest::newRow("VB") << "VB100"
                        << "invalid response1";
    QTest::newRow("unknown prefix") << "DB100"
                                    << "invalid response1";
    QTest::newRow("T") << "T37"
                       << "invalid response";
    QTest::newRow("C") << "C5"
                       << "invalid response";
    QTest::newRow("HC") << "HC0"
                        << "invalid response";
}

void TestDWordReads::memoryAndObjectsNameAnInvalidHeaderDifferently()
{
    QFETCH(QString, address);
    QFETCH(QString, text);
    const CommunicatorCommand command = doubleWordCommand(address, 1);
    QCOMPARE(outcomeOf(command, Answer("04 01 ff 04 00 20 11 22 33 44", 9)).texts, QStringList(text));
}

void TestDWordReads::failurePointsOfMemoryHaveLinesOfTheirOwn()
{
    const CommunicatorCommand command = doubleWordCommand("VD100", 1);
    const Answer withError = Answer("04 01 05 00 00 00").withByte(Answer::kErrorClass, 1).sealed();
    const int header = outcomeOf(command, Answer("04 01 ff 04 00 00", 9)).numbers.value(0);
    const int errorClass = outcomeOf(command, withError).numbers.value(0);
    const int noData = outcomeOf(command, Answer("04 01 ff 04 00 00")).numbers.value(0);
    QVERIFY(header > 0 && errorClass > 0 && noData > 0);
    QVERIFY(header != errorClass && errorClass != noData && noData != header);
}

QTEST_APPLESS_MAIN(TestDWordReads)

#include "test_dword_reads.moc"
