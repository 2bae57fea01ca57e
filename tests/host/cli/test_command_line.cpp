// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the parser hands to the options: texts as the commands take them.

#include "host/cli/command_line.h"

#include "host/base/options.h"
#include "host/cli/common_options.h"

#include <CLI/CLI.hpp>

#include <QtTest>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

using namespace host;

namespace {

// The parser takes words from the last one on.
void parse(CLI::App &app, std::vector<std::string> words)
{
    std::reverse(words.begin(), words.end());
    app.parse(words);
}

} // namespace

class TestCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void aTextIsTakenInUtf8();
    void whatIsNotGivenStaysEmpty();
    void textsAreTakenInTheirOrder();
    void aChoiceIsOneOfItsWords();
    void aTextThatMustBeGivenIsMissed();
    void aPauseThatIsNotGivenIsNone_data();
    void aPauseThatIsNotGivenIsNone();
    void rs485HasWordsForOnAndOff_data();
    void rs485HasWordsForOnAndOff();
    void plainNumbersAreMillisecondsOrSeconds();
    void commonNumbersHaveLimits_data();
    void commonNumbersHaveLimits();
};

void TestCommandLine::aTextIsTakenInUtf8()
{
    CLI::App app;
    std::optional<QString> port;
    QString file;
    addText(app, "--port", port, "DEV", "a port");
    addText(app, "file", file, "FILE", "a file");
    parse(app, {"--port", "/dev/größe", "пресс.csv"});
    QCOMPARE(port.value_or("none"), QString::fromUtf8("/dev/größe"));
    QCOMPARE(file, QString::fromUtf8("пресс.csv"));
}

void TestCommandLine::whatIsNotGivenStaysEmpty()
{
    CLI::App app;
    std::optional<QString> port;
    std::optional<QString> format;
    QStringList items;
    addText(app, "--port", port, "DEV", "a port");
    addChoice(app, "--format", format, {"text", "json"}, "FORM", "a form");
    addTexts(app, "items", items, "ITEM", "items");
    parse(app, {});
    QVERIFY(!port.has_value());
    QVERIFY(!format.has_value());
    QVERIFY(items.isEmpty());
}

void TestCommandLine::textsAreTakenInTheirOrder()
{
    CLI::App app;
    QStringList items;
    addItems(app, items, "items");
    parse(app, {"VB0", "VW10:i16", "VB0"});
    QCOMPARE(items, QStringList({"VB0", "VW10:i16", "VB0"}));
}

void TestCommandLine::aChoiceIsOneOfItsWords()
{
    CLI::App app;
    std::optional<QString> format;
    addChoice(app, "--format", format, {"text", "json"}, "FORM", "a form");
    parse(app, {"--format", "json"});
    QCOMPARE(format.value_or("none"), QString("json"));
    QVERIFY_EXCEPTION_THROWN(parse(app, {"--format", "jsn"}), CLI::ValidationError);
}

void TestCommandLine::aTextThatMustBeGivenIsMissed()
{
    CLI::App app;
    QString file;
    addText(app, "file", file, "FILE", "a file");
    QVERIFY_EXCEPTION_THROWN(parse(app, {}), CLI::RequiredError);
}

void TestCommandLine::aPauseThatIsNotGivenIsNone_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("after");
    QTest::newRow("--rs485") << 0 << 0;
    QTest::newRow("--rs485=before=3") << 3 << 0;
    QTest::newRow("--rs485=after=4") << 0 << 4;
    QTest::newRow("--rs485=after=4,before=3") << 3 << 4;
}

void TestCommandLine::aPauseThatIsNotGivenIsNone()
{
    CLI::App app;
    Options options;
    declareCommonOptions(app, options);
    parse(app, {QTest::currentDataTag()});
    QVERIFY(options.rs485.has_value());
    QTEST(options.rs485->before, "before");
    QTEST(options.rs485->after, "after");
}

void TestCommandLine::rs485HasWordsForOnAndOff_data()
{
    QTest::addColumn<bool>("isOn");
    for (const char *word : {"true", "on", "yes", "1"})
        QTest::newRow(word) << true;
    for (const char *word : {"false", "off", "no", "0"})
        QTest::newRow(word) << false;
}

void TestCommandLine::rs485HasWordsForOnAndOff()
{
    CLI::App app;
    Options options;
    declareCommonOptions(app, options);
    parse(app, {std::string("--rs485=") + QTest::currentDataTag()});
    QTEST(options.rs485.has_value(), "isOn");
}

void TestCommandLine::plainNumbersAreMillisecondsOrSeconds()
{
    CLI::App app;
    Options options;
    declareCommonOptions(app, options);
    parse(app, {"--timeout=3", "--gap=5", "--delay=7", "--wait-lock=9"});
    QCOMPARE(options.timeout->count(), 3);
    QCOMPARE(options.gap->count(), 5);
    QCOMPARE(options.delay->count(), 7);
    QCOMPARE(options.waitLock->count(), 9000);
}

void TestCommandLine::commonNumbersHaveLimits_data()
{
    QTest::addColumn<int>("least");
    QTest::addColumn<int>("most");
    QTest::newRow("--retries") << 0 << 1000;
    QTest::newRow("--station") << 1 << 126;
}

void TestCommandLine::commonNumbersHaveLimits()
{
    QFETCH(int, least);
    QFETCH(int, most);
    const auto take = [](int number) {
        CLI::App app;
        Options options;
        declareCommonOptions(app, options);
        parse(app, {std::string(QTest::currentDataTag()) + "=" + std::to_string(number)});
    };
    take(least);
    take(most);
    QVERIFY_EXCEPTION_THROWN(take(least - 1), CLI::ParseError);
    QVERIFY_EXCEPTION_THROWN(take(most + 1), CLI::ParseError);
}

QTEST_APPLESS_MAIN(TestCommandLine)
#include "test_command_line.moc"
