// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Numbers as people read them.

#include "host/text/number_text.h"

#include "test_class.h"

#include <QtTest>

#include <cmath>
#include <limits>

using namespace host;

class TestNumberText : public QObject
{
    Q_OBJECT

private slots:
    void floatsAreAsShortAsTellsThemApart_data();
    void floatsAreAsShortAsTellsThemApart();
    void doublesAreAsShortAsTellsThemApart();
    void placesAreThoseOfTheShortestText_data();
    void placesAreThoseOfTheShortestText();
    void longNumbersHaveFiveDigits();
    void durationsAreAsLongAsNeeded_data();
    void durationsAreAsLongAsNeeded();
    void whatLastedIsToldInWhatIsOver_data();
    void whatLastedIsToldInWhatIsOver();
};

void TestNumberText::floatsAreAsShortAsTellsThemApart_data()
{
    QTest::addColumn<float>("number");
    QTest::addColumn<QString>("text");
    const auto row = [](float number, const char *text) { QTest::newRow(text) << number << QString(text); };
    row(0.0F, "0");
    row(-0.0F, "-0");
    row(0.1F, "0.1");
    row(21.5F, "21.5");
    row(std::nextafter(1.0F, 2.0F), "1.0000001");
    row(1e20F, "1e+20");
    row(std::numeric_limits<float>::infinity(), "inf");
    row(-std::numeric_limits<float>::infinity(), "-inf");
    row(std::numeric_limits<float>::quiet_NaN(), "nan");
}

void TestNumberText::floatsAreAsShortAsTellsThemApart()
{
    QFETCH(float, number);
    QTEST(shortestText(number), "text");
}

void TestNumberText::doublesAreAsShortAsTellsThemApart()
{
    QCOMPARE(shortestText(0.1), QString("0.1"));
    QCOMPARE(shortestText(std::nextafter(1.0, 2.0)), QString("1.0000000000000002"));
    QCOMPARE(shortestText(-0.0), QString("-0"));
    QCOMPARE(shortestText(-std::numeric_limits<double>::infinity()), QString("-inf"));
}

void TestNumberText::placesAreThoseOfTheShortestText_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<int>("places");
    const auto row = [](const char *text, int places) {
        QTest::newRow(text) << QByteArray(text).toDouble() << places;
    };
    row("0", 0);
    row("1", 0);
    row("-15", 0);
    row("1e20", 0);
    row("1250000", 0);
    row("0.1", 1);
    row("-0.25", 2);
    row("12.5", 1);
    row("0.00125", 5);
    row("1e-9", 9);
    row("1e-19", 19);
}

void TestNumberText::placesAreThoseOfTheShortestText()
{
    QFETCH(double, number);
    QTEST(decimalPlaces(number), "places");
    QTEST(decimalPlaces(float(number)), "places");
}

void TestNumberText::longNumbersHaveFiveDigits()
{
    QCOMPARE(shortNumber(1.0 / 3), QString("0.33333"));
    QCOMPARE(shortNumber(-123456.5), QString("-1.2346e+05"));
    QCOMPARE(shortNumber(999999999), QString("999999999"));
    QCOMPARE(shortNumber(1000000000), QString("1e+09"));
}

void TestNumberText::durationsAreAsLongAsNeeded_data()
{
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("text");
    const auto row = [](qint64 milliseconds, const char *text) {
        QTest::newRow(text) << milliseconds << QString(text);
    };
    row(0, "0 s");
    row(1500, "2 s");
    row(59499, "59 s");
    row(59500, "1 min 00 s");
    row(125000, "2 min 05 s");
    row(3599499, "59 min 59 s");
    row(3599500, "1 h 00 min");
    row(12000000, "3 h 20 min");
}

void TestNumberText::durationsAreAsLongAsNeeded()
{
    QFETCH(qint64, milliseconds);
    QTEST(durationText(milliseconds), "text");
}

void TestNumberText::whatLastedIsToldInWhatIsOver_data()
{
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("text");
    const auto row = [](qint64 milliseconds, const char *text) {
        QTest::newRow(text) << milliseconds << QString(text);
    };
    row(0, "0.0 s");
    row(400, "0.4 s");
    row(9940, "9.9 s");
    row(10999, "10 s");
    row(59999, "59 s");
    row(60000, "1 min");
    row(65000, "1 min 5 s");
    row(3599999, "59 min 59 s");
    row(3600000, "1 h 0 min");
    row(3900000, "1 h 5 min");
    row(90000000, "25 h 0 min");
}

void TestNumberText::whatLastedIsToldInWhatIsOver()
{
    QFETCH(qint64, milliseconds);
    QTEST(elapsedText(milliseconds), "text");
}

TEST_CLASS(TestNumberText)
#include "test_number_text.moc"
