// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Round numbers and times beside the picture of a recording.

#include "host/recording/axis.h"

#include "test_class.h"

#include <QDateTime>
#include <QtTest>

#include <cmath>
#include <vector>

using namespace host;

class TestTicks : public QObject
{
    Q_OBJECT

private slots:
    void numbersAreRound_data();
    void numbersAreRound();
    void numbersStandWhereTheirValuesAre();
    void theStepGrowsWithTheTime_data();
    void theStepGrowsWithTheTime();
    void theStepGrowsWithTheMonths_data();
    void theStepGrowsWithTheMonths();
    void timesAreThoseOfTheClocksThere_data();
    void timesAreThoseOfTheClocksThere();
    void daysAreToldAsSoonAsThereAreTwo();
    void timesStandWhereTheyAre();
    void aMomentHasNoTimes();
};

namespace {

constexpr qint64 kMinute = 60 * 1000;
constexpr qint64 kHour = 60 * kMinute;
constexpr qint64 kDay = 24 * kHour;

QString textsOf(const std::vector<AxisTick> &ticks)
{
    QStringList texts;
    for (const AxisTick &tick : ticks)
        texts << tick.text;
    return texts.join(' ');
}

qint64 utc(const char *time)
{
    QDateTime result = QDateTime::fromString(time, "yyyy-MM-dd HH:mm:ss.zzz");
    result.setTimeSpec(Qt::UTC);
    return result.toMSecsSinceEpoch();
}

// Between the first two times from 1970 on.
qint64 stepOf(qint64 span)
{
    const std::vector<AxisTick> ticks = timeTicks(0, span, 0);
    return ticks.size() < 2 ? -1
                            : qint64(std::llround((ticks.at(1).place - ticks.at(0).place) * double(span)));
}

} // namespace

void TestTicks::numbersAreRound_data()
{
    QTest::addColumn<double>("bottom");
    QTest::addColumn<double>("top");
    QTest::addColumn<bool>("isWhole");
    QTest::addColumn<QString>("texts");
    const auto row = [](double bottom, double top, bool isWhole, const char *texts) {
        QTest::addRow("%g to %g", bottom, top) << bottom << top << isWhole << QString(texts);
    };
    row(0, 10, true, "0 2 4 6 8 10");
    row(0, 1, true, "0 1");
    row(0, 1, false, "0.0 0.2 0.4 0.6 0.8 1.0");
    row(-5, 5, true, "-4 -2 0 2 4");
    row(58.2, 63.9, false, "60 62");
    row(0, 0.001, false, "0.0000 0.0002 0.0004 0.0006 0.0008 0.0010");
    row(0, 9e-6, false, "0.000000 0.000002 0.000004 0.000006 0.000008");
    row(0, 1e-6, false, "0 2e-07 4e-07 6e-07 8e-07 1e-06"); // more than six decimals
    row(999999990, 1000000000, true, "999999990 999999992 999999994 999999996 999999998 1000000000");
    row(1e12, 1e12 + 10, true,
        "1000000000000 1000000000002 1000000000004 1000000000006 1000000000008 1000000000010");
    row(-1e38, 1e38, false, "-1e+38 -5e+37 0 5e+37 1e+38");
}

void TestTicks::numbersAreRound()
{
    QFETCH(double, bottom);
    QFETCH(double, top);
    QFETCH(bool, isWhole);
    QFETCH(QString, texts);
    QCOMPARE(textsOf(numberTicks(bottom, top, isWhole)), texts);
}

void TestTicks::numbersStandWhereTheirValuesAre()
{
    const std::vector<AxisTick> ticks = numberTicks(-5, 5, true);
    QCOMPARE(ticks.front().place, 0.1);
    QCOMPARE(ticks.at(2).place, 0.5);
    QCOMPARE(ticks.back().place, 0.9);
}

void TestTicks::theStepGrowsWithTheTime_data()
{
    QTest::addColumn<qint64>("longest"); // time with this step, in milliseconds
    QTest::addColumn<qint64>("step");
    const auto row = [](qint64 longest, qint64 step) {
        QTest::addRow("%lld ms", static_cast<long long>(step)) << longest << step;
    };
    row(3, 1);
    row(7, 2);
    row(19, 5);
    row(39, 10);
    row(79, 20);
    row(199, 50);
    row(399, 100);
    row(799, 200);
    row(1999, 500);
    row(3999, 1000);
    row(7999, 2000);
    row(19999, 5000);
    row(39999, 10000);
    row(59999, 15000);
    row(79999, 20000);
    row(119999, 30000);
    row(6 * kMinute - 1, kMinute);
    row(12 * kMinute - 1, 2 * kMinute);
    row(30 * kMinute - 1, 5 * kMinute);
    row(60 * kMinute - 1, 10 * kMinute);
    row(90 * kMinute - 1, 15 * kMinute);
    row(2 * kHour - 1, 20 * kMinute);
    row(3 * kHour - 1, 30 * kMinute);
    row(6 * kHour - 1, kHour);
    row(12 * kHour - 1, 2 * kHour);
    row(18 * kHour - 1, 3 * kHour);
    row(36 * kHour - 1, 6 * kHour);
    row(3 * kDay - 1, 12 * kHour);
    row(6 * kDay - 1, kDay);
    row(12 * kDay - 1, 2 * kDay);
    row(30 * kDay - 1, 5 * kDay);
    row(60 * kDay - 1, 10 * kDay);
    row(120 * kDay - 1, 20 * kDay);
}

