// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is known of watched items from poll to poll, and the summary.

#include "host/watch/watched_items.h"

#include "test_class.h"

#include <QtTest>

#include <chrono>

using namespace host;
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
    void answerTimesHaveMeanAndMaximum();
    void theSummaryCountsPollsAnswersAndErrors();
    void theSummaryOfNothingDividesByNothing();
};

namespace {

const WatchTime kStart;

WatchedItem watchedItem()
{
    return WatchedItem(parseItem("VB100"));
}

} // namespace

void TestWatchedItems::firstAndOtherValuesAreNews()
{
    WatchedItem item = watchedItem();
    QVERIFY(item.answered("1", kStart) == WatchNews::Changed);
    QVERIFY(item.answered("1", kStart) == WatchNews::None);
    QVERIFY(item.answered("2", kStart) == WatchNews::Changed);
    QVERIFY(item.answered("2", kStart) == WatchNews::None);
    QCOMPARE(item.values, QString("2"));
}

void TestWatchedItems::onlyOtherValuesAreAChange()
{
    WatchedItem item = watchedItem();
    item.answered("1", kStart + seconds(1));
    QVERIFY(!item.changedAt && !item.hasJustChanged);
    item.answered("2", kStart + seconds(2));
    QVERIFY(item.changedAt == kStart + seconds(2) && item.hasJustChanged);
    item.answered("2", kStart + seconds(3));
    QVERIFY(item.changedAt == kStart + seconds(2) && !item.hasJustChanged);
}

void TestWatchedItems::anErrorIsNewsOnce()
{
    WatchedItem item = watchedItem();
    QVERIFY(item.failed("plc no response"));
    QVERIFY(!item.failed("plc no response"));
    QVERIFY(item.failed("packet loss"));
    item.answered("1", kStart);
    QVERIFY(item.failed("packet loss"));
    QCOMPARE(item.errors, 4);
}

void TestWatchedItems::recoveringIsNews()
{
    WatchedItem item = watchedItem();
    item.answered("1", kStart);
    item.failed("packet loss");
    QVERIFY(item.isFailing);
    QVERIFY(item.answered("1", kStart) == WatchNews::Recovered);
    QVERIFY(!item.isFailing);
    QVERIFY(item.answered("1", kStart) == WatchNews::None);
    item.failed("packet loss");
    QVERIFY(item.answered("2", kStart) == WatchNews::Changed);
}

void TestWatchedItems::theLastErrorStays()
{
    WatchedItem item = watchedItem();
    item.answered("1", kStart);
    item.failed("packet loss");
    QCOMPARE(item.values, QString("1"));
    item.answered("1", kStart);
    QCOMPARE(item.lastError, QString("packet loss"));
}

void TestWatchedItems::answerTimesHaveMeanAndMaximum()
{
    AnswerTimes times;
    times.add(milliseconds(10));
    times.add(milliseconds(40));
    times.add(milliseconds(10));
    QCOMPARE(times.count(), 3);
    QVERIFY(times.mean() == milliseconds(20));
    QVERIFY(times.longest() == milliseconds(40));
}

void TestWatchedItems::theSummaryCountsPollsAnswersAndErrors()
{
    Watch watch({parseItem("VB100"), parseItem("T37")});
    watch.polls = 2;
    watch.answerTimes.add(milliseconds(20));
    watch.answerTimes.add(milliseconds(25));
    watch.items[0].attempts = 2;
    watch.items[1].attempts = 8;
    watch.items[1].errors = 1;
    watch.errors = {{"plc no response", 1}, {"packet loss", 2}};
    watch.latePolls = 1;
    watch.returns = 2;
    QCOMPARE(watchSummary(watch), QStringList({
                                      "2 polls, 2 answers: 22 ms on average, 25 ms at most",
                                      "VB100: 2 attempts, 0 errors",
                                      "T37: 8 attempts, 1 error",
                                      "2 times: packet loss",
                                      "1 time: plc no response",
                                      "1 poll took longer than the interval",
                                      "the port was lost and came back 2 times",
                                  }));
}

void TestWatchedItems::theSummaryOfNothingDividesByNothing()
{
    QVERIFY(AnswerTimes().mean() == WatchDuration());
    QCOMPARE(watchSummary(Watch({parseItem("T37")})),
             QStringList({"0 polls, no answers", "T37: 0 attempts, 0 errors"}));
}

TEST_CLASS(TestWatchedItems)
#include "test_watched_items.moc"
