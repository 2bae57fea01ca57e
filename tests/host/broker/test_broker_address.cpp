// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Where a broker is, and who may connect to it.

#include "host/broker/broker_address.h"
#include "host/broker/credentials.h"
#include "test_class.h"
#include "tests/host/support/refused_text.h"

#include <QtTest>

using namespace host;

class TestBrokerAddress : public QObject
{
    Q_OBJECT

private slots:
    void addressesAreFilledUp_data();
    void addressesAreFilledUp();
    void whatIsNoAddressIsRefused_data();
    void whatIsNoAddressIsRefused();
    void aFileHasUserAndPassword();
    void otherFilesAreRefused_data();
    void otherFilesAreRefused();
};

void TestBrokerAddress::addressesAreFilledUp_data()
{
    QTest::addColumn<QString>("address");
    const auto row = [](const char *text, const char *address) { QTest::newRow(text) << QString(address); };
    row("mqtt://localhost", "mqtt://localhost:1883");
    row("mqtts://broker.example", "mqtts://broker.example:8883");
    row("mqtt://10.0.0.1:21883/", "mqtt://10.0.0.1:21883");
    row("mqtts://[fe80::1%eth0]:1", "mqtts://[fe80::1%eth0]:1");
    row("mqtt://[::1]", "mqtt://[::1]:1883");
}

void TestBrokerAddress::addressesAreFilledUp()
{
    QTEST(parseBrokerAddress(QTest::currentDataTag()).text(), "address");
}

void TestBrokerAddress::whatIsNoAddressIsRefused_data()
{
    addRefusedTexts();
    const QString hint = "write mqtt://HOST or mqtts://HOST, with :PORT if it is not the usual one";
    for (const char *text : {"", "localhost", "http://localhost", "mqtt://", "mqtt:///topic", "mqtt://a b",
                             "mqtt://a:b", "mqtt://a/topic", "mqtt://::1"})
        refused(text, QString("\"%1\" is not the address of a broker").arg(text), hint);
    refused("mqtt://a:0", "the broker's port is 0", "ports are numbers from 1 to 65535");
    refused("mqtt://a:65536", "the broker's port is 65536", "ports are numbers from 1 to 65535");
    for (const char *text : {"mqtt://me@a", "mqtts://me:secret@a:8883"})
        refused(
            text,
            "the broker's address has a user or a password in it, which every user of this machine can see",
            "leave it out, and set S7PPI_MQTT_USER and S7PPI_MQTT_PASSWORD or name a file with "
            "--credentials");
}

void TestBrokerAddress::whatIsNoAddressIsRefused()
{
    compareRefusal([](const QString &text) { parseBrokerAddress(text); });
}

void TestBrokerAddress::aFileHasUserAndPassword()
{
    const Credentials credentials = parseCredentials("file", "# ours\n\npassword = a = b \n user=press\n");
    QCOMPARE(credentials.user, QString("press"));
    QCOMPARE(credentials.password, QString("a = b"));
}

void TestBrokerAddress::otherFilesAreRefused_data()
{
    addRefusedTexts();
    const QString hint = "the file has two lines, user = NAME and password = TEXT";
    refused("user = a\npress:secret", "file:2 names neither user nor password", hint);
    refused("name = a", "file:1 names neither user nor password", hint);
    refused("password = a", "file names no user", hint);
    refused("", "file names no user", hint);
}

void TestBrokerAddress::otherFilesAreRefused()
{
    compareRefusal([](const QString &text) { parseCredentials("file", text); });
}

TEST_CLASS(TestBrokerAddress)
#include "test_broker_address.moc"
