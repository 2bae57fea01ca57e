// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What reads ask the controller for: bytes, words, double words and bits of one address side by side.

#include "commands.h"
#include "hex.h"
#include "outcome.h"
#include "test_class.h"

#include <QtTest>

#include <climits>

namespace {

const char kOneItem[] = "04 01 12 0a 10";

struct Request
{
    const char *address;
    int count;
    int dataType;
    const char *elements; // transport size and number, data block and area, address; behind kOneItem
    const char *note;
};

// clang-format off
const Request kRequests[] = {
    {"V100",     4, kBytes,       "02 00 04  00 01 84  00 03 20", ""},
    {"V100",     3, kWords,       "02 00 06  00 01 84  00 03 20", "6 bytes"},
    {"V100",     1, kDoubleWords, "02 00 04  00 01 84  00 03 20", "4 bytes"},
    {"VB100",    4, kBytes,       "02 00 04  00 01 84  00 03 20", ""},
    {"VB100",    0, kBytes,       "02 00 00  00 01 84  00 03 20", ""},
    {"VB100",    3, kWords,       "02 00 06  00 01 84  00 03 20", "6 bytes"},
    {"VB100",    3, kDoubleWords, "02 00 0c  00 01 84  00 03 20", "12 bytes"},
    {"VW100",    3, kBytes,       "04 00 02  00 01 84  00 03 20", "2 words"},
    {"VW100",    4, kBytes,       "04 00 02  00 01 84  00 03 20", "2 words"},
    {"VW100",    3, kWords,       "04 00 03  00 01 84  00 03 20", ""},
    {"VW100",    0, kWords,       "04 00 00  00 01 84  00 03 20", ""},
    {"VW100",    3, kDoubleWords, "04 00 06  00 01 84  00 03 20", "6 words"},
    {"VD100",    1, kBytes,       "06 00 01  00 01 84  00 03 20", "1 double word"},
    {"VD100",    4, kBytes,       "06 00 01  00 01 84  00 03 20", "1 double word"},
    {"VD100",    5, kBytes,       "06 00 02  00 01 84  00 03 20", "2 double words"},
    {"VD100",    1, kWords,       "06 00 01  00 01 84  00 03 20", "1 double word"},
    {"VD100",    2, kWords,       "06 00 01  00 01 84  00 03 20", "1 double word"},
    {"VD100",    3, kWords,       "06 00 02  00 01 84  00 03 20", "2 double words"},
    {"VD100",    3, kDoubleWords, "06 00 03  00 01 84  00 03 20", ""},
    {"VD100",    0, kDoubleWords, "06 00 00  00 01 84  00 03 20", ""},
    {"V10.3",    1, kBytes,       "02 00 01  00 01 84  00 03 38", "bit address keeps its digits"},
    {"V10.0",    1, kBits,        "02 00 01  00 01 84  00 00 50", ""},
    {"V10.0",    8, kBits,        "02 00 01  00 01 84  00 00 50", ""},
    {"V10.0",    9, kBits,        "02 00 02  00 01 84  00 00 50", ""},
    {"V10.6",    2, kBits,        "02 00 01  00 01 84  00 00 50", ""},
    {"V10.6",    3, kBits,        "02 00 02  00 01 84  00 00 50", ""},
    {"V10.7",    9, kBits,        "02 00 02  00 01 84  00 00 50", ""},
    {"V10.7",   10, kBits,        "02 00 03  00 01 84  00 00 50", ""},
    {"V10.0",    0, kBits,        "02 00 00  00 01 84  00 00 50", ""},
    {"V10.3",    0, kBits,        "02 00 01  00 01 84  00 00 50", ""},
    {"V10.12",   6, kBits,        "02 00 01  00 01 84  00 00 50", "bit 2"},
    {"V10.A",    8, kBits,        "02 00 04  00 01 84  00 00 50", "bit 17"},
    {"V10./",    8, kBits,        "02 00 01  00 01 84  00 00 50", "a bit number below 0 wraps"},
    {"VW10.0",   8, kBits,        "04 00 01  00 01 84  00 00 50", "words"},
    {"VW10.0",  17, kBits,        "04 00 02  00 01 84  00 00 50", "words"},
    {"VD10.0",   8, kBits,        "06 00 01  00 01 84  00 00 50", "double words"},
    {"SMB28",    1, kBytes,       "02 00 01  00 00 05  00 00 e0", ""},
    {"SMD28",    1, kDoubleWords, "06 00 01  00 00 05  00 00 e0", ""},
    {"SM0.5",    1, kBits,        "02 00 01  00 00 05  00 00 00", ""},
    {"I0.7",     1, kBits,        "02 00 01  00 00 81  00 00 00", ""},
    {"M13",      6, kBits,        "02 00 02  00 00 83  00 00 68", "byte 13, bit 3"},
    {"AIW16",    2, kBytes,       "04 00 01  00 00 06  00 00 80", ""},
    {"AIW16",    1, kWords,       "04 00 01  00 00 06  00 00 80", ""},
    {"T37",      3, kBytes,       "1f 00 02  00 00 1f  00 00 25", "2 timers"},
    {"T37",      4, kBytes,       "1f 00 02  00 00 1f  00 00 25", "2 timers"},
    {"T37",      0, kBytes,       "1f 00 00  00 00 1f  00 00 25", ""},
    {"T37",      3, kWords,       "1f 00 03  00 00 1f  00 00 25", ""},
    {"T37",      2, kDoubleWords, "1f 00 04  00 00 1f  00 00 25", "4 timers"},
    {"T37",      3, kBits,        "1f 00 03  00 00 1f  00 00 25", ""},
    {"C5",       1, kBytes,       "1e 00 01  00 00 1e  00 00 05", "1 counter"},
    {"C5",       3, kWords,       "1e 00 03  00 00 1e  00 00 05", ""},
    {"C5",       1, kDoubleWords, "1e 00 02  00 00 1e  00 00 05", "2 counters"},
    {"C5",       3, kBits,        "1e 00 03  00 00 1e  00 00 05", ""},
    {"HC0",      4, kBytes,       "20 00 01  00 00 20  00 00 00", "1 counter"},
    {"HC0",      5, kBytes,       "20 00 02  00 00 20  00 00 00", "2 counters"},
    {"HC0",      1, kWords,       "20 00 01  00 00 20  00 00 00", "1 counter"},
    {"HC0",      2, kWords,       "20 00 01  00 00 20  00 00 00", "1 counter"},
    {"HC0",      3, kWords,       "20 00 02  00 00 20  00 00 00", "2 counters"},
    {"HC1",      2, kDoubleWords, "20 00 02  00 00 20  00 00 01", "2 counters"},
    {"HC3",      8, kBits,        "02 00 02  00 00 20  00 00 03", "memory"},
    {"DB10.0",   1, kBits,        "02 00 01  00 00 00  00 00 50", "unknown prefix"},
    {"DB100",    4, kBytes,       "02 00 04  00 00 00  00 03 20", "unknown prefix"},
    {"DB100",    1, kWords,       "02 00 02  00 00 00  00 03 20", "unknown prefix"},
    {"DB100",    1, kDoubleWords, "02 00 04  00 00 00  00 03 20", "unknown prefix"},
    {"VXD100",   4, kBytes,       "06 00 01  00 01 00  00 03 20", "unknown prefix of double words"},
    {"vb100",    4, kBytes,       "02 00 04  00 00 00  00 03 20", "lower case"},
    {"100",      4, kBytes,       "02 00 04  00 00 00  00 03 20", "digits only"},
    {"",         1, kBytes,       "02 00 01  00 00 00  00 00 00", "empty address"},
    {"",         1, kBits,        "02 00 01  00 00 00  00 00 00", "empty address"},
};

struct LargeCount
{
    const char *address;
    int count;
    int dataType;
    const char *elements; // their number
};

const LargeCount kLargeCounts[] = {
    {"VB0",     65535, kBytes,       "ff ff"},
    {"VB0",     65536, kBytes,       "00 00"},
    {"VB0",     65539, kBytes,       "00 03"},
    {"VB0",   INT_MAX, kBytes,       "ff ff"},
    {"VB0",        -1, kBytes,       "ff ff"},
    {"VB0",   INT_MIN, kBytes,       "00 00"},
    {"VB0",     32767, kWords,       "ff fe"},
    {"VB0",     32769, kWords,       "00 02"},
    {"VB0",     40000, kWords,       "38 80"},
    {"VB0",   INT_MAX, kWords,       "ff fe"},
    {"VB0",   INT_MIN, kWords,       "00 00"},
    {"VB0",     16385, kDoubleWords, "00 04"},
    {"VB0",   INT_MAX, kDoubleWords, "ff fc"},
    {"VB0",   INT_MIN, kDoubleWords, "00 00"},
    {"V0.0",   524280, kBits,        "ff ff"},
    {"V0.0",   524288, kBits,        "00 00"},
    {"V0.0",   524289, kBits,        "00 01"},
    {"V0.0",  INT_MAX, kBits,        "00 00"},
    {"V0.7",  INT_MAX, kBits,        "00 01"},
    {"VW0",     65535, kBytes,       "80 00"},
    {"VW0",     65539, kBytes,       "00 02"},
    {"VW0",     65535, kWords,       "ff ff"},
    {"VW0",     65537, kWords,       "00 01"},
    {"VW0",   INT_MAX, kWords,       "ff ff"},
    {"VW0",        -1, kWords,       "ff ff"},
    {"VW0",     32769, kDoubleWords, "00 02"},
    {"VW0",        -1, kDoubleWords, "ff fe"},
    {"VW0.0",  524289, kBits,        "00 01"},
    {"VD0",     65535, kBytes,       "40 00"},
    {"VD0",     65537, kBytes,       "00 01"},
    {"VD0",        -1, kBytes,       "40 00"},
    {"VD0",     65535, kWords,       "80 00"},
    {"VD0",     65537, kWords,       "00 01"},
    {"VD0",     65535, kDoubleWords, "ff ff"},
    {"VD0",     65537, kDoubleWords, "00 01"},
    {"VD0",   INT_MAX, kDoubleWords, "ff ff"},
    {"VD0.0",  524289, kBits,        "00 01"},
    {"T0",      65537, kBytes,       "80 01"},
    {"T0",     131073, kBytes,       "00 01"},
    {"T0",    INT_MAX, kBytes,       "00 00"},
    {"T0",      65537, kWords,       "00 01"},
    {"T0",      32769, kDoubleWords, "00 02"},
    {"T0",    INT_MAX, kDoubleWords, "ff fe"},
    {"T0",      65537, kBits,        "00 01"},
    {"C0",     131073, kBytes,       "00 01"},
    {"C0",      65537, kWords,       "00 01"},
    {"C0",      32769, kDoubleWords, "00 02"},
    {"C0",      65537, kBits,        "00 01"},
    {"C0",    INT_MAX, kBits,        "ff ff"},
    {"HC0",     65537, kBytes,       "40 01"},
    {"HC0",    262145, kBytes,       "00 01"},
    {"HC0",   INT_MAX, kBytes,       "00 00"},
    {"HC0",     65535, kWords,       "80 00"},
    {"HC0",    131073, kWords,       "00 01"},
    {"HC0",     65537, kDoubleWords, "00 01"},
};
// clang-format on

} // namespace