void TestTicks::theStepGrowsWithTheTime()
{
    QFETCH(qint64, longest);
    QFETCH(qint64, step);
    QCOMPARE(stepOf(longest), step);
    QVERIFY(stepOf(longest + 1) > step);
}

// A month counts as 30 days.
void TestTicks::theStepGrowsWithTheMonths_data()
{
    QTest::addColumn<int>("days"); // from which on the step is the next
    QTest::addColumn<QString>("second");
    QTest::addColumn<QString>("next");
    const auto row = [](int days, const char *second, const char *next) {
        QTest::addRow("%d days", days) << days << QString(second) << QString(next);
    };
    row(180, "1970-02", "1970-03");
    row(360, "1970-03", "1970-04");
    row(540, "1970-04", "1970-07");
    row(1080, "1970-07", "1971-01");
    row(2160, "1971-01", "1972-01");
    row(4320, "1972-01", "1975-01");
    row(10800, "1975-01", "1980-01");
    row(21600, "1980-01", "1990-01");
    row(43200, "1990-01", "2020-01");
    row(108000, "2020-01", "2070-01");
    row(216000, "2070-01", "2170-01");
}

void TestTicks::theStepGrowsWithTheMonths()
{
    QFETCH(int, days);
    QFETCH(QString, second);
    QFETCH(QString, next);
    QCOMPARE(timeTicks(0, days * kDay - 1, 0).at(1).text, second);
    QCOMPARE(timeTicks(0, days * kDay, 0).at(1).text, next);
}

void TestTicks::timesAreThoseOfTheClocksThere_data()
{
    QTest::addColumn<QString>("begin"); // by the clocks there
    QTest::addColumn<qint64>("span");
    QTest::addColumn<QString>("texts");
    const auto row = [](const char *begin, qint64 span, const char *texts) {
        QTest::addRow("%lld ms from %s", static_cast<long long>(span), begin)
            << begin << span << QString(texts);
    };
    row("2026-03-05 13:00:01.234", 1000, "00:01.500 00:02.000");
    row("2026-03-05 13:00:01.000", 30000, "13:00:10 13:00:20 13:00:30");
    row("2026-03-05 13:00:00.000", 90000, "13:00:00 13:00:30 13:01:00 13:01:30");
    row("2026-03-05 13:07:00.000", kHour, "13:15 13:30 13:45 14:00");
    row("2026-03-05 00:00:00.000", 2 * kHour, "00:00 00:30 01:00 01:30 02:00"); // one day
    row("2026-03-05 22:00:00.000", 2 * kHour, "22:00 22:30 23:00 23:30 03-06"); // touches the next
    row("2026-03-05 22:00:00.000", 2 * kHour - 1, "22:00 22:20 22:40 23:00 23:20 23:40");
    row("2026-03-05 22:00:00.000", 6 * kHour, "22:00 03-06 02:00 04:00");
    row("2026-03-05 12:00:00.000", 4 * kDay, "03-06 03-07 03-08 03-09");
    row("2026-01-15 00:00:00.000", 120 * kDay, "2026-02 2026-03 2026-04 2026-05");
    row("2026-01-01 00:00:00.000", 120 * kDay, "2026-01 2026-02 2026-03 2026-04 2026-05");
}

void TestTicks::timesAreThoseOfTheClocksThere()
{
    QFETCH(QString, begin);
    QFETCH(qint64, span);
    QFETCH(QString, texts);
    for (const int ahead : {0, 3600, -5 * 3600 + 1800}) { // seconds, of the clocks there
        const qint64 first = utc(begin.toLatin1().constData()) - ahead * 1000;
        QCOMPARE(textsOf(timeTicks(first, first + span, ahead)), texts);
    }
}

void TestTicks::daysAreToldAsSoonAsThereAreTwo()
{
    const auto tellsDays = [](qint64 begin, qint64 end) {
        return textsOf(timeTicks(begin, end, 0)).contains('-');
    };
    QVERIFY(!tellsDays(kDay, kDay + 2000));
    QVERIFY(tellsDays(kDay - 1, kDay + 2000));
    QVERIFY(!tellsDays(kDay - 2000, kDay - 1));
    QVERIFY(tellsDays(kDay - 2000, kDay));
}

void TestTicks::timesStandWhereTheyAre()
{
    const qint64 begin = utc("2026-03-05 13:07:30.000");
    const std::vector<AxisTick> ticks = timeTicks(begin, begin + kHour, 0);
    QCOMPARE(ticks.front().text, QString("13:15"));
    QCOMPARE(ticks.front().place, 0.125);
    QCOMPARE(ticks.back().place, 0.875);
    const qint64 january = utc("2026-01-11 00:00:00.000");
    const std::vector<AxisTick> months = timeTicks(january, january + 150 * kDay, 0);
    QCOMPARE(months.front().text, QString("2026-02"));
    QCOMPARE(months.front().place, 21.0 / 150);
}

void TestTicks::aMomentHasNoTimes()
{
    QVERIFY(timeTicks(5000, 5000, 0).empty());
    QVERIFY(timeTicks(5000, 4999, 0).empty());
    QCOMPARE(int(timeTicks(5000, 5001, 0).size()), 2);
}

TEST_CLASS(TestTicks)
#include "test_ticks.moc"
