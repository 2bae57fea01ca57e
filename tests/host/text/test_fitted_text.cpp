// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Texts where there is little room.

#include "host/text/fitted_text.h"

#include "test_class.h"

#include <QtTest>

#include <algorithm>

using namespace host;

class TestFittedText : public QObject
{
    Q_OBJECT

private slots:
    void namesKeepBothEnds_data();
    void namesKeepBothEnds();
    void theFirstTextThatFitsIsTaken();
    void linesBreakAtBlanks_data();
    void linesBreakAtBlanks();
    void valuesAreShortenedAndNeverCut_data();
    void valuesAreShortenedAndNeverCut();
    void noValueIsWiderThanItsRoom();
};

void TestFittedText::namesKeepBothEnds_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("text");
    QTest::newRow("it fits") << 14 << "Press.Pressure";
    QTest::newRow("one is missing") << 13 << "Press...ssure";
    QTest::newRow("little room") << 5 << "P...e";
    QTest::newRow("no room for a gap") << 4 << "Pres";
    QTest::newRow("no room") << 0 << "";
    QTest::newRow("less than none") << -3 << "";
}

void TestFittedText::namesKeepBothEnds()
{
    QFETCH(int, columns);
    QTEST(withoutMiddle("Press.Pressure", columns), "text");
}

void TestFittedText::theFirstTextThatFitsIsTaken()
{
    const QStringList texts = {"long and longer", "not so long", "short"};
    QCOMPARE(firstThatFits(texts, 15), texts[0]);
    QCOMPARE(firstThatFits(texts, 14), texts[1]);
    QCOMPARE(firstThatFits(texts, 5), texts[2]);
    QCOMPARE(firstThatFits(texts, 4), QString("shor"));
}

void TestFittedText::linesBreakAtBlanks_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("lines");
    const auto row = [](const char *text, int columns, const char *lines) {
        QTest::addRow("%s in %d", text, columns) << QString(text) << columns << QString(lines);
    };
    row("plc no response", 15, "plc no response");
    row("plc no response", 14, "plc no|response");
    row("plc no response", 6, "plc no|respon|se");
    row("", 10, "");
    row("ab", 0, "a|b");
}

void TestFittedText::linesBreakAtBlanks()
{
    QFETCH(QString, text);
    QFETCH(int, columns);
    QTEST(wrapped(text, columns).join('|'), "lines");
}

void TestFittedText::valuesAreShortenedAndNeverCut_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *value, int columns, const char *text) {
        QTest::addRow("%s in %d", value, columns) << QString(value) << columns << QString(text);
    };
    row("4294967295", 10, "4294967295");
    row("4294967295", 9, "~4.295e9");
    row("4294967295", 6, "~4.3e9");
    row("4294967295", 4, "~4e9");
    row("4294967295", 3, "###");
    row("-3.1415927", 8, "~-3.1416");
    row("-3.1415927", 3, "~-3");
    row("1.1754944e-38", 9, "~1.18e-38");
    row("0.00012345678", 8, "~0.00012");
    row("65535", 4, "~7e4");
    row("-inf", 3, "###");
    row("0x1122abff", 10, "0x1122abff");
    row("0x1122abff", 9, "#########");
    row("\"Hello\"", 7, "\"Hello\"");
    row("\"Hello, you\"", 9, "\"Hell\"...");
    row("\"a\\x00\\x00\"", 10, "\"a\\x00\"...");
    row("\"a\\x00\\x00\"", 9, "\"a\"...");
    row("\"a\\\"b\\\\c\"", 8, "\"a\\\"\"...");
    row("\"Hello\"", 5, "#####");
}

void TestFittedText::valuesAreShortenedAndNeverCut()
{
    QFETCH(QString, value);
    QFETCH(int, columns);
    QTEST(shortened(value, columns), "text");
}

void TestFittedText::noValueIsWiderThanItsRoom()
{
    for (const char *value :
         {"4294967295", "-1.1754944e-38", "0x1122abff", "\"\\x00\\x00ab\\\\\"", "nan", "1"})
        for (int columns = -1; columns < 20; ++columns)
            QVERIFY(shortened(value, columns).size() <= std::max(columns, 0));
}

TEST_CLASS(TestFittedText)
#include "test_fitted_text.moc"
