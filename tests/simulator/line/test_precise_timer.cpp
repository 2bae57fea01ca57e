// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The timer of a paced line: it never fires early, and once only.

#include "simulator/line/precise_timer.h"

#include "simulator/line/line.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>

#include <chrono>

#include <sys/resource.h>

using namespace std::chrono_literals;

namespace {

// Long enough for a timer of a few milliseconds to fire once more than it should; milliseconds.
constexpr int kAWhile = 50;

// As long as it lives no file can be opened.
class NoMoreFiles
{
public:
    NoMoreFiles()
    {
        getrlimit(RLIMIT_NOFILE, &before);
        const rlimit none = {0, before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoMoreFiles() { setrlimit(RLIMIT_NOFILE, &before); }

private:
    Q_DISABLE_COPY(NoMoreFiles)

    rlimit before = {};
};

} // namespace

class TestPreciseTimer : public QObject
{
    Q_OBJECT

private slots:
    void firesOnceAndNotEarly();
    void firesWhenTheTimeHasPassedAlready();
    void aNewStartTakesThePlaceOfTheEarlierOne();
    void stopsBeforeItFires();
    void saysWhenThereIsNoTimer();
};

void TestPreciseTimer::firesOnceAndNotEarly()
{
    sim::PreciseTimer timer;
    QSignalSpy fired(&timer, &sim::PreciseTimer::timeout);
    QElapsedTimer time;
    time.start();
    timer.start(1300us);
    QVERIFY(fired.wait());
    QVERIFY(time.nsecsElapsed() >= 1300 * 1000);
    QTest::qWait(kAWhile);
    QCOMPARE(int(fired.count()), 1);
}

void TestPreciseTimer::firesWhenTheTimeHasPassedAlready()
{
    sim::PreciseTimer timer;
    QSignalSpy fired(&timer, &sim::PreciseTimer::timeout);
    timer.start(sim::Time::zero());
    QVERIFY(fired.wait());
    timer.start(-3s);
    QVERIFY(fired.wait());
    QCOMPARE(int(fired.count()), 2);
}

void TestPreciseTimer::aNewStartTakesThePlaceOfTheEarlierOne()
{
    sim::PreciseTimer timer;
    QSignalSpy fired(&timer, &sim::PreciseTimer::timeout);
    timer.start(1ms);
    timer.start(2s);
    QTest::qWait(kAWhile);
    QCOMPARE(int(fired.count()), 0);
    timer.start(1ms);
    QVERIFY(fired.wait());
}

void TestPreciseTimer::stopsBeforeItFires()
{
    sim::PreciseTimer timer;
    QSignalSpy fired(&timer, &sim::PreciseTimer::timeout);
    timer.start(1ms);
    timer.stop();
    QTest::qWait(kAWhile);
    QCOMPARE(int(fired.count()), 0);
}

void TestPreciseTimer::saysWhenThereIsNoTimer()
{
    // The limit is over when the error is caught: sanitizers open a file to look at it.
    QString reason;
    try {
        const NoMoreFiles limit;
        const sim::PreciseTimer timer;
    } catch (const sim::LineError &error) {
        reason = error.what();
    }
    QVERIFY(reason.startsWith("cannot make a timer: "));
}

QTEST_GUILESS_MAIN(TestPreciseTimer)
#include "test_precise_timer.moc"
