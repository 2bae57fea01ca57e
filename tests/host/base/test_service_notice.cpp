// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a service tells its manager, read from the manager's socket.

#include "host/base/service_notice.h"

#include "test_class.h"

#include <QByteArray>
#include <QTemporaryDir>
#include <QtTest>

#include <chrono>
#include <cstddef>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace host;
using std::chrono::milliseconds;

namespace {

// A name ends in a zero byte.
constexpr int kLongestName = int(sizeof sockaddr_un().sun_path) - 1;

// A manager that listens at a name of the file system, or behind an @ at one without a file.
class Manager
{
public:
    explicit Manager(const QByteArray &name) : handle(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, name.constData(), size_t(name.size()));
        if (name.startsWith('@'))
            address.sun_path[0] = '\0';
        isBound = bind(handle, reinterpret_cast<const sockaddr *>(&address),
                       socklen_t(offsetof(sockaddr_un, sun_path)) + socklen_t(name.size())) == 0;
        qputenv("NOTIFY_SOCKET", name);
    }
    ~Manager() { close(handle); }

    bool listens() const { return isBound; }

    // All that came since the last call.
    QByteArray told() const
    {
        QByteArray text;
        char datagram[1000];
        ssize_t size;
        while ((size = recv(handle, datagram, sizeof datagram, MSG_DONTWAIT)) >= 0)
            text.append(datagram, int(size));
        return text;
    }

private:
    Q_DISABLE_COPY(Manager)

    int handle;
    bool isBound = false;
};

} // namespace

class TestServiceNotice : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void aServiceTellsItsBeginningOnceAndItsEnd_data();
    void aServiceTellsItsBeginningOnceAndItsEnd();
    void aNameThatIsTooLongIsNone();
    void withoutAWatchdogNoSignOfLifeIsGiven();
    void signsOfLifeAreNoMoreThanTheWatchdogNeeds();
    void signsOfLifeComeAgainWithinTheWatchdogsTime();
    void theWatchdogOfAnotherProcessIsNotFed();
    void aWatchdogIsMadeToWaitForLongSteps();
    void aStatusIsOneLineAndToldWhenItChanges();
    void whatIsStartedFromHereHasNothingToTell();
    void withoutAManagerNothingHappens_data();
    void withoutAManagerNothingHappens();

private:
    const QTemporaryDir directory;
    QByteArray place = directory.filePath("notify").toLocal8Bit();
};

void TestServiceNotice::cleanup()
{
    qunsetenv("NOTIFY_SOCKET");
    unlink(place.constData());
}

void TestServiceNotice::aServiceTellsItsBeginningOnceAndItsEnd_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("a file") << place;
    QTest::newRow("without a file") << QByteArray("@s7ppi-test-" + QByteArray::number(getpid()));
    QTest::newRow("the shortest name") << QByteArray("@\x03");
    QTest::newRow("the longest name") << QByteArray("@s7ppi-test-").leftJustified(kLongestName, 'x');
}

void TestServiceNotice::aServiceTellsItsBeginningOnceAndItsEnd()
{
    QFETCH(QByteArray, name);
    const Manager manager(name);
    QVERIFY(manager.listens());
    qputenv("WATCHDOG_USEC", "60000000");
    ServiceNotice service;
    QCOMPARE(manager.told(), QByteArray());
    service.ready();
    service.ready();
    QCOMPARE(manager.told(), QByteArray("READY=1\n"));
    service.stopping();
    QCOMPARE(manager.told(), QByteArray("STOPPING=1\n"));
    service.alive();
    QVERIFY(!service.wantsStatus());
    QCOMPARE(manager.told(), QByteArray());
}

void TestServiceNotice::aNameThatIsTooLongIsNone()
{
    const Manager manager(QByteArray("@s7ppi-test-").leftJustified(kLongestName + 1, 'x'));
    QVERIFY(manager.listens());
    ServiceNotice().ready();
    QCOMPARE(manager.told(), QByteArray());
}

