// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Dumps as text: written, read back, and refused when anything is missing or wrong.

#include "host/dump/dump_file.h"

#include "hex.h"
#include "host/items/memory_range.h"
#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

using namespace host;

namespace {

const char kBytes[] = "s7ppi-dump 1\n"
                      "area VB90..VB107\n"
                      "station 2\n"
                      "VB90  00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n"
                      "VB106 10 ff\n";

const char kTimers[] = "s7ppi-dump 1\n"
                       "area T36..T38\n"
                       "station 126\n"
                       "T36 0000 012c 7fff\n";

// The text with some words replaced.
QString failureWith(const char *text, const char *before, const char *after)
{
    const QByteArray changed = QByteArray(text).replace(before, after);
    return failureOf([&] { parseDump(changed, "press.dump"); });
}

} // namespace

class TestDumpFile : public QObject
{
    Q_OBJECT

private slots:
    void aDumpIsWrittenInLinesOfSixteenBytes();
    void elementsOfWordsStayTogether();
    void whatWasWrittenIsReadBack();
    void commentsEmptyLinesAndOtherLineLengthsAreTaken();
    void aByteOrderMarkAndCarriageReturnsAreTaken();
    void whatIsWrongIsToldWithItsLine_data();
    void whatIsWrongIsToldWithItsLine();
    void aDumpWithAWrongFirstLineIsNotTakenForPlainBytes();
    void aFileCutAnywhereIsRefused();
    void ofAPartOnlyWholeLinesCount();
};

void TestDumpFile::aDumpIsWrittenInLinesOfSixteenBytes()
{
    const QByteArray data = bytes("000102030405060708090a0b0c0d0e0f 10ff");
    QCOMPARE(dumpText({parseRange("VB90..VB107"), 2, data}), QByteArray(kBytes));
}

void TestDumpFile::elementsOfWordsStayTogether()
{
    QCOMPARE(dumpText({parseRange("T36..T38"), 126, bytes("0000 012c 7fff")}), QByteArray(kTimers));
}

void TestDumpFile::whatWasWrittenIsReadBack()
{
    const Dump dump = parseDump(kBytes, "press.dump");
    QCOMPARE(rangeText(dump.range), QString("VB90..VB107"));
    QCOMPARE(dump.station, 2);
    QCOMPARE(hex(dump.data), QString("000102030405060708090a0b0c0d0e0f10ff"));
    QCOMPARE(hex(parseDump(kTimers, "press.dump").data), QString("0000012c7fff"));
}

void TestDumpFile::commentsEmptyLinesAndOtherLineLengthsAreTaken()
{
    const Dump dump = parseDump("# of Monday\n\ns7ppi-dump 1\r\narea MB0..3\nstation 5\n"
                                "MB0 0A\n  # more\nMB1\t0b 0c\n\nMB3 0D",
                                "press.dump");
    QCOMPARE(hex(dump.data), QString("0a0b0c0d"));
}

void TestDumpFile::aByteOrderMarkAndCarriageReturnsAreTaken()
{
    const QByteArray text = "\xef\xbb\xbf" + QByteArray(kBytes).replace("\n", "\r\n");
    QCOMPARE(hex(parseDump(text, "press.dump").data), QString("000102030405060708090a0b0c0d0e0f10ff"));
    int wholeSize = 0;
    QCOMPARE(int(parsePartialDump(text, "press.dump", wholeSize).data.size()), 18);
}

void TestDumpFile::whatIsWrongIsToldWithItsLine_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("failure");
    const auto row = [](const char *name, const char *before, const char *after, const char *failure) {
        QTest::newRow(name) << QByteArray(before) << QByteArray(after) << QString(failure);
    };
    row("another kind of file", "s7ppi-dump 1", "{", "2: press.dump:1: this is no dump");
    row("no version", "s7ppi-dump 1", "s7ppi-dump", "2: press.dump:1: the version does not stand here");
    row("more than a version", "s7ppi-dump 1", "s7ppi-dump 1 of Monday",
        "2: press.dump:1: the version does not stand here");
    row("a newer version", "s7ppi-dump 1", "s7ppi-dump 2", "2: press.dump:1: this is a dump of version 2");
    row("no area", "area VB90..VB107\n", "", "2: press.dump:2: the area does not stand here");
    row("a wrong area", "VB90..VB107", "VB90..MB3", "2: press.dump:2: VB90 and MB3 are not in the same area");
    row("no station", "station 2\n", "", "2: press.dump:3: the station does not stand here");
    row("a wrong station", "station 2", "station x", "2: press.dump:3: \"x\" is no station");
    row("a station too large", "station 2", "station 127", "2: press.dump:3: \"127\" is no station");
    row("a gap", "VB106", "VB107", "2: press.dump:5: here stands VB107 and not VB106");
    row("a line without data", "VB106 10 ff", "VB106", "2: press.dump:5: there are no bytes behind VB106");
    row("half a byte", " ff", " f", "2: press.dump:5: \"f\" is no element of 2 hexadecimal digits");
    row("no hexadecimal digits", " ff", " fg",
        "2: press.dump:5: \"fg\" is no element of 2 hexadecimal digits");
    row("too much in a line", " ff", " ff 00",
        "2: press.dump:5: there is more than the area has: it ends at VB107");
    row("a line too many", " ff\n", " ff\nVB108 00\n",
        "2: press.dump:6: there is more than the area has: it ends at VB107");
    row("a byte missing at the end", " ff", "",
        "2: press.dump:5: the dump ends before VB107: 17 of 18 bytes are there");
}

void TestDumpFile::whatIsWrongIsToldWithItsLine()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    const QString failure = failureWith(kBytes, before.constData(), after.constData());
    QTEST(failure.section(" / ", 0, 0), "failure");
    QVERIFY(!failure.section(" / ", 1).isEmpty());
}

void TestDumpFile::aDumpWithAWrongFirstLineIsNotTakenForPlainBytes()
{
    QVERIFY(failureWith(kBytes, "s7ppi-dump 1", "s7ppi-dump")
                .endsWith(" / the first line is \"s7ppi-dump 1\" alone"));
    QVERIFY(failureWith(kBytes, "s7ppi-dump 1", "12").endsWith("plain bytes need --format raw"));
}

// All but the line's own end is needed.
void TestDumpFile::aFileCutAnywhereIsRefused()
{
    const QByteArray whole = kBytes;
    for (int length = 0; length < int(whole.size()) - 1; ++length)
        QVERIFY2(failureOf([&] { parseDump(whole.left(length), "cut.dump"); }).startsWith("2: cut.dump:"),
                 QByteArray::number(length).constData());
}

void TestDumpFile::ofAPartOnlyWholeLinesCount()
{
    const QByteArray whole = kBytes;
    const int secondLine = int(whole.indexOf("VB106"));
    for (int length = secondLine; length < int(whole.size()); ++length) {
        int wholeSize = 0;
        const Dump part = parsePartialDump(whole.left(length), "press.dump.part", wholeSize);
        QCOMPARE(int(part.data.size()), 16);
        QCOMPARE(wholeSize, secondLine);
    }
    int wholeSize = 0;
    QCOMPARE(int(parsePartialDump(whole, "press.dump.part", wholeSize).data.size()), 18);
    QCOMPARE(wholeSize, int(whole.size()));
}

TEST_CLASS(TestDumpFile)
#include "test_dump_file.moc"
