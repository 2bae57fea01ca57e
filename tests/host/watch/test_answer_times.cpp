// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is kept of answer times, beside a sorted list of all of them.

#include "host/watch/answer_times.h"

#include "test_class.h"

#include <QtTest>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>
#include <vector>

using namespace host;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::minutes;

class TestAnswerTimes : public QObject
{
    Q_OBJECT

private slots:
    void theyHaveMeanAndMaximum();
    void withoutAnswersAllIsZero();
    void oneAnswerIsEveryPercentile();
    void percentilesAreThoseOfASortedListToOnePerCent();
    void theEndsOfTheRangeAreKeptToOnePerCent();
    void noPercentileIsLongerThanTheLongest();
    void timesOutsideTheRangeCountAtItsEnds();
};

namespace {

// At most 1 % off, and a nanosecond that is cut.
bool isNear(WatchDuration time, WatchDuration exact)
{
    return std::abs(double((time - exact).count())) <= 0.01 * double(exact.count()) + 1;
}

// From 0.1 ms to 10 min, short ones as often as long ones.
WatchDuration drawnTime(std::mt19937 &random)
{
    std::uniform_real_distribution<double> exponent(std::log(1e5), std::log(600e9));
    return std::chrono::nanoseconds(qint64(std::exp(exponent(random))));
}

// The least time that so many per cent do not exceed.
WatchDuration percentileOf(const std::vector<WatchDuration> &sorted, int percent)
{
    size_t rank = 1;
    while (rank * 100 < size_t(percent) * sorted.size())
        ++rank;
    return sorted[rank - 1];
}

} // namespace

void TestAnswerTimes::theyHaveMeanAndMaximum()
{
    AnswerTimes times;
    times.add(milliseconds(10));
    times.add(milliseconds(40));
    times.add(milliseconds(10));
    QCOMPARE(times.count(), 3);
    QVERIFY(times.mean() == milliseconds(20));
    QVERIFY(times.longest() == milliseconds(40));
}

void TestAnswerTimes::withoutAnswersAllIsZero()
{
    const AnswerTimes times;
    QCOMPARE(times.count(), 0);
    QVERIFY(times.mean() == WatchDuration());
    QVERIFY(times.longest() == WatchDuration());
    QVERIFY(times.percentile(50) == WatchDuration());
    QVERIFY(times.percentile(100) == WatchDuration());
}

void TestAnswerTimes::oneAnswerIsEveryPercentile()
{
    AnswerTimes times;
    times.add(milliseconds(25));
    for (const double percent : {0.0, 0.1, 50.0, 99.9, 100.0})
        QVERIFY(isNear(times.percentile(percent), milliseconds(25)));
}

void TestAnswerTimes::percentilesAreThoseOfASortedListToOnePerCent()
{
    std::mt19937 random(1);
    for (int list = 0; list < 200; ++list) {
        AnswerTimes times;
        std::vector<WatchDuration> sorted;
        const int count = std::uniform_int_distribution<int>(1, 1000)(random);
        for (int i = 0; i < count; ++i) {
            sorted.push_back(drawnTime(random));
            times.add(sorted.back());
        }
        std::sort(sorted.begin(), sorted.end());
        for (int percent = 0; percent <= 100; ++percent) {
            const WatchDuration exact = percentileOf(sorted, percent);
            const WatchDuration kept = times.percentile(percent);
            QVERIFY2(isNear(kept, exact), qPrintable(QString("%1 % of %2: %3 ns, and exactly %4 ns")
                                                         .arg(percent)
                                                         .arg(count)
                                                         .arg(kept.count())
                                                         .arg(exact.count())));
        }
    }
}

void TestAnswerTimes::theEndsOfTheRangeAreKeptToOnePerCent()
{
    AnswerTimes times;
    times.add(microseconds(100));
    times.add(minutes(10));
    QVERIFY(isNear(times.percentile(50), microseconds(100)));
    QVERIFY(isNear(times.percentile(100), minutes(10)));
}

void TestAnswerTimes::noPercentileIsLongerThanTheLongest()
{
    std::mt19937 random(2);
    for (int i = 0; i < 1000; ++i) {
        AnswerTimes times;
        times.add(drawnTime(random));
        QVERIFY(times.percentile(99) <= times.longest());
    }
}

void TestAnswerTimes::timesOutsideTheRangeCountAtItsEnds()
{
    AnswerTimes times;
    times.add(WatchDuration());
    times.add(minutes(600));
    QCOMPARE(times.count(), 2);
    QVERIFY(isNear(times.percentile(50), microseconds(100)));
    QVERIFY(isNear(times.percentile(99), minutes(10)));
    QVERIFY(times.longest() == minutes(600));
}

TEST_CLASS(TestAnswerTimes)
#include "test_answer_times.moc"
