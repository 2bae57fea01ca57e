// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is known of watched items from poll to poll, and the summary.

#include "host/watch/watched_items.h"

#include "test_class.h"

#include <QtTest>

#include <chrono>

using namespace host;
using std::chrono::hours;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;

class TestWatchedItems : public QObject
{
    Q_OBJECT

private slots:
    void firstAndOtherValuesAreNews();
    void onlyOtherValuesAreAChange();
    void anErrorIsNewsOnce();
    void recoveringIsNews();
    void theLastErrorStays();
    void theSummaryCountsPollsAnswersAndErrors();
    void shortAnswerTimesHaveTenths();
    void rarePollsHaveARate();
    void withoutAnswersThereAreNoAnswerTimes();
    void theSummaryOfNothingDividesByNothing();
};

namespace {

const WatchTime kBeginning;

WatchedItem watchedItem()
{
    return WatchedItem(parseItem("VB100"));
}

} // namespace

void TestWatchedItems::firstAndOtherValuesAreNews()
{
    WatchedItem item = watchedItem();
    QVERIFY(item.answered({"1"}, kBeginning) == WatchNews::Changed);
    QVERIFY(item.answered({"1"}, kBeginning) == WatchNews::None);
    QVERIFY(item.answered({"2"}, kBeginning) == WatchNews::Changed);
    QVERIFY(item.answered({"2"}, kBeginning) == WatchNews::None);
    QCOMPARE(item.values, QStringList({"2"}));
}

void TestWatchedItems::onlyOtherValuesAreAChange()
{
    WatchedItem item = watchedItem();
    item.answered({"1"}, kBeginning + seconds(1));
    QVERIFY(!item.changedAt);
    item.answered({"2"}, kBeginning + seconds(2));
    QVERIFY(item.changedAt == kBeginning + seconds(2));
    item.answered({"2"}, kBeginning + seconds(3));
    QVERIFY(item.changedAt == kBeginning + seconds(2));
}

void TestWatchedItems::anErrorIsNewsOnce()
{
    WatchedItem item = watchedItem();
    QVERIFY(item.failed("plc no response"));
    QVERIFY(!item.failed("plc no response"));
    QVERIFY(item.failed("packet loss"));
    item.answered({"1"}, kBeginning);
    QVERIFY(item.failed("packet loss"));
    QCOMPARE(item.errors, 4);
}

void TestWatchedItems::recoveringIsNews()
{
    WatchedItem item = watchedItem();
    item.answered({"1"}, kBeginning);
    item.failed("packet loss");
    QVERIFY(item.isFailing);
    QVERIFY(item.answered({"1"}, kBeginning) == WatchNews::Recovered);
    QVERIFY(!item.isFailing);
    QVERIFY(item.answered({"1"}, kBeginning) == WatchNews::None);
    item.failed("packet loss");
    QVERIFY(item.answered({"2"}, kBeginning) == WatchNews::Changed);
}

void TestWatchedItems::theLastErrorStays()
{
    WatchedItem item = watchedItem();
    item.answered({"1"}, kBeginning);
    item.failed("packet loss");
    QCOMPARE(item.values, QStringList({"1"}));
    item.answered({"1"}, kBeginning);
    QCOMPARE(item.lastError, QString("packet loss"));
}

void TestWatchedItems::theSummaryCountsPollsAnswersAndErrors()
{
    Watch watch({parseItem("VB100"), parseItem("T37")});
    watch.groups = {{std::chrono::milliseconds(500), 2, 1, milliseconds(45)}};
    watch.time = milliseconds(2500);
    watch.requests = 10;
    watch.values = 300;
    watch.answerTimes.add(milliseconds(20));
    watch.answerTimes.add(milliseconds(25));
    watch.expectedTime = milliseconds(42);
    watch.items[0].attempts = 2;
    watch.items[1].attempts = 8;
    watch.items[1].errors = 1;
    watch.errors = {{"plc no response", 1}, {"packet loss", 2}};
    watch.returns = 2;
    QCOMPARE(watchSummary(watch),
             QStringList({
                 "2 polls, 2 answers: 23 ms on average, 25 ms at most",
                 "10 requests, 300 values; 4 requests and 120 values per second",
                 "answer time: p50 20, p90 25, p99 25, longest 25 ms; the plan expected 21 ms",
                 "VB100: 2 attempts, 0 errors",
                 "T37: 8 attempts, 1 error",
                 "2 times: packet loss",
                 "1 time: plc no response",
                 "1 poll took longer than the interval, by 45 ms at most",
                 "the port was lost and came back 2 times",
             }));
}

void TestWatchedItems::shortAnswerTimesHaveTenths()
{
    const auto longest = [](microseconds time) {
        Watch watch({parseItem("T37")});
        watch.answerTimes.add(time);
        return watchSummary(watch)[1].section("; ", 0, 0).section(", ", -1);
    };
    QCOMPARE(longest(microseconds(940)), QString("longest 0.9 ms"));
    QCOMPARE(longest(microseconds(9940)), QString("longest 9.9 ms"));
    QCOMPARE(longest(microseconds(9960)), QString("longest 10 ms"));
    QCOMPARE(longest(microseconds(10600)), QString("longest 11 ms"));
}

void TestWatchedItems::rarePollsHaveARate()
{
    Watch watch({parseItem("T37")});
    watch.time = hours(1);
    watch.requests = 2;
    watch.values = 1;
    QCOMPARE(watchSummary(watch)[1],
             QString("2 requests, 1 value; 0.000556 requests and 0.000278 values per second"));
}

void TestWatchedItems::withoutAnswersThereAreNoAnswerTimes()
{
    Watch watch({parseItem("T37")});
    watch.time = seconds(2);
    watch.requests = 4;
    QCOMPARE(watchSummary(watch),
             QStringList({"0 polls, no answers", "4 requests, 0 values; 2 requests and 0 values per second",
                          "T37: 0 attempts, 0 errors"}));
}

void TestWatchedItems::theSummaryOfNothingDividesByNothing()
{
    QCOMPARE(watchSummary(Watch({parseItem("T37")})),
             QStringList({"0 polls, no answers", "T37: 0 attempts, 0 errors"}));
    Watch watch({parseItem("T37")});
    watch.time = seconds(2);
    QCOMPARE(watchSummary(watch), QStringList({"0 polls, no answers", "T37: 0 attempts, 0 errors"}));
}

TEST_CLASS(TestWatchedItems)
#include "test_watched_items.moc"
