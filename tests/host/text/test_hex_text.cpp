// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Bytes as people write them.

#include "host/text/hex_text.h"

#include "hex.h"
#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

using namespace host;

class TestHexText : public QObject
{
    Q_OBJECT

private slots:
    void anyGroupingIsTaken_data();
    void anyGroupingIsTaken();
    void whatIsNoHexIsRefused_data();
    void whatIsNoHexIsRefused();
};

void TestHexText::anyGroupingIsTaken_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text :
         {"10 02 00 5c 5e 16", "1002005C5e16", "10:02:00:5c:5e:16", "0x10, 0x2,0x00 0X5c 5e16",
          "10-02-00\n5c_5e;16\n", "  1002 005c\t5e 16 ", "-> poll of station 2: 10 02 00 5c 5e 16",
          "poll of station 2: 1002\nmore: 00 5c 5e16"})
        QTest::newRow(text) << QString(text);
}

void TestHexText::anyGroupingIsTaken()
{
    QFETCH(QString, text);
    QCOMPARE(hex(parseHex(text)), QString("1002005c5e16"));
}

void TestHexText::whatIsNoHexIsRefused_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char *name, const QString &text, const QString &complaint) {
        QTest::newRow(name) << text << complaint;
    };
    row("letters", "10 zz", "2: \"zz\" is not hexadecimal");
    row("half a byte", "10 025", "2: \"025\" is an odd number of digits");
    row("a mark alone", "0x", "2: \"0x\" is not hexadecimal");
    row("beyond ASCII", QString::fromUtf8("１０"), QString::fromUtf8("2: \"１０\" is not hexadecimal"));
}

void TestHexText::whatIsNoHexIsRefused()
{
    QFETCH(QString, text);
    QTEST(failureOf([&] { parseHex(text); }).section(" / ", 0, 0), "complaint");
}

TEST_CLASS(TestHexText)

#include "test_hex_text.moc"
