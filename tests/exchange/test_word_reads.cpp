// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Reads of 16-bit words: what they ask for, what they return, and what they record and log.

#include "answer.h"
#include "commands.h"
#include "outcome.h"
#include "scripted_port.h"

#include <QtTest>

#include <climits>

class TestWordReads : public QObject
{
    Q_OBJECT

private slots:
    void twoWordsOfVW100();
    void requestCountsElements_data();
    void requestCountsElements();
    void countsBeyond16Bits_data();
    void countsBeyond16Bits();
    void resultOfMemoryAndHighSpeedCountersIsFitted_data();
    void resultOfMemoryAndHighSpeedCountersIsFitted();
    void resultOfTimersAndCountersIsNotFitted_data();
    void resultOfTimersAndCountersIsNotFitted();
    void refusedItemsKeepTheirReason_data();
    void refusedItemsKeepTheirReason();
};

void TestWordReads::twoWordsOfVW100()
{
    ScriptedPort port;
    port.expects("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                 "04 01 12 0a 10 04 00 02 00 01 84 00 03 20 8f 16")
        .answers("e5")
        .expects("10 02 00 5c 5e 16")
        .answers("68 19 19 68 00 02 08 32 03 00 00 00 01 00 02 00 08 00 00"
                 "04 01 ff 04 00 20 11 22 33 44 1c 16");
    const Outcome outcome = outcomeOf(wordCommand("VW100", 2), port);
    QCOMPARE(outcome.data, QString("22114433"));
    QVERIFY(port.scriptIsFinished());
}

void TestWordReads::requestCountsElements_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("block");
    QTest::newRow("VW100, 3 words") << "VW100" << 3 << "0401120a10040003000184000320";
    QTest::newRow("VD100, 1 word is 1 double word") << "VD100" << 1 << "0401120a10060001000184000320";
    QTest::newRow("VD100, 2 words are 1 double word") << "VD100" << 2 << "0401120a10060001000184000320";
    QTest::newRow("VD100, 3 words are 2 double words") << "VD100" << 3 << "0401120a10060002000184000320";
    QTest::newRow("VB100, 3 words are 6 bytes") << "VB100" << 3 << "0401120a10020006000184000320";
    QTest::newRow("V100, 3 words are 6 bytes") << "V100" << 3 << "0401120a10020006000184000320";
    QTest::newRow("AIW16, 1 word") << "AIW16" << 1 << "0401120a10040001000006000080";
    QTest::newRow("T37, 3 timers") << "T37" << 3 << "0401120a101f000300001f000025";
    QTest::newRow("C5, 3 counters") << "C5" << 3 << "0401120a101e000300001e000005";
    QTest::newRow("HC0, 1 word is 1 counter") << "HC0" << 1 << "0401120a10200001000020000000";
    QTest::newRow("HC0, 2 words are 1 counter") << "HC0" << 2 << "0401120a10200001000020000000";
    QTest::newRow("HC0, 3 words are 2 counters") << "HC0" << 3 << "0401120a10200002000020000000";
    QTest::newRow("no words") << "VW100" << 0 << "0401120a10040000000184000320";
    QTest::newRow("unknown prefix") << "DB100" << 1 << "0401120a10020002000000000320";
}

void TestWordReads::requestCountsElements()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, block);
    QCOMPARE(askedFor(wordCommand(address, count)), block);
}

void TestWordReads::countsBeyond16Bits_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("elements");
    QTest::newRow("65535 words") << "VW0" << 65535 << "ffff";
    QTest::newRow("65537 words") << "VW0" << 65537 << "0001";
    QTest::newRow("65535 words as double words") << "VD0" << 65535 << "8000";
    QTest::newRow("65537 words as double words") << "VD0" << 65537 << "0001";
    QTest::newRow("32767 words as bytes") << "VB0" << 32767 << "fffe";
    QTest::newRow("32769 words as bytes") << "VB0" << 32769 << "0002";
    QTest::newRow("40000 words as bytes") << "VB0" << 40000 << "3880";
    QTest::newRow("65537 timers") << "T0" << 65537 << "0001";
    QTest::newRow("65537 counters") << "C0" << 65537 << "0001";
    QTest::newRow("65535 words of high-speed counters") << "HC0" << 65535 << "8000";
    QTest::newRow("131073 words of high-speed counters") << "HC0" << 131073 << "0001";
    QTest::newRow("INT_MAX words") << "VW0" << INT_MAX << "ffff";
    QTest::newRow("INT_MAX words as bytes") << "VB0" << INT_MAX << "fffe";
    QTest::newRow("INT_MIN words as bytes") << "VB0" << INT_MIN << "0000";
    QTest::newRow("-1 words") << "VW0" << -1 << "ffff";
}

void TestWordReads::countsBeyond16Bits()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, elements);
    QCOMPARE(askedFor(wordCommand(address, count)).mid(12, 4), elements);
}

