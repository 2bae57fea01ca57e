// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What mistyped words may have meant.

#include "common/nearest_word.h"

#include <QtTest>

#include <string>
#include <vector>

class TestNearestWord : public QObject
{
    Q_OBJECT

private slots:
    void likelyWordIsFound_data();
    void likelyWordIsFound();
    void withoutWordsNoneIsLikely();
    void closestWordTakesTheFewestChanges_data();
    void closestWordTakesTheFewestChanges();
};

void TestNearestWord::likelyWordIsFound_data()
{
    QTest::addColumn<QString>("likely");
    const auto row = [](const char *text, const char *likely) { QTest::newRow(text) << QString(likely); };
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
    // None is likely where two words begin so, where the text is short, or where no word is like it.
    row("w", "");
    row("ww", "");
    row("--nonsense", "");
    row("VB100", "");
    row("", "");
    row("--", "");
}

void TestNearestWord::likelyWordIsFound()
{
    const std::vector<std::string> words = {"read",   "write",     "watch", "describe",  "--help",
                                            "--port", "--verbose", "-v",    "--stopbits"};
    QTEST(QString::fromStdString(common::likelyWord(QTest::currentDataTag(), words)), "likely");
}

void TestNearestWord::withoutWordsNoneIsLikely()
{
    QCOMPARE(common::likelyWord("read", {}), std::string());
}

void TestNearestWord::closestWordTakesTheFewestChanges_data()
{
    QTest::addColumn<QString>("closest");
    const auto row = [](const char *text, const char *closest) { QTest::newRow(text) << QString(closest); };
    row("one", "one");
    row("oen", "one");
    row("thre", "three");
    row("tthree", "three");
    row("two four", "four");
    row("FOUR", "four");
    row("--two", "two");
    // Two neighbours that are exchanged are one change, as the one letter is that makes it "tom".
    row("tow", "two");
    // Nothing is near: the first of those that are least far.
    row("x", "one");
    row("", "one");
}

void TestNearestWord::closestWordTakesTheFewestChanges()
{
    const std::vector<std::string> words = {"one", "two", "three", "four", "tom"};
    QTEST(QString::fromStdString(common::closestWord(QTest::currentDataTag(), words)), "closest");
}

QTEST_APPLESS_MAIN(TestNearestWord)
#include "test_nearest_word.moc"
