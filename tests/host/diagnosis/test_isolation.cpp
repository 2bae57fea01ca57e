// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Actions in a process of their own.

#include "host/diagnosis/isolation.h"

#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

#include <csignal>
#include <stdexcept>

#include <unistd.h>

using namespace host;
using namespace std::chrono_literals;

class TestIsolation : public QObject
{
    Q_OBJECT

private slots:
    void theResultComesBackWhole();
    void whatItChangesStaysThere();
    void aCrashIsTold();
    void signalsEndItWhateverTheProgramDoesWithThem_data();
    void signalsEndItWhateverTheProgramDoesWithThem();
    void anEndOfTheProcessIsTold();
    void anExceptionIsNotLetOut();
    void whatTakesTooLongIsGivenUp();
};

void TestIsolation::theResultComesBackWhole()
{
    const IsolatedEnd end = runIsolated([] { return QByteArray(300000, 'x') + "end"; }, 10s);
    QCOMPARE(textOf(end.failure), QString());
    QCOMPARE(int(end.result.size()), 300003);
    QVERIFY(end.result.endsWith("xend"));
}

void TestIsolation::whatItChangesStaysThere()
{
    int number = 1;
    runIsolated(
        [&] {
            number = 2;
            return QByteArray();
        },
        10s);
    QCOMPARE(number, 1);
}

void TestIsolation::aCrashIsTold()
{
    const IsolatedEnd end = runIsolated(
        []() -> QByteArray {
            std::signal(SIGSEGV, SIG_DFL);
            std::raise(SIGSEGV);
            return "not reached";
        },
        10s);
    QCOMPARE(textOf(end.failure), QString("it crashes: Segmentation fault"));
    QCOMPARE(end.result, QByteArray());
}

void TestIsolation::signalsEndItWhateverTheProgramDoesWithThem_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGQUIT") << SIGQUIT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TestIsolation::signalsEndItWhateverTheProgramDoesWithThem()
{
    QFETCH(int, number);
    const auto before = std::signal(number, SIG_IGN);
    const IsolatedEnd end = runIsolated(
        [number]() -> QByteArray {
            std::raise(number);
            return "not reached";
        },
        10s);
    std::signal(number, before);
    QCOMPARE(end.result, QByteArray());
    QVERIFY(textOf(end.failure).startsWith("it crashes: "));
}

void TestIsolation::anEndOfTheProcessIsTold()
{
    QCOMPARE(textOf(runIsolated([]() -> QByteArray { _exit(3); }, 10s).failure),
             QString("it ends the process with 3"));
}

void TestIsolation::anExceptionIsNotLetOut()
{
    const auto throwing = []() -> QByteArray { throw std::runtime_error("odd"); };
    QCOMPARE(textOf(runIsolated(throwing, 10s).failure), QString("it ends the process with 70"));
}

void TestIsolation::whatTakesTooLongIsGivenUp()
{
    const auto hanging = []() -> QByteArray {
        while (true)
            pause();
    };
    QCOMPARE(textOf(runIsolated(hanging, 50ms).failure), QString("it takes too long"));
}

TEST_CLASS(TestIsolation)

#include "test_isolation.moc"
