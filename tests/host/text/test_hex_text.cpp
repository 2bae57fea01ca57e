// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Bytes as people write them.

#include "host/text/hex_text.h"

#include "hex.h"
#include "test_class.h"
#include "tests/host/support/refused_text.h"

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
    addRefusedTexts();
    const QString hint =
        "write bytes as two hexadecimal digits each, as 10 02 00 5c 5e 16, or 0x10,0x02, or 10:02";
    refused("10 zz", "\"zz\" is not hexadecimal", hint);
    refused("10 025", "\"025\" is an odd number of digits", hint);
    refused("0x", "\"0x\" is not hexadecimal", hint);
    refused("10 1g", "\"1g\" is not hexadecimal", hint);
    refused("１０", "\"１０\" is not hexadecimal", hint);
}

void TestHexText::whatIsNoHexIsRefused()
{
    compareRefusal([](const QString &text) { parseHex(text); });
}

TEST_CLASS(TestHexText)

#include "test_hex_text.moc"
