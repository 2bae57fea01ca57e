// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "hex.h"
#include "test_class.h"
#include "tools/diagnostics.h"

#include <QtTest>

#include <cerrno>
#include <climits>

#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

const int kAskTheSystem = -1;

int g_killError = kAskTheSystem; // or what kill() fails with, 0 for its success
pid_t g_killPid = INT_MAX;       // what kill() was last asked for
int g_killSignal = INT_MAX;

} // namespace

extern "C" int kill(pid_t pid, int signal) noexcept
{
    g_killPid = pid;
    g_killSignal = signal;
    if (g_killError == kAskTheSystem)
        return static_cast<int>(syscall(SYS_kill, pid, signal));
    errno = g_killError;
    return g_killError == 0 ? 0 : -1;
}

class TestDiagnostics : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void ownProcessIsRunning();
    void processThatNobodyHasIsNotRunning_data();
    void processThatNobodyHasIsNotRunning();
    void processOfSomeoneElseIsRunning();
    void anyOtherFailureMeansNotRunning_data();
    void anyOtherFailureMeansNotRunning();
    void earlierErrorDoesNotCount();
    void ownGroupIsRunningAsProcess0();
    void askingSendsNoSignal();
    void groupsAreAskedForAsTheyAre_data();
    void groupsAreAskedForAsTheyAre();
    void dumpShowsBytesAndText_data();
    void dumpShowsBytesAndText();
    void emptyListOfSizesIsEmpty();
};

void TestDiagnostics::cleanup()
{
    g_killError = kAskTheSystem;
}

void TestDiagnostics::ownProcessIsRunning()
{
    QVERIFY(ProcessIsRunning(getpid()));
}

void TestDiagnostics::processThatNobodyHasIsNotRunning_data()
{
    const qlonglong self = getpid();
    QTest::addColumn<qlonglong>("pid");
    QTest::newRow("above the highest id of Linux") << qlonglong(INT_MAX);
    QTest::newRow("own id in 32 bits") << (Q_INT64_C(1) << 32) + self;
    QTest::newRow("own id in 32 bits, negative") << self - (Q_INT64_C(1) << 32);
    QTest::newRow("highest number") << Q_INT64_C(9223372036854775807);
}

void TestDiagnostics::processThatNobodyHasIsNotRunning()
{
    QFETCH(qlonglong, pid);
    QVERIFY(!ProcessIsRunning(pid));
}

void TestDiagnostics::processOfSomeoneElseIsRunning()
{
    g_killError = EPERM;
    QVERIFY(ProcessIsRunning(1));
}

void TestDiagnostics::anyOtherFailureMeansNotRunning_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("ESRCH") << ESRCH;
    QTest::newRow("EINVAL") << EINVAL;
}

void TestDiagnostics::anyOtherFailureMeansNotRunning()
{
    QFETCH(int, error);
    g_killError = error;
    QVERIFY(!ProcessIsRunning(1));
}

void TestDiagnostics::earlierErrorDoesNotCount()
{
    errno = EPERM;
    QVERIFY(!ProcessIsRunning(INT_MAX));
}

void TestDiagnostics::ownGroupIsRunningAsProcess0()
{
    QVERIFY(ProcessIsRunning(0));
}

// Of kill()'s signals, 0 asks for the process and sends nothing.
void TestDiagnostics::askingSendsNoSignal()
{
    g_killError = 0;
    QVERIFY(ProcessIsRunning(1));
    QCOMPARE(g_killSignal, 0);
}

// To kill(), 0 is the caller's group and -1 is every process.
void TestDiagnostics::groupsAreAskedForAsTheyAre_data()
{
    QTest::addColumn<int>("pid");
    QTest::newRow("0") << 0;
    QTest::newRow("-1") << -1;
    QTest::newRow("lowest") << INT_MIN;
}

void TestDiagnostics::groupsAreAskedForAsTheyAre()
{
    QFETCH(int, pid);
    g_killError = 0;
    QVERIFY(ProcessIsRunning(pid));
    QCOMPARE(int(g_killPid), pid);
    g_killError = EPERM;
    QVERIFY(ProcessIsRunning(pid));
    g_killError = ESRCH;
    QVERIFY(!ProcessIsRunning(pid));
}

void TestDiagnostics::dumpShowsBytesAndText_data()
{
    QTest::addColumn<QString>("array");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *array, const QString &text) {
        QTest::newRow(name) << array << text;
    };
    row("empty", "", "() : ");
    row("lower case, no leading zero", "01ab", QString("(0X1 0Xab ) : ") + QChar(0x01) + QChar(0xAB));
    row("text", "565731", "(0X56 0X57 0X31 ) : VW1");
    row("text ends at a zero byte", "41004200", "(0X41 0X0 0X42 0X0 ) : A");
    row("zero byte first", "0041", "(0X0 0X41 ) : ");
    row("above 127 is Latin-1", "80e4ff",
        QString("(0X80 0Xe4 0Xff ) : ") + QChar(0x80) + QChar(0xE4) + QChar(0xFF));
}

void TestDiagnostics::dumpShowsBytesAndText()
{
    QFETCH(QString, array);
    QFETCH(QString, text);
    QCOMPARE(dumpByteArray(QByteArray::fromHex(array.toLatin1())), text);
}

void TestDiagnostics::emptyListOfSizesIsEmpty()
{
    QCOMPARE(EmptyPackageSizeList(), QList<int>());
}

TEST_CLASS(TestDiagnostics)
#include "test_diagnostics.moc"
