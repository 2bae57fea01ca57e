// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Texts from outside on their way to a terminal.

#include "common/terminal_text.h"

#include <QtTest>

class TestTerminalText : public QObject
{
    Q_OBJECT

private slots:
    void whatSteersATerminalIsWrittenOut_data();
    void whatSteersATerminalIsWrittenOut();
    void noControlCharacterIsLeft();
    void keptCharactersStay();
    void aLongQuotationLosesItsMiddle();
    void aLongMessageLosesItsMiddle();
};

void TestTerminalText::whatSteersATerminalIsWrittenOut_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("visible");
    const auto row = [](const char *name, const QString &text, const char *visible) {
        QTest::newRow(name) << text << QString::fromUtf8(visible);
    };
    row("nothing", "", "");
    row("letters", "Boiler 20 %", "Boiler 20 %");
    row("letters beyond ASCII", QString::fromUtf8("Kühlung °C 水 😀"), "Kühlung °C 水 😀");
    row("a backslash", "C:\\x1b", "C:\\x1b");
    row("clear the screen", "\x1b[2J", "\\x1b[2J");
    row("title of the window", "\x1b]0;root\x07", "\\x1b]0;root\\x07");
    row("a line of its own", "a\r\ns7ppi: all is well", "a\\x0d\\x0as7ppi: all is well");
    row("delete", "\x7f", "\\x7f");
    row("the control sequence introducer of eight bits", QString(QChar(0x9B)) + "2J", "\\x9b2J");
    row("from right to left", QString("a") + QChar(0x202E) + "b", "a\\u202eb");
    row("the end of a line in Unicode", QString("a") + QChar(0x2028), "a\\u2028");
    row("no width", QString("a") + QChar(0x200B), "a\\u200b");
    row("half a character", QString("a") + QChar(0xD800), "a\uFFFD");
    row("NUL", QString("a") + QChar(0) + 'b', "a\\x00b");
}

void TestTerminalText::whatSteersATerminalIsWrittenOut()
{
    QFETCH(QString, text);
    QTEST(common::visibleText(text), "visible");
}

void TestTerminalText::noControlCharacterIsLeft()
{
    for (int code = 0; code < 0xA0; ++code) {
        const QString visible = common::visibleText(QString(QChar(code)));
        const bool isControl = code < 0x20 || code >= 0x7F;
        QCOMPARE(int(visible.size()), isControl ? 4 : 1);
        QVERIFY(visible.at(0).isPrint());
    }
}

void TestTerminalText::keptCharactersStay()
{
    QCOMPARE(common::visibleText("a\tb\n\x1b", "\n\t"), QString("a\tb\n\\x1b"));
}

void TestTerminalText::aLongQuotationLosesItsMiddle()
{
    const QString begin(40, 'a'), end(40, 'b');
    QCOMPARE(common::messageText('"' + begin + QString(100000, 'x') + end + "\" is no number"),
             '"' + begin + " ... " + end + "\" is no number");
    const QString whole = '"' + begin + end + "\" is no number";
    QCOMPARE(common::messageText(whole), whole);
}

void TestTerminalText::aLongMessageLosesItsMiddle()
{
    const QString begin(500, 'a'), end(500, 'b');
    QCOMPARE(common::messageText(begin + QString(100000, 'x') + end), begin + " ... " + end);
    QCOMPARE(common::messageText(begin + end), begin + end);
    QCOMPARE(common::messageText("two\nlines"), QString("two\\x0alines"));
}

QTEST_APPLESS_MAIN(TestTerminalText)
#include "test_terminal_text.moc"
