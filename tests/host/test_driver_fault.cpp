// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Every error text of a read and the exit code it leads to.

#include "driver_fault.h"

#include <QtTest>

using namespace host;

class TestDriverFault : public QObject
{
    Q_OBJECT

private slots:
    void everyErrorTextHasItsExitCodeAndAHint_data();
    void everyErrorTextHasItsExitCodeAndAHint();
};

void TestDriverFault::everyErrorTextHasItsExitCodeAndAHint_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("code");
    for (const char *text :
         {"Hardware fault", "Illegal object access", "Invalid address (incorrect variable address)",
          "Data type is not supported", "Object does not exist or length error", "unknow error",
          "no resource", "no service actived", "unknown error", "invalid request to PLC"})
        QTest::newRow(text) << text << 1;
    QTest::newRow("plc no response") << "plc no response" << 4;
    for (const char *text :
         {"invalid response", "invalid response1", "invalid response2", "invalid response9",
          "invalid PLC response", "packet loss", "first NAK packet loss",
          "packet length < minimum second response", "checksum error", "", "something new"})
        QTest::newRow(text) << text << 5;
}

void TestDriverFault::everyErrorTextHasItsExitCodeAndAHint()
{
    QFETCH(QString, text);
    const Failure failure = driverFailure(text);
    QTEST(int(failure.code()), "code");
    QCOMPARE(failure.text(), text);
    QVERIFY(!failure.hint().isEmpty());
}

QTEST_APPLESS_MAIN(TestDriverFault)
#include "test_driver_fault.moc"
