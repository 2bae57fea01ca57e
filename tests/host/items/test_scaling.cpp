// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Scaled numbers: the digits they are shown with, and that what is shown, written, gives the raw number back.

#include "host/items/scaling.h"

#include "test_class.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <random>

using namespace host;

namespace {

// Every one of the 65,536 numbers of 16 bits for so many drawn scales, and a drawn share of them for the
// rest.
constexpr int kWholeScales = 5;
constexpr int kScales = 1000;
constexpr int kShare = 128;
constexpr int kNumbers = 65536;

// Scales and offsets as people write them: some digits at some decimal place.
Scaling drawn(std::mt19937 &random)
{
    std::uniform_int_distribution<int> digits(1, 999999);
    std::uniform_int_distribution<int> places(0, 9);
    std::bernoulli_distribution coin;
    const auto number = [&] {
        const QString text =
            QString("%1%2e-%3").arg(coin(random) ? "-" : "").arg(digits(random)).arg(places(random));
        return text.toDouble();
    };
    return {number(), coin(random) ? number() : 0};
}

QString writtenBack(const Scaling &scaling, qint64 raw)
{
    return unscaledWholeText(scaling, scaledText(scaling, raw).toDouble());
}

} // namespace

class TestScaling : public QObject
{
    Q_OBJECT

private slots:
    void aNumberHasTheDigitsOfWhatItIsMadeOf_data();
    void aNumberHasTheDigitsOfWhatItIsMadeOf();
    void aFloatHasItsOwnDigitsToo_data();
    void aFloatHasItsOwnDigitsToo();
    void wideNumbersHaveTheDigitsOfADouble();
    void aDoubleIsWrittenAsItWas();
    void whatIsShownIsWrittenAsItWas();
    void aFloatIsWrittenAsItWas();
};

void TestScaling::aNumberHasTheDigitsOfWhatItIsMadeOf_data()
{
    QTest::addColumn<qint64>("raw");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("offset");
    QTest::addColumn<QString>("text");
    const auto row = [](qint64 raw, double scale, double offset, const char *text) {
        QTest::addRow("%lld * %g + %g", raw, scale, offset) << raw << scale << offset << QString(text);
    };
    row(144, 0.1, -10, "4.4");
    row(300, 0.1, -10, "20");
    row(3, 0.1, 0, "0.3");
    row(-3, 0.1, 0.25, "-0.05");
    row(27648, 0.01, -273.15, "3.33");
    row(1, 1e-7, 0, "1e-07");
    row(1234567, 10, 5, "12345675");
    row(4294967295LL, 0.001, 0, "4294967.295");
    row(1, 1e20, 0, "1e+20");
    row(0, -0.5, 0, "0");
    row(7, 0.333333333333333, 0, "2.33333333333333");
    row(27648, 0.00361689814814815, 0, "100");
}

void TestScaling::aNumberHasTheDigitsOfWhatItIsMadeOf()
{
    QFETCH(qint64, raw);
    QFETCH(double, scale);
    QFETCH(double, offset);
    QTEST(scaledText({scale, offset}, raw), "text");
}

void TestScaling::aFloatHasItsOwnDigitsToo_data()
{
    QTest::addColumn<float>("raw");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("offset");
    QTest::addColumn<QString>("text");
    const auto row = [](float raw, double scale, double offset, const char *text) {
        QTest::addRow("%g * %g + %g", double(raw), scale, offset) << raw << scale << offset << QString(text);
    };
    row(0.1F, 2, 0, "0.2");
    row(0.1F, 0.1, -10, "-9.99");
    row(21.55F, 1, 0.5, "22.05");
    row(1e20F, 10, 0, "1e+21");
    row(1.0000001F, 3, 0, "3.0000003");
    row(std::numeric_limits<float>::infinity(), 2, 1, "inf");
    row(std::numeric_limits<float>::quiet_NaN(), 2, 1, "nan");
}

void TestScaling::aFloatHasItsOwnDigitsToo()
{
    QFETCH(float, raw);
    QFETCH(double, scale);
    QFETCH(double, offset);
    QTEST(scaledText({scale, offset}, raw), "text");
}

void TestScaling::wideNumbersHaveTheDigitsOfADouble()
{
    QCOMPARE(scaledText({0.001, 0}, qint64(9007199254740992)), QString("9007199254740.992"));
    QCOMPARE(scaledText({1, 1}, std::numeric_limits<quint64>::max()), QString("1.8446744073709552e+19"));
    QCOMPARE(scaledText({3, 0}, 0.1), QString("0.3"));
    QCOMPARE(scaledText({60, -10}, 0.123456789012345), QString("-2.5925926592593"));
    QCOMPARE(scaledText({2, 0}, -std::numeric_limits<double>::infinity()), QString("-inf"));
}

void TestScaling::aDoubleIsWrittenAsItWas()
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> anyDouble(-1000, 1000);
    for (int i = 0; i < kScales; ++i) {
        Scaling scaling = drawn(random);
        scaling.offset = 0;
        const double raw = anyDouble(random);
        const double shown = scaledText(scaling, raw).toDouble();
        const double back = unscaledFloatText(scaling, shown).toDouble();
        QVERIFY2(std::abs(back - raw) <= std::abs(raw) * 1e-14, qPrintable(QString::number(raw, 'g', 17)));
    }
}

void TestScaling::whatIsShownIsWrittenAsItWas()
{
    std::mt19937 random(1);
    std::uniform_int_distribution<int> anyNumber(0, kNumbers - 1);
    for (int i = 0; i < kScales; ++i) {
        const Scaling scaling = drawn(random);
        const bool isWhole = i < kWholeScales;
        for (int n = 0; n < (isWhole ? kNumbers : kShare); ++n) {
            const qint64 raw = (isWhole ? n : anyNumber(random)) - kNumbers / 2;
            if (writtenBack(scaling, raw) != QString::number(raw))
                QFAIL(qPrintable(QString("%1 * %2 + %3 is shown as %4")
                                     .arg(raw)
                                     .arg(scaling.scale)
                                     .arg(scaling.offset)
                                     .arg(scaledText(scaling, raw))));
        }
    }
}

void TestScaling::aFloatIsWrittenAsItWas()
{
    std::mt19937 random(2);
    std::uniform_real_distribution<float> anyFloat(-1000, 1000);
    for (int i = 0; i < kScales; ++i) {
        Scaling scaling = drawn(random);
        scaling.offset = 0;
        const float raw = anyFloat(random);
        QCOMPARE(unscaledFloatText(scaling, scaledText(scaling, raw).toDouble()).toFloat(), raw);
    }
}

TEST_CLASS(TestScaling)
#include "test_scaling.moc"
