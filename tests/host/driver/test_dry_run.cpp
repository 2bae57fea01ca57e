// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the real driver would send, without the pauses that it makes before each frame. All pauses of this
// program come to its own clock_nanosleep, which counts them and hands them on.

#include "host/driver/dry_run.h"

#include "hex.h"
#include "host/driver/dry_run_port.h"

#include <QtTest>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>

#include <dlfcn.h>
#include <sys/time.h>

using namespace host;

namespace {

thread_local int t_pauses = 0;

constexpr long kMillisecond = 1000000; // in nanoseconds

} // namespace

extern "C" int clock_nanosleep(clockid_t clock, int flags, const timespec *requested, timespec *remaining)
{
    ++t_pauses;
    using Function = int(clockid_t, int, const timespec *, timespec *);
    void *const address = dlsym(RTLD_NEXT, "clock_nanosleep");
    Function *next = nullptr;
    std::memcpy(&next, &address, sizeof next);
    return next(clock, flags, requested, remaining);
}

namespace {

Options options()
{
    Options options;
    options.plugin = PLUGIN_FILE;
    options.station = 2;
    return options;
}

CommunicatorCommand oneByte()
{
    CommunicatorCommand command;
    command.address = "VB100";
    command.dataType = kBytes;
    command.count = 1;
    return command;
}

// Signals that come every millisecond, until it goes.
class SignalStorm
{
public:
    SignalStorm()
    {
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, &oldAction);
        const itimerval everyMillisecond = {{0, 1000}, {0, 1000}};
        setitimer(ITIMER_REAL, &everyMillisecond, nullptr);
    }
    ~SignalStorm()
    {
        const itimerval never = {};
        setitimer(ITIMER_REAL, &never, nullptr);
        sigaction(SIGALRM, &oldAction, nullptr);
    }

private:
    struct sigaction oldAction = {};
};

} // namespace

class TestDryRun : public QObject
{
    Q_OBJECT

private slots:
    void init() { t_pauses = 0; }
    void aRequestAndThePollBehindIt();
    void nothingIsWaitedFor();
    void theDriverPausesBeforeEachFrameOtherwise();
    void aPauseBehindADryRunIsWholeAgain();
    void aSignalCutsAPauseShortAndTheRestIsTold();
    void aPauseOfNoTimeThatThereIsIsRefused();
};

void TestDryRun::aRequestAndThePollBehindIt()
{
    const QList<QByteArray> frames = DryRun(options()).ofRead(oneByte());
    QCOMPARE(frames.size(), 2);
    QCOMPARE(hex(frames[0]), QString("681b1b6802006c32010000000100"
                                     "0e00000401120a100200010001840003208c16"));
    QCOMPARE(hex(frames[1]), QString("1002005c5e16"));
}

void TestDryRun::nothingIsWaitedFor()
{
    const DryRun dryRun(options());
    for (int i = 0; i < 20; ++i) {
        QCOMPARE(dryRun.ofRead(oneByte()).size(), 2);
        QCOMPARE(dryRun.ofWrite({oneByte(), QByteArray(1, '\0')}).size(), 2);
    }
    QCOMPARE(t_pauses, 0);
}

void TestDryRun::theDriverPausesBeforeEachFrameOtherwise()
{
    const DriverLogPause noLog;
    const Plugin plugin(PLUGIN_FILE);
    DryRunPort port(2, [](const QByteArray &) {});
    plugin.driver().read(&port, oneByte());
    QCOMPARE(t_pauses, 2);
}

void TestDryRun::aPauseBehindADryRunIsWholeAgain()
{
    DryRun(options()).ofRead(oneByte());
    const timespec pause = {0, kMillisecond};
    QCOMPARE(nanosleep(&pause, nullptr), 0);
    QCOMPARE(t_pauses, 1);
}

void TestDryRun::aSignalCutsAPauseShortAndTheRestIsTold()
{
    const timespec minute = {60, 0};
    timespec rest = {};
    errno = 0;
    {
        const SignalStorm signalStorm;
        QCOMPARE(nanosleep(&minute, &rest), -1);
        QCOMPARE(errno, EINTR);
    }
    QVERIFY(rest.tv_sec < 60);
    QVERIFY(rest.tv_sec > 0 || rest.tv_nsec > 0);
}

void TestDryRun::aPauseOfNoTimeThatThereIsIsRefused()
{
    const timespec tooManyNanoseconds = {0, 1000 * kMillisecond};
    errno = 0;
    QCOMPARE(nanosleep(&tooManyNanoseconds, nullptr), -1);
    QCOMPARE(errno, EINVAL);
}

QTEST_GUILESS_MAIN(TestDryRun)
#include "test_dry_run.moc"
