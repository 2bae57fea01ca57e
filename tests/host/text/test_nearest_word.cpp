// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What mistyped words may have meant.

#include "host/text/nearest_word.h"

#include <QtTest>

#include <string>
#include <vector>

using namespace host;

class TestNearestWord : public QObject
{
    Q_OBJECT

private slots:
    void theNearestIsFound_data();
    void theNearestIsFound();
    void withoutWordsThereIsNone();
};

void TestNearestWord::theNearestIsFound_data()
{
    QTest::addColumn<QString>("nearest");
    const auto row = [](const char *text, const char *nearest) { QTest::newRow(text) << QString(nearest); };
    row("raed", "read");
    row("rread", "read");
    row("rea", "read");
    row("wriet", "write");
    row("WATCH", "watch");
    row("desc", "describe");
    row("help", "--help");
    row("--prot", "--port");
    row("--verbos", "--verbose");
    row("-V", "-v");
    row("--stopbit", "--stopbits");
    // Two begin so; short words and those that are like nothing.
    row("w", "");
    row("ww", "");
    row("--nonsense", "");
    row("VB100", "");
    row("", "");
    row("--", "");
}

void TestNearestWord::theNearestIsFound()
{
    const std::vector<std::string> words = {"read",   "write",     "watch", "describe",  "--help",
                                            "--port", "--verbose", "-v",    "--stopbits"};
    QTEST(QString::fromStdString(nearestWord(QTest::currentDataTag(), words)), "nearest");
}

void TestNearestWord::withoutWordsThereIsNone()
{
    QCOMPARE(nearestWord("read", {}), std::string());
}

QTEST_APPLESS_MAIN(TestNearestWord)
#include "test_nearest_word.moc"
