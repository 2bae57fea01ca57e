// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What mistyped words may have meant.

#include "common/nearest_word.h"
#include "tests/support/test_class.h"

#include <QtTest>

#include <string>
#include <vector>

class TestCommonNearestWord : public QObject
{
    Q_OBJECT

private slots:
    void likelyWordIsFound_data();
    void likelyWordIsFound();
    void withoutWordsNoneIsLikely();
    void theWordWithTheFewestChangesIsLikely_data();
    void theWordWithTheFewestChangesIsLikely();
};

void TestCommonNearestWord::likelyWordIsFound_data()
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
    row("shell", ""); // of five letters "help" is two changes away
    row("VB100", "");
    row("", "");
    row("--", "");
}

void TestCommonNearestWord::likelyWordIsFound()
{
    const std::vector<std::string> words = {"read",   "write",     "watch", "describe",  "--help",
                                            "--port", "--verbose", "-v",    "--stopbits"};
    QTEST(QString::fromStdString(common::likelyWord(QTest::currentDataTag(), words)), "likely");
}

void TestCommonNearestWord::withoutWordsNoneIsLikely()
{
    QCOMPARE(common::likelyWord("read", {}), std::string());
}

void TestCommonNearestWord::theWordWithTheFewestChangesIsLikely_data()
{
    QTest::addColumn<QString>("likely");
    const auto row = [](const char *text, const char *likely) { QTest::newRow(text) << QString(likely); };
    row("one", "one");
    row("oen", "one");
    row("thre", "three");
    row("tthree", "three");
    row("FOUR", "four");
    row("--two", "two");
    // Two neighbours that are exchanged are one change, as the one letter is that makes it "tom".
    row("tow", "two");
    // A longer word may have more of them.
    row("thirtifuor", "thirty-four");
    // Nothing is near.
    row("two four", "");
    row("x", "");
    row("", "");
}

void TestCommonNearestWord::theWordWithTheFewestChangesIsLikely()
{
    const std::vector<std::string> words = {"one", "two", "three", "four", "tom", "thirty-four"};
    QTEST(QString::fromStdString(common::likelyWord(QTest::currentDataTag(), words)), "likely");
}

TEST_CLASS(TestCommonNearestWord)
#include "test_nearest_word.moc"
