// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The embedded simulator as a process: started, listened to, stopped. A shell plays its part.

#include "host/driver/simulator_process.h"

#include "tests/host/support/failure_of.h"

#include <QElapsedTimer>
#include <QtTest>

#include <csignal>

#include <sys/time.h>

using namespace host;

namespace {

const char kShell[] = "/bin/sh";

QStringList script(const QString &text)
{
    return {"-c", text};
}

} // namespace

class TestSimulatorProcess : public QObject
{
    Q_OBJECT

private slots:
    void theFirstLineIsThePort();
    void itIsStoppedWithTheObject();
    void itHearsNoSignalOfTheTerminal();
    void aSignalMeanwhileDoesNotEndTheWaiting();
    void aProgramThatEndsAtOnceIsReported();
    void aProgramThatIsNotThereIsReported();
};

void TestSimulatorProcess::theFirstLineIsThePort()
{
    const SimulatorProcess process(kShell, script("echo /dev/pts/77; echo more; exec sleep 100"));
    QCOMPARE(process.portName(), QString("/dev/pts/77"));
}

void TestSimulatorProcess::itIsStoppedWithTheObject()
{
    pid_t id = 0;
    {
        const SimulatorProcess process(kShell, script("echo $$; exec sleep 100"));
        id = process.portName().toInt();
        QVERIFY(id > 0);
        QCOMPARE(kill(id, 0), 0);
    }
    QCOMPARE(kill(id, 0), -1);
}

void TestSimulatorProcess::itHearsNoSignalOfTheTerminal()
{
    const SimulatorProcess process(kShell, script("echo $$; exec sleep 100"));
    const pid_t id = process.portName().toInt();
    QVERIFY(id > 0);
    QCOMPARE(getpgid(id), id);
    QVERIFY(getpgid(id) != getpgrp());
}

// An alarm every 5 ms cuts short what waits.
void TestSimulatorProcess::aSignalMeanwhileDoesNotEndTheWaiting()
{
    struct sigaction noted = {};
    noted.sa_handler = [](int) {};
    QCOMPARE(sigaction(SIGALRM, &noted, nullptr), 0);
    const itimerval often = {{0, 5000}, {0, 5000}};
    const itimerval never = {};
    QCOMPARE(setitimer(ITIMER_REAL, &often, nullptr), 0);
    const QString failure = failureOf([] {
        const SimulatorProcess process(kShell, script("sleep 0.3; echo /dev/pts/77; exec sleep 100"));
        QCOMPARE(process.portName(), QString("/dev/pts/77"));
    });
    setitimer(ITIMER_REAL, &never, nullptr);
    QCOMPARE(failure, QString());
}

void TestSimulatorProcess::aProgramThatEndsAtOnceIsReported()
{
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(failureOf([] { SimulatorProcess(kShell, script("exit 3")); }).section(" / ", 0, 0),
             QString("3: the simulator /bin/sh does not start"));
    QVERIFY(timer.elapsed() < 4000);
}

void TestSimulatorProcess::aProgramThatIsNotThereIsReported()
{
    QCOMPARE(failureOf([] { SimulatorProcess("/no/such/program", {}); }).section(" / ", 0, 0),
             QString("3: the simulator /no/such/program does not start"));
}

QTEST_GUILESS_MAIN(TestSimulatorProcess)
#include "test_simulator_process.moc"
