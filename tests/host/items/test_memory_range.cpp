// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Stretches of memory: what is one, and what is meant by what is none.

#include "host/items/memory_range.h"

#include "test_class.h"
#include "tests/host/support/refused_text.h"

#include <QtTest>

using namespace host;

class TestMemoryRange : public QObject
{
    Q_OBJECT

private slots:
    void bothEndsAreIncluded_data();
    void bothEndsAreIncluded();
    void whatIsNoRangeGetsTheNearestOne_data();
    void whatIsNoRangeGetsTheNearestOne();
    void moreElementsThanAnAddressCanNameAreRefused();
};

void TestMemoryRange::bothEndsAreIncluded_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("meaning");
    QTest::addColumn<int>("size");
    const auto row = [](const char *text, const char *meaning, int size) {
        QTest::newRow(text) << QString(text) << QString(meaning) << size;
    };
    row("VB0..VB4095", "VB0..VB4095", 4096);
    row("VB0..4095", "VB0..VB4095", 4096);
    row("MB7..MB7", "MB7..MB7", 1);
    row("VW0..VW98", "VW0..VW98", 100);
    row("VD4..VD12", "VD4..VD12", 12);
    row("AIW0..62", "AIW0..AIW62", 64);
    row("T0..T255", "T0..T255", 512);
    row("C5..6", "C5..C6", 4);
    row("HC0..HC5", "HC0..HC5", 24);
}

void TestMemoryRange::bothEndsAreIncluded()
{
    QFETCH(QString, text);
    const Item range = parseRange(text);
    QTEST(rangeText(range), "meaning");
    QTEST(range.size(), "size");
}

void TestMemoryRange::whatIsNoRangeGetsTheNearestOne_data()
{
    addRefusedTexts();
    refused("VB0", "VB0 is not a range", "a range is FIRST..LAST, as VB0..VB4095 or MB0..31");
    refused("vb0..9", "vb0: not an address of the controller", "write VB0 instead of vb0");
    refused("VB0..vb9", "vb9: not an address of the controller", "write VB9 instead of vb9");
    refused("V0.0..V3.7", "V0.0 is a bit, and ranges are of bytes", "its byte is VB0");
    refused("VB0..MB9", "VB0 and MB9 are not in the same area", "write VB0..VB9");
    refused("VB0..VW8", "VB0 and VW8 are not in the same area", "write VB0..VB8");
    refused("VB9..VB0", "VB0 lies before VB9", "write VB0..VB9");
    refused("VW0..VW9", "VW9 begins inside another element counted from VW0", "write VW0..VW8");
    refused("VB0..VB99@3", "VB99@3: no station can stand here", "name it with --station");
    refused("VB0..99@3", "99@3: no station can stand here", "name it with --station");
    refused("VB0@3..VB99", "VB0@3: no station can stand here", "name it with --station");
    refused("VD2..VD9", "VD9 begins inside another element counted from VD2", "write VD2..VD6");
}

void TestMemoryRange::whatIsNoRangeGetsTheNearestOne()
{
    compareRefusal([](const QString &text) { parseRange(text); });
}

void TestMemoryRange::moreElementsThanAnAddressCanNameAreRefused()
{
    QCOMPARE(rangeText(rangeFrom(parseAddress("VB2097150"), 2)), QString("VB2097150..VB2097151"));
    QVERIFY(failureOf([] { rangeFrom(parseAddress("VB2097150"), 3); }).startsWith("2: "));
}

TEST_CLASS(TestMemoryRange)
#include "test_memory_range.moc"