class TestReadRequests : public QObject
{
    Q_OBJECT

private slots:
    void requestNamesAreaAndElements_data();
    void requestNamesAreaAndElements();
    void countsBeyond16Bits_data();
    void countsBeyond16Bits();
};

void TestReadRequests::requestNamesAreaAndElements_data()
{
    QTest::addColumn<CommunicatorCommand>("read");
    QTest::addColumn<QString>("expected");
    for (const Request &row : kRequests) {
        const CommunicatorCommand read = command(row.dataType, row.address, row.count);
        QTest::newRow(textOf(read, row.note).constData())
            << read << hex(bytes(kOneItem) + bytes(row.elements));
    }
}

void TestReadRequests::requestNamesAreaAndElements()
{
    QFETCH(CommunicatorCommand, read);
    QFETCH(QString, expected);
    QCOMPARE(askedFor(read), expected);
}

void TestReadRequests::countsBeyond16Bits_data()
{
    QTest::addColumn<CommunicatorCommand>("read");
    QTest::addColumn<QString>("expected");
    for (const LargeCount &row : kLargeCounts) {
        const CommunicatorCommand read = command(row.dataType, row.address, row.count);
        QTest::newRow(textOf(read).constData()) << read << hex(bytes(row.elements));
    }
}

void TestReadRequests::countsBeyond16Bits()
{
    QFETCH(CommunicatorCommand, read);
    QFETCH(QString, expected);
    QCOMPARE(askedFor(read).mid(12, 4), expected);
}

TEST_CLASS(TestReadRequests)

#include "test_read_requests.moc"
