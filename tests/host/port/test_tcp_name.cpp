// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The names of serial servers' ports: which are taken, and what is said of the others.

#include "host/port/tcp_name.h"

#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

using namespace host;

namespace {

const char kHint[] =
    " / write tcp:HOST:PORT with the serial server's name or address and the number of its TCP "
    "port, as tcp:192.168.0.5:4001 or tcp:[fd00::5]:4001";

} // namespace

class TestTcpName : public QObject
{
    Q_OBJECT

private slots:
    void hostAndPortAreTaken_data();
    void hostAndPortAreTaken();
    void whatNamesNoPortIsRefused_data();
    void whatNamesNoPortIsRefused();
};

void TestTcpName::hostAndPortAreTaken_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("port");
    const auto row = [](const char *name, const char *host, int port) {
        QTest::newRow(name) << QString(name) << QString(host) << port;
    };
    row("tcp:192.168.0.5:4001", "192.168.0.5", 4001);
    row("tcp:gateway:1", "gateway", 1);
    row("tcp:gateway.hall-2.example.com:65535", "gateway.hall-2.example.com", 65535);
    row("tcp:[::1]:4001", "::1", 4001);
    row("tcp:[fe80::1%eth0]:4001", "fe80::1%eth0", 4001);
    row("tcp:tcp:4001", "tcp", 4001);
}

void TestTcpName::hostAndPortAreTaken()
{
    QFETCH(QString, name);
    const TcpName taken = parseTcpName(name);
    QTEST(taken.host, "host");
    QTEST(int(taken.port), "port");
}

void TestTcpName::whatNamesNoPortIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char *name, const char *reason) {
        QTest::newRow(name) << QString(name) << QString(reason);
    };
    const char *const none = "that names no TCP port of a host";
    const char *const number = "TCP ports have the numbers 1 to 65535";
    const char *const brackets = "an IPv6 address needs brackets";
    row("tcp:", none);
    row("tcp:gateway", none);
    row("tcp:gateway:", none);
    row("tcp::4001", none);
    row("tcp:gateway:http", none);
    row("tcp:gateway:-1", none);
    row("tcp:gateway:4001:5", none);
    row("tcp:gate way:4001", none);
    row("tcp://gateway:4001", none);
    row("tcp:gateway:4001/raw", none);
    row("tcp:[]:4001", " is no IPv6 address");
    row("tcp:[::1]", none);
    row("tcp:gateway:0", number);
    row("tcp:gateway:65536", number);
    row("tcp:gateway:99999", number);
    row("tcp:::1:4001", brackets);
    row("tcp:fd00::5:4001", brackets);
    row("tcp:[gateway]:4001", "gateway is no IPv6 address");
    row("tcp:[192.168.0.5]:4001", "192.168.0.5 is no IPv6 address");
}

void TestTcpName::whatNamesNoPortIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    QCOMPARE(failureOf([&] { parseTcpName(name); }), "2: " + name + ": " + reason + kHint);
}

TEST_CLASS(TestTcpName)
#include "test_tcp_name.moc"
