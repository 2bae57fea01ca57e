// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Reads of every area, as items of a read job and the data of its answer.

#include "conversation.h"
#include "test_class.h"

#include <QtTest>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

void put(sim::Memory &memory, uint8_t area, size_t first, const char *hexText)
{
    const sim::Bytes data = frameBytes(hexText);
    std::copy(data.begin(), data.end(), memory.bytes(area).begin() + std::ptrdiff_t(first));
}

// Bytes 8 to 11 of each plain area hold something of their own.
sim::Station stationWithMarkedAreas()
{
    sim::Memory memory;
    put(memory, sim::kAreaI, 8, "1122a384");
    put(memory, sim::kAreaQ, 8, "1222b384");
    put(memory, sim::kAreaM, 8, "1422c384");
    put(memory, sim::kAreaV, 8, "1822d384");
    put(memory, sim::kAreaSM, 8, "2022e384");
    put(memory, sim::kAreaS, 8, "4022f384");
    put(memory, sim::kAreaAI, 8, "0102030405060708");
    put(memory, sim::kAreaAQ, 8, "1112131415161718");
    memory.timers[37] = {300, 500, true};
    memory.timers[38] = {0xFFFF, 0, false};
    memory.counters[5] = {5, 10, true};
    memory.counters[6] = {0x1234, 10, false};
    memory.highSpeedCounters[0] = 100000;
    memory.highSpeedCounters[1] = 0xFFFFFFFE;
    return sim::Station(2, memory);
}

void addReadColumns()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
}

void row(const char *name, const char *item, const char *data)
{
    QTest::newRow(name) << item << data;
}

} // namespace

class TestSimulatorReads : public QObject
{
    Q_OBJECT

private slots:
    void workedExampleIsAnsweredByteForByte();
    void itemIsRead_data();
    void itemIsRead();
    void lastElementOfAnAreaIsRead_data();
    void lastElementOfAnAreaIsRead();
    void largestReadFillsTheLargestFrame();
    void everyItemIsAnsweredInOrderWithFillBytesBetween();
    void itemBehindTheRoomIsRefusedAlone();
    void twentyItemsAreAnswered();
    void referenceComesBack();
};