void TestWordReads::resultOfMemoryAndHighSpeedCountersIsFitted_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
    const QString memory("04 01 ff 04 00 20 11 22 33 44");
    QTest::newRow("words are swapped") << "VW100" << 2 << memory << "22114433";
    QTest::newRow("bytes stay in the controller's order") << "VB100" << 2 << memory << "11223344";
    QTest::newRow("double words are reversed") << "VD100" << 2 << memory << "44332211";
    QTest::newRow("a word of a double word is its low word") << "VD100" << 1 << memory << "4433";
    QTest::newRow("longer is cut") << "VW100" << 1 << memory << "2211";
    QTest::newRow("shorter is extended") << "VW100" << 3 << memory << "221144330000";
    QTest::newRow("no words") << "VW100" << 0 << memory << "";
    QTest::newRow("48 bits are 3 words") << "VW100" << 3 << "04 01 ff 04 00 30 11 22 33 44 55 66"
                                         << "221144336655";
    QTest::newRow("40 bits are 2 words") << "VW100" << 3 << "04 01 ff 04 00 28 11 22 33 44 55"
                                         << "221144330000";
    QTest::newRow("high-speed counters are cut")
        << "HC0" << 3 << "04 01 ff 09 00 0a 00 01 02 03 04 00 05 06 07 08"
        << "040302010807";
    QTest::newRow("high-speed counters are extended") << "HC0" << 3 << "04 01 ff 09 00 05 00 01 02 03 04"
                                                      << "040302010000";
}

void TestWordReads::resultOfMemoryAndHighSpeedCountersIsFitted()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, item);
    QFETCH(QString, data);
    const CommunicatorCommand command = wordCommand(address, count);
    const Outcome outcome = outcomeOf(command, Answer(item));
    QCOMPARE(outcome.data, data);
    QVERIFY(!outcome.failed);
}

void TestWordReads::resultOfTimersAndCountersIsNotFitted_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
    const QString timers("04 01 ff 09 00 0a 02 00 00 12 34 00 00 00 56 78");
    const QString counters("04 01 ff 09 00 06 10 12 34 00 56 78");
    QTest::newRow("as many timers") << "T37" << 2 << timers << "34127856";
    QTest::newRow("more timers than asked for") << "T37" << 1 << timers << "34127856";
    QTest::newRow("fewer timers than asked for") << "T37" << 3 << timers << "34127856";
    QTest::newRow("more counters than asked for") << "C5" << 1 << counters << "34127856";
    QTest::newRow("fewer counters than asked for") << "C5" << 3 << counters << "34127856";
    QTest::newRow("upper half of a timer is dropped") << "T37" << 1 << "04 01 ff 09 00 05 00 99 88 12 34"
                                                      << "3412";
}

void TestWordReads::resultOfTimersAndCountersIsNotFitted()
{
    QFETCH(QString, address);
    QFETCH(int, count);
    QFETCH(QString, item);
    QFETCH(QString, data);
    const CommunicatorCommand command = wordCommand(address, count);
    QCOMPARE(outcomeOf(command, Answer(item)).data, data);
}

void TestWordReads::refusedItemsKeepTheirReason_data()
{
    const QString hardware("Hardware fault");
    const QString invalid("invalid response");
    const QString undecoded("invalid PLC response");
    const QString address("Invalid address (incorrect variable address)");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("logged");
    QTest::newRow("memory, code 05") << "VW100"
                                     << "04 01 05 00 00 00" << address << false;
    QTest::newRow("memory, code 01") << "VB100"
                                     << "04 01 01 00 00 00" << hardware << false;
    QTest::newRow("memory, code 04") << "VD100"
                                     << "04 01 04 00 00 00"
                                     << "unknow error" << false;
    QTest::newRow("memory, no data") << "VW100"
                                     << "04 01 ff 04 00 00" << invalid << false;
    QTest::newRow("memory, function 5") << "VW100"
                                        << "05 01 ff 04 00 10 11 22" << invalid << false;
    QTest::newRow("memory, 2 items") << "VW100"
                                     << "04 02 ff 04 00 10 11 22" << invalid << false;
    QTest::newRow("memory, transport size 9") << "VW100"
                                              << "04 01 ff 09 00 02 11 22" << invalid << false;
    QTest::newRow("memory, 8 bits of words") << "VW100"
                                             << "04 01 ff 04 00 08 11" << invalid << false;
    QTest::newRow("T, code 05") << "T37"
                                << "04 01 05 00 00 00" << undecoded << false;
    QTest::newRow("T, transport size 4") << "T37"
                                         << "04 01 ff 04 00 05 00 00 00 12 34" << undecoded << false;
    QTest::newRow("T, empty list") << "T37"
                                   << "04 01 ff 09 00 00" << invalid << true;
    QTest::newRow("C, code 05") << "C5"
                                << "04 01 05 00 00 00" << undecoded << false;
    QTest::newRow("C, 2 items") << "C5"
                                << "04 02 ff 09 00 03 10 12 34" << undecoded << false;
    QTest::newRow("C, empty list") << "C5"
                                   << "04 01 ff 09 00 00" << invalid << true;
    QTest::newRow("HC, code 05") << "HC0"
                                 << "04 01 05 00 00 00" << address << true;
    QTest::newRow("HC, transport size 4") << "HC0"
                                          << "04 01 ff 04 00 05 00 01 02 03 04" << invalid << true;
    QTest::newRow("HC, no data") << "HC0"
                                 << "04 01 ff 09 00 00" << invalid << true;
}

void TestWordReads::refusedItemsKeepTheirReason()
{
    QFETCH(QString, address);
    QFETCH(QString, item);
    QFETCH(QString, text);
    QFETCH(bool, logged);
    const CommunicatorCommand command = wordCommand(address, 1);
    const Outcome outcome = outcomeOf(command, Answer(item));
    QCOMPARE(outcome.data, QString(""));
    QVERIFY(outcome.failed);
    QCOMPARE(outcome.reason, text);
    QCOMPARE(outcome.texts, logged ? QStringList(text) : QStringList());
}

QTEST_APPLESS_MAIN(TestWordReads)

#include "test_word_reads.moc"
