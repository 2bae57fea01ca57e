// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Writes of every area: the return codes of the answer, and what a read finds afterwards.

#include "conversation.h"
#include "test_class.h"

#include <QtTest>

class TestSimulatorWrites : public QObject
{
    Q_OBJECT

private slots:
    void wholeExchangeByteForByte();
    void itemIsWrittenAndReadBack_data();
    void itemIsWrittenAndReadBack();
    void neighboursOfWrittenBytesStay();
    void bitWriteLeavesTheOtherBits();
    void anyValueButZeroSetsABit();
    void severalBitsAreWrittenInOneJob();
    void refusedItemsDoNotHinderTheOthers();
    void timerWriteKeepsPresetAndStatus();
    void counterWriteKeepsPresetAndStatus();
    void recordWithAnythingBeforeItsValueWritesNothing();
    void mixedItemsWithFillBytesAreWritten();
    void largestWriteFillsTheLargestFrame();
};

void TestSimulatorWrites::wholeExchangeByteForByte()
{
    sim::Station station(2);
    QCOMPARE(say(station, "68 21 21 68 02 00 6c 32 01 00 00 00 07 00 0e 00 06"
                          "05 01 12 0a 10 02 00 02 00 01 84 00 03 20"
                          "00 04 00 10 ab cd 26 16"),
             plain("e5"));
    QCOMPARE(say(station, "10 02 00 5c 5e 16"),
             plain("68 12 12 68 00 02 08 32 03 00 00 00 07 00 02 00 01 00 00 05 01 ff 4e 16"));
    QCOMPARE(int(station.memory().bytes(sim::kAreaV)[100]), 0xAB);
    QCOMPARE(int(station.memory().bytes(sim::kAreaV)[101]), 0xCD);
}

void TestSimulatorWrites::itemIsWrittenAndReadBack_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("readBack");
    const auto row = [](const char *name, const char *item, const char *written, const char *readBack) {
        QTest::newRow(name) << item << written << readBack;
    };

    row("I3.5", "12 0a 10 01 0001 0000 81 00001d", "00 03 0001 01", "ff 03 0001 01");
    row("IB3", "12 0a 10 02 0001 0000 81 000018", "00 04 0008 5a", "ff 04 0008 5a");
    row("IW3", "12 0a 10 04 0001 0000 81 000018", "00 04 0010 5a6b", "ff 04 0010 5a6b");
    row("ID3", "12 0a 10 06 0001 0000 81 000018", "00 04 0020 5a6b7c8d", "ff 04 0020 5a6b7c8d");
    row("Q3.7", "12 0a 10 01 0001 0000 82 00001f", "00 03 0001 01", "ff 03 0001 01");
    row("QB3, 3", "12 0a 10 02 0003 0000 82 000018", "00 04 0018 5a6b7c", "ff 04 0018 5a6b7c");
    row("M3.0", "12 0a 10 01 0001 0000 83 000018", "00 03 0001 01", "ff 03 0001 01");
    row("MW30", "12 0a 10 04 0001 0000 83 0000f0", "00 04 0010 5a6b", "ff 04 0010 5a6b");
    row("V10239.7", "12 0a 10 01 0001 0001 84 013fff", "00 03 0001 01", "ff 03 0001 01");
    row("VW10, 2", "12 0a 10 04 0002 0001 84 000050", "00 04 0020 12345678", "ff 04 0020 12345678");
    row("VD10", "12 0a 10 06 0001 0001 84 000050", "00 04 0020 11223344", "ff 04 0020 11223344");
    row("SM30.1", "12 0a 10 01 0001 0000 05 0000f1", "00 03 0001 01", "ff 03 0001 01");
    row("SMB549", "12 0a 10 02 0001 0000 05 001128", "00 04 0008 5a", "ff 04 0008 5a");
    row("S31.7", "12 0a 10 01 0001 0000 04 0000ff", "00 03 0001 01", "ff 03 0001 01");
    row("SD28", "12 0a 10 06 0001 0000 04 0000e0", "00 04 0020 5a6b7c8d", "ff 04 0020 5a6b7c8d");
    row("AQW62", "12 0a 10 04 0001 0000 07 0001f0", "00 04 0010 5a6b", "ff 04 0010 5a6b");
    row("T36", "12 0a 10 1f 0001 0000 1f 000024", "00 04 0028 000000 012c", "ff 09 0005 00 0000012c");
    row("T254, 2", "12 0a 10 1f 0002 0000 1f 0000fe", "00 04 0050 000000 012c 000000 ffff",
        "ff 09 000a 00 0000012c 00 0000ffff");
    row("C6", "12 0a 10 1e 0001 0000 1e 000006", "00 04 0018 00 0005", "ff 09 0003 00 0005");
    row("C254, 2", "12 0a 10 1e 0002 0000 1e 0000fe", "00 04 0030 00 0005 00 ffff",
        "ff 09 0006 00 0005 00 ffff");
}

void TestSimulatorWrites::itemIsWrittenAndReadBack()
{
    QFETCH(QString, item);
    QFETCH(QString, written);
    QFETCH(QString, readBack);
    sim::Station station(2);
    QCOMPARE(writeItems(station, item, written), plain("ff"));
    QCOMPARE(readItems(station, item), plain(readBack));
}

void TestSimulatorWrites::neighboursOfWrittenBytesStay()
{
    sim::Station station(2);
    QCOMPARE(writeItems(station, "12 0a 10 04 0001 0001 84 000328", "00 04 0010 aabb"), plain("ff")); // VW101
    QCOMPARE(readItems(station, "12 0a 10 02 0006 0001 84 000318"), plain("ff 04 0030 00 11 aa bb 44 00"));
}

