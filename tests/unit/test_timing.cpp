// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Pauses are written down by the program's own nanosleep. The clocks stand still only for the thread that
// tests and only during the tested call: Qt Test watches its own tests by the clock.

#include "fake_sleep.h"
#include "test_class.h"
#include "tools/timing.h"

#include <QtTest>

#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

thread_local bool t_clocksStand = false;
timespec g_sinceBoot;
timespec g_wallClock;

timespec timeOf(time_t seconds, long nanoseconds)
{
    timespec time;
    time.tv_sec = seconds;
    time.tv_nsec = nanoseconds;
    return time;
}

qint64 millisecondsWith(const timespec &sinceBoot, const timespec &wallClock)
{
    g_sinceBoot = sinceBoot;
    g_wallClock = wallClock;
    t_clocksStand = true;
    const qint64 milliseconds = CurrentMSecsSinceBoot();
    t_clocksStand = false;
    return milliseconds;
}

} // namespace

extern "C" int clock_gettime(clockid_t clock, timespec *now) noexcept
{
    if (!t_clocksStand)
        return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    *now = clock == CLOCK_MONOTONIC ? g_sinceBoot : g_wallClock;
    return 0;
}

class TestTiming : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void sleepAsksForOnePause_data();
    void sleepAsksForOnePause();
    void sleepOfNothingMakesNoCall();
    void sleepGoesOnAfterASignal();
    void sleepEndsAtAnyOtherError();
    void millisecondsAreRoundedDown_data();
    void millisecondsAreRoundedDown();
    void millisecondsNeverGoBackWithTheWallClock();
};

void TestTiming::init()
{
    FakeSleep::reset();
}

void TestTiming::sleepAsksForOnePause_data()
{
    QTest::addColumn<qulonglong>("milliseconds");
    QTest::addColumn<qint64>("nanoseconds");
    QTest::newRow("1 ms") << Q_UINT64_C(1) << Q_INT64_C(1000000);
    QTest::newRow("12 ms") << Q_UINT64_C(12) << Q_INT64_C(12000000);
    QTest::newRow("999 ms") << Q_UINT64_C(999) << Q_INT64_C(999000000);
    QTest::newRow("1000 ms") << Q_UINT64_C(1000) << Q_INT64_C(1000000000);
    QTest::newRow("4294 ms, the longest") << Q_UINT64_C(4294) << Q_INT64_C(4294000000);
    QTest::newRow("4295 ms wrap") << Q_UINT64_C(4295) << Q_INT64_C(32704);
    QTest::newRow("5000 ms wrap") << Q_UINT64_C(5000) << Q_INT64_C(705032704);
    QTest::newRow("-1 ms in 32 bits") << Q_UINT64_C(0xFFFFFFFF) << Q_INT64_C(4293967296);
    QTest::newRow("-1 ms in 64 bits") << Q_UINT64_C(0xFFFFFFFFFFFFFFFF) << Q_INT64_C(4293967296);
    QTest::newRow("1 ms more than 32 bits hold") << Q_UINT64_C(0x100000001) << Q_INT64_C(1000000);
    QTest::newRow("5000 ms above bit 63") << Q_UINT64_C(0x8000000000001388) << Q_INT64_C(705032704);
}

void TestTiming::sleepAsksForOnePause()
{
    QFETCH(qulonglong, milliseconds);
    QFETCH(qint64, nanoseconds);
    HRSleep(static_cast<unsigned long>(milliseconds));
    QCOMPARE(FakeSleep::pauses(), QList<qint64>() << nanoseconds);
}

// 2^26 ms are a multiple of 2^32 ns.
void TestTiming::sleepOfNothingMakesNoCall()
{
    HRSleep(0);
    HRSleep(0x4000000);
    HRSleep(static_cast<unsigned long>(Q_UINT64_C(0x100000000)));
    QVERIFY(FakeSleep::pauses().isEmpty());
}

void TestTiming::sleepGoesOnAfterASignal()
{
    FakeSleep::interruptNext(2);
    HRSleep(1000);
    QCOMPARE(FakeSleep::pauses(), QList<qint64>() << 1000000000 << 500000000 << 250000000);
}

void TestTiming::sleepEndsAtAnyOtherError()
{
    FakeSleep::failNext();
    HRSleep(1000);
    QCOMPARE(FakeSleep::pauses(), QList<qint64>() << 1000000000);
}

void TestTiming::millisecondsAreRoundedDown_data()
{
    QTest::addColumn<qlonglong>("seconds");
    QTest::addColumn<int>("nanoseconds");
    QTest::addColumn<qint64>("milliseconds");
    QTest::newRow("boot") << Q_INT64_C(0) << 0 << Q_INT64_C(0);
    QTest::newRow("below 1 ms") << Q_INT64_C(0) << 999999 << Q_INT64_C(0);
    QTest::newRow("1 ms") << Q_INT64_C(0) << 1000000 << Q_INT64_C(1);
    QTest::newRow("just below 8 s") << Q_INT64_C(7) << 999999999 << Q_INT64_C(7999);
    QTest::newRow("50 days are more than 32 bits") << Q_INT64_C(4320000) << 5000000 << Q_INT64_C(4320000005);
}

void TestTiming::millisecondsAreRoundedDown()
{
    QFETCH(qlonglong, seconds);
    QFETCH(int, nanoseconds);
    QFETCH(qint64, milliseconds);
    QCOMPARE(millisecondsWith(timeOf(static_cast<time_t>(seconds), nanoseconds), timeOf(0, 0)), milliseconds);
}

void TestTiming::millisecondsNeverGoBackWithTheWallClock()
{
    const qint64 before = millisecondsWith(timeOf(100, 0), timeOf(5000, 0));
    QCOMPARE(millisecondsWith(timeOf(100, 2000000), timeOf(0, 0)) - before, qint64(2));
}

TEST_CLASS(TestTiming)
#include "test_timing.moc"