void TestSimulatorReads::workedExampleIsAnsweredByteForByte()
{
    sim::Station station(2);
    QCOMPARE(say(station, "68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                          "04 01 12 0a 10 02 00 04 00 01 84 00 03 20 8f 16"),
             plain("e5"));
    QCOMPARE(say(station, "10 02 00 5c 5e 16"),
             plain("68 19 19 68 00 02 08 32 03 00 00 00 01 00 02 00 08 00 00"
                   "04 01 ff 04 00 20 11 22 33 44 1c 16"));
}

void TestSimulatorReads::itemIsRead_data()
{
    addReadColumns();
    row("I8.0, set", "12 0a 10 01 0001 0000 81 000040", "ff 03 0001 01");
    row("I8.1, clear", "12 0a 10 01 0001 0000 81 000041", "ff 03 0001 00");
    row("IB8, 2", "12 0a 10 02 0002 0000 81 000040", "ff 04 0010 1122");
    row("IW8", "12 0a 10 04 0001 0000 81 000040", "ff 04 0010 1122");
    row("ID8", "12 0a 10 06 0001 0000 81 000040", "ff 04 0020 1122a384");

    row("Q8.1, set", "12 0a 10 01 0001 0000 82 000041", "ff 03 0001 01");
    row("Q8.0, clear", "12 0a 10 01 0001 0000 82 000040", "ff 03 0001 00");
    row("QB8, 3", "12 0a 10 02 0003 0000 82 000040", "ff 04 0018 1222b3");
    row("QW8", "12 0a 10 04 0001 0000 82 000040", "ff 04 0010 1222");
    row("QD8", "12 0a 10 06 0001 0000 82 000040", "ff 04 0020 1222b384");

    row("M8.2, set", "12 0a 10 01 0001 0000 83 000042", "ff 03 0001 01");
    row("M8.3, clear", "12 0a 10 01 0001 0000 83 000043", "ff 03 0001 00");
    row("MB8, 1", "12 0a 10 02 0001 0000 83 000040", "ff 04 0008 14");
    row("MW8, 2", "12 0a 10 04 0002 0000 83 000040", "ff 04 0020 1422c384");
    row("MD8", "12 0a 10 06 0001 0000 83 000040", "ff 04 0020 1422c384");

    row("V8.3, set", "12 0a 10 01 0001 0001 84 000043", "ff 03 0001 01");
    row("V11.7, set", "12 0a 10 01 0001 0001 84 00005f", "ff 03 0001 01");
    row("V8.0, clear", "12 0a 10 01 0001 0001 84 000040", "ff 03 0001 00");
    row("VB9, 4", "12 0a 10 02 0004 0001 84 000048", "ff 04 0020 22d38400");
    row("VW9", "12 0a 10 04 0001 0001 84 000048", "ff 04 0010 22d3");
    row("VD8, 2", "12 0a 10 06 0002 0001 84 000040", "ff 04 0040 1822d38400000000");

    row("SM8.5, set", "12 0a 10 01 0001 0000 05 000045", "ff 03 0001 01");
    row("SM8.4, clear", "12 0a 10 01 0001 0000 05 000044", "ff 03 0001 00");
    row("SMB8, 4", "12 0a 10 02 0004 0000 05 000040", "ff 04 0020 2022e384");
    row("SMW10", "12 0a 10 04 0001 0000 05 000050", "ff 04 0010 e384");
    row("SMD8", "12 0a 10 06 0001 0000 05 000040", "ff 04 0020 2022e384");

    row("S8.6, set", "12 0a 10 01 0001 0000 04 000046", "ff 03 0001 01");
    row("S8.7, clear", "12 0a 10 01 0001 0000 04 000047", "ff 03 0001 00");
    row("SB8, 4", "12 0a 10 02 0004 0000 04 000040", "ff 04 0020 4022f384");
    row("SW8", "12 0a 10 04 0001 0000 04 000040", "ff 04 0010 4022");
    row("SD8", "12 0a 10 06 0001 0000 04 000040", "ff 04 0020 4022f384");

    row("AIW8", "12 0a 10 04 0001 0000 06 000040", "ff 04 0010 0102");
    row("AIW10, 3", "12 0a 10 04 0003 0000 06 000050", "ff 04 0030 030405060708");
    row("AQW8, 2", "12 0a 10 04 0002 0000 07 000040", "ff 04 0020 11121314");

    row("T37, bit on", "12 0a 10 1f 0001 0000 1f 000025", "ff 09 0005 02 0000012c");
    row("T37, 2", "12 0a 10 1f 0002 0000 1f 000025", "ff 09 000a 02 0000012c 00 0000ffff");
    row("C5, bit on", "12 0a 10 1e 0001 0000 1e 000005", "ff 09 0003 10 0005");
    row("C5, 2", "12 0a 10 1e 0002 0000 1e 000005", "ff 09 0006 10 0005 00 1234");
    row("HC0", "12 0a 10 20 0001 0000 20 000000", "ff 09 0005 00 000186a0");
    row("HC0, 2", "12 0a 10 20 0002 0000 20 000000", "ff 09 000a 00 000186a0 00 fffffffe");
}

void TestSimulatorReads::itemIsRead()
{
    QFETCH(QString, item);
    QFETCH(QString, data);
    sim::Station station = stationWithMarkedAreas();
    QCOMPARE(readItems(station, item), plain(data));
}

void TestSimulatorReads::lastElementOfAnAreaIsRead_data()
{
    addReadColumns();
    row("IB15", "12 0a 10 02 0001 0000 81 000078", "ff 04 0008 00");
    row("Q15.7", "12 0a 10 01 0001 0000 82 00007f", "ff 03 0001 00");
    row("MW30", "12 0a 10 04 0001 0000 83 0000f0", "ff 04 0010 0000");
    row("VD10236", "12 0a 10 06 0001 0001 84 013fe0", "ff 04 0020 00000000");
    row("SMB549", "12 0a 10 02 0001 0000 05 001128", "ff 04 0008 00");
    row("SD28", "12 0a 10 06 0001 0000 04 0000e0", "ff 04 0020 00000000");
    row("AIW62", "12 0a 10 04 0001 0000 06 0001f0", "ff 04 0010 0000");
    row("AQW62", "12 0a 10 04 0001 0000 07 0001f0", "ff 04 0010 0000");
    row("T255", "12 0a 10 1f 0001 0000 1f 0000ff", "ff 09 0005 00 00000000");
    row("C255", "12 0a 10 1e 0001 0000 1e 0000ff", "ff 09 0003 00 0000");
    row("HC5", "12 0a 10 20 0001 0000 20 000005", "ff 09 0005 00 00000000");
}

void TestSimulatorReads::lastElementOfAnAreaIsRead()
{
    QFETCH(QString, item);
    QFETCH(QString, data);
    sim::Station station = stationWithMarkedAreas();
    QCOMPARE(readItems(station, item), plain(data));
}

void TestSimulatorReads::largestReadFillsTheLargestFrame()
{
    sim::Station station(2, sim::Memory());
    say(station, "68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                 "04 01 12 0a 10 02 00 ea 00 01 84 00 00 00 52 16"); // VB0, 234 bytes
    const QString answer = say(station, "10 02 00 5c 5e 16");
    QCOMPARE(answer.size() / 2, 261);
    QVERIFY2(answer.startsWith(
                 plain("68 ff ff 68 00 02 08 32 03 00 00 00 01 00 02 00 ee 00 00 04 01 ff 04 07 50")),
             qPrintable(answer));
}

void TestSimulatorReads::everyItemIsAnsweredInOrderWithFillBytesBetween()
{
    sim::Station station = stationWithMarkedAreas();
    QCOMPARE(readItems(station, "12 0a 10 02 0001 0001 84 000040"   // VB8, 1
                                "12 0a 10 1e 0001 0000 1e 000005"   // C5
                                "12 0a 10 02 0001 0000 99 000000"   // no such area
                                "12 0a 10 04 0001 0000 81 000040"   // IW8
                                "12 0a 10 01 0001 0000 81 000040"), // I8.0
             plain("ff 04 0008 18 00"
                   "ff 09 0003 10 0005 00"
                   "0a 00 0000"
                   "ff 04 0010 1122"
                   "ff 03 0001 01"));
}

// Head 12 + 2 + 3 * 4 leaves 226 bytes for data: 101 with their fill byte, then 124.
void TestSimulatorReads::itemBehindTheRoomIsRefusedAlone()
{
    sim::Station station(2, sim::Memory());
    const QString first = "12 0a 10 02 0065 0001 84 000000";
    const QString third = "12 0a 10 02 007d 0001 84 000000"; // 125 bytes
    const QString fitting = "12 0a 10 02 007c 0001 84 000000";
    const QString refused = "12 0a 10 02 0000 0001 84 000000";
    const QString zeros(2 * 102, QLatin1Char('0'));
    QCOMPARE(readItems(station, first + refused + third),
             plain("ff 04 0328" + zeros + "0a 00 0000" + "0a 00 0000"));
    QCOMPARE(readItems(station, first + refused + fitting),
             plain("ff 04 0328" + zeros + "0a 00 0000" + "ff 04 03e0" + QString(2 * 124, QLatin1Char('0'))));
}

void TestSimulatorReads::twentyItemsAreAnswered()
{
    sim::Station station = stationWithMarkedAreas();
    QCOMPARE(readItems(station, QString("12 0a 10 04 0001 0000 81 000040").repeated(20)),
             plain("ff 04 0010 1122").repeated(20));
}

void TestSimulatorReads::referenceComesBack()
{
    sim::Station station(2);
    QCOMPARE(answerTo(station, "32 01 0000 ffff 000e 0000 04 01 12 0a 10 02 0001 0001 84 000320"),
             plain("32 03 0000 ffff 0002 0005 00 00 04 01 ff 04 0008 11"));
}

TEST_CLASS(TestSimulatorReads)
#include "test_reads.moc"