void TestSimulatorWrites::bitWriteLeavesTheOtherBits()
{
    sim::Station station(2);
    station.memory().bytes(sim::kAreaM)[0] = 0xA5;
    QCOMPARE(writeItems(station, "12 0a 10 01 0001 0000 83 000001", "00 03 0001 01"), plain("ff"));
    QCOMPARE(int(station.memory().bytes(sim::kAreaM)[0]), 0xA7);
    QCOMPARE(writeItems(station, "12 0a 10 01 0001 0000 83 000007", "00 03 0001 00"), plain("ff"));
    QCOMPARE(int(station.memory().bytes(sim::kAreaM)[0]), 0x27);
}

void TestSimulatorWrites::anyValueButZeroSetsABit()
{
    sim::Station station(2);
    QCOMPARE(writeItems(station, "12 0a 10 01 0001 0000 83 000002", "00 03 0001 80"), plain("ff"));
    QCOMPARE(int(station.memory().bytes(sim::kAreaM)[0]), 0x04);
}

void TestSimulatorWrites::severalBitsAreWrittenInOneJob()
{
    sim::Station station(2);
    QCOMPARE(answerTo(station, "32 01 0000 0001 0026 0011 05 03"
                               "12 0a 10 01 0001 0001 84 000056" // V10.6
                               "12 0a 10 01 0001 0001 84 000057" // V10.7
                               "12 0a 10 01 0001 0001 84 000058" // V11.0
                               "00 03 0001 01 00"
                               "00 03 0001 00 00"
                               "00 03 0001 01"),
             plain("32 03 0000 0001 0002 0003 00 00 05 03 ff ff ff"));
    QCOMPARE(int(station.memory().bytes(sim::kAreaV)[10]), 0x40);
    QCOMPARE(int(station.memory().bytes(sim::kAreaV)[11]), 0x01);
}

void TestSimulatorWrites::refusedItemsDoNotHinderTheOthers()
{
    sim::Station station(2);
    QCOMPARE(writeItems(station,
                        "12 0a 10 01 0001 0000 83 0000fe"  // M31.6
                        "12 0a 10 01 0001 0000 83 000100"  // M32.0 does not exist
                        "12 0a 10 01 0001 0000 20 000000"  // HC0
                        "12 0a 10 01 0001 0000 83 0000ff", // M31.7
                        "00 03 0001 01 00  00 03 0001 01 00  00 03 0001 01 00  00 03 0001 01"),
             plain("ff 05 03 ff"));
    QCOMPARE(int(station.memory().bytes(sim::kAreaM)[31]), 0xC0);
}

void TestSimulatorWrites::timerWriteKeepsPresetAndStatus()
{
    sim::Station station(2);
    station.memory().timers[37] = {300, 500, true};
    QCOMPARE(writeItems(station, "12 0a 10 1f 0001 0000 1f 000025", "00 04 0028 000000 0007"), plain("ff"));
    QVERIFY((station.memory().timers[37] == sim::TimerOrCounter{7, 500, true}));
}

void TestSimulatorWrites::counterWriteKeepsPresetAndStatus()
{
    sim::Station station(2);
    station.memory().counters[5] = {3, 4, true};
    QCOMPARE(writeItems(station, "12 0a 10 1e 0001 0000 1e 000005", "00 04 0018 00 0009"), plain("ff"));
    QVERIFY((station.memory().counters[5] == sim::TimerOrCounter{9, 4, true}));
}

void TestSimulatorWrites::recordWithAnythingBeforeItsValueWritesNothing()
{
    sim::Station station(2);
    const sim::Memory before = station.memory();
    QCOMPARE(writeItems(station, "12 0a 10 1f 0002 0000 1f 000025", "00 04 0050 000000 0001 000001 0002"),
             plain("06"));
    QCOMPARE(writeItems(station, "12 0a 10 1e 0002 0000 1e 000005", "00 04 0030 00 0001 10 0002"),
             plain("06"));
    QVERIFY(station.memory() == before);
}

void TestSimulatorWrites::mixedItemsWithFillBytesAreWritten()
{
    sim::Station station(2);
    QCOMPARE(writeItems(station,
                        "12 0a 10 02 0003 0000 83 000000"  // MB0, 3 bytes
                        "12 0a 10 1e 0001 0000 1e 000007"  // C7
                        "12 0a 10 04 0001 0000 83 000020", // MW4
                        "00 04 0018 010203 00"
                        "00 04 0018 00 0021 00"
                        "00 04 0010 0405"),
             plain("ff ff ff"));
    QCOMPARE(readItems(station, "12 0a 10 02 0006 0000 83 000000"), plain("ff 04 0030 010203 00 0405"));
    QCOMPARE(int(station.memory().counters[7].value), 0x21);
}

// A PDU of 252 bytes: 28 about the item and 224 of data.
void TestSimulatorWrites::largestWriteFillsTheLargestFrame()
{
    sim::Station station(2);
    QCOMPARE(
        writeItems(station, "12 0a 10 02 00e0 0001 84 000000", "00 04 0700" + QString("5a").repeated(224)),
        plain("ff"));
    QCOMPARE(int(station.memory().bytes(sim::kAreaV)[223]), 0x5A);
    QCOMPARE(int(station.memory().bytes(sim::kAreaV)[224]), 0x00);
}

TEST_CLASS(TestSimulatorWrites)
#include "test_writes.moc"