void TestServiceNotice::withoutAWatchdogNoSignOfLifeIsGiven()
{
    const Manager manager(place);
    ServiceNotice service;
    service.alive();
    service.allow(milliseconds(1000));
    QCOMPARE(manager.told(), QByteArray());
}

void TestServiceNotice::signsOfLifeAreNoMoreThanTheWatchdogNeeds()
{
    const Manager manager(place);
    qputenv("WATCHDOG_USEC", "3600000000");
    ServiceNotice service;
    for (int i = 0; i < 3; ++i)
        service.alive();
    QCOMPARE(manager.told(), QByteArray("WATCHDOG=1\n"));
}

void TestServiceNotice::signsOfLifeComeAgainWithinTheWatchdogsTime()
{
    const Manager manager(place);
    qputenv("WATCHDOG_USEC", "40000");
    ServiceNotice service;
    service.alive();
    QTest::qSleep(20);
    service.alive();
    QCOMPARE(manager.told(), QByteArray("WATCHDOG=1\nWATCHDOG=1\n"));
}

void TestServiceNotice::theWatchdogOfAnotherProcessIsNotFed()
{
    const Manager manager(place);
    qputenv("WATCHDOG_USEC", "3600000000");
    qputenv("WATCHDOG_PID", QByteArray::number(getpid()));
    ServiceNotice().alive();
    QCOMPARE(manager.told(), QByteArray("WATCHDOG=1\n"));
    qputenv("NOTIFY_SOCKET", place);
    qputenv("WATCHDOG_USEC", "3600000000");
    qputenv("WATCHDOG_PID", QByteArray::number(getpid() + 1));
    ServiceNotice().alive();
    QCOMPARE(manager.told(), QByteArray());
}

void TestServiceNotice::aWatchdogIsMadeToWaitForLongSteps()
{
    const Manager manager(place);
    qputenv("WATCHDOG_USEC", "60000000");
    ServiceNotice service;
    service.allow(milliseconds(30000));
    QCOMPARE(manager.told(), QByteArray());
    service.allow(milliseconds(45000));
    QCOMPARE(manager.told(), QByteArray("WATCHDOG_USEC=90000000\n"));
}

void TestServiceNotice::aStatusIsOneLineAndToldWhenItChanges()
{
    const Manager manager(place);
    ServiceNotice service;
    QVERIFY(service.wantsStatus());
    service.status("12 items;\nREADY=1");
    QVERIFY(!service.wantsStatus());
    service.status("12 items;\nREADY=1");
    QCOMPARE(manager.told(), QByteArray("STATUS=12 items; READY=1\n"));
    service.status("gone");
    QCOMPARE(manager.told(), QByteArray("STATUS=gone\n"));
}

void TestServiceNotice::whatIsStartedFromHereHasNothingToTell()
{
    const Manager manager(place);
    qputenv("WATCHDOG_USEC", "60000000");
    qputenv("WATCHDOG_PID", QByteArray::number(getpid()));
    const ServiceNotice service;
    for (const char *variable : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID"})
        QVERIFY2(!qEnvironmentVariableIsSet(variable), variable);
}

void TestServiceNotice::withoutAManagerNothingHappens_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("none") << QByteArray();
    QTest::newRow("a name that is none") << QByteArray("vsock:2:1234");
    QTest::newRow("a slash") << QByteArray("/");
    QTest::newRow("a name without end") << QByteArray('/' + QByteArray(200, 'x'));
    QTest::newRow("a manager that has ended") << place;
}

void TestServiceNotice::withoutAManagerNothingHappens()
{
    QFETCH(QByteArray, name);
    if (!name.isEmpty())
        qputenv("NOTIFY_SOCKET", name);
    qputenv("WATCHDOG_USEC", "60000000");
    ServiceNotice service;
    service.ready();
    service.alive();
    service.status("alone");
    service.stopping();
    QVERIFY(!qEnvironmentVariableIsSet("NOTIFY_SOCKET"));
}

TEST_CLASS(TestServiceNotice)
#include "test_service_notice.moc"
