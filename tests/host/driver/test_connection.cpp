// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Items read over a connection, from the embedded simulator with its example memory.

#include "host/driver/connection.h"

#include "hex.h"
#include "host/driver/plan_reader.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

using namespace host;

namespace {

Options simulated()
{
    Options options;
    options.port = "sim";
    options.plugin = PLUGIN_FILE;
    return options;
}

} // namespace

class TestConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void anItemIsReadInTheControllersOrder_data();
    void anItemIsReadInTheControllersOrder();
    void aLongItemTakesSeveralRequests();
    void aRefusalIsTheItemsFailure();
    void plansFollowTheAnswerTime();
};

void TestConnection::initTestCase()
{
    qputenv("PATH", PROGRAM_DIR);
}

void TestConnection::anItemIsReadInTheControllersOrder_data()
{
    QTest::addColumn<QString>("data");
    const auto row = [](const char *item, const char *data) { QTest::newRow(item) << QString(data); };
    row("VB100*4", "11223344");
    row("VW100*2", "11223344");
    row("VD100", "11223344");
    row("V100.0*5", "0100000001");
    row("V100.4*9", "010000000001000000");
}

void TestConnection::anItemIsReadInTheControllersOrder()
{
    Connection connection(simulated());
    QTEST(QString(hex(readItem(connection, parseItem(QTest::currentDataTag())))), "data");
}

void TestConnection::aLongItemTakesSeveralRequests()
{
    Connection connection(simulated());
    QCOMPARE(int(readItem(connection, parseItem("VB0*500")).size()), 500);
    QCOMPARE(connection.requestCount(), 3);
}

void TestConnection::aRefusalIsTheItemsFailure()
{
    Connection connection(simulated());
    QVERIFY(failureOf([&] { readItem(connection, parseItem("VB60000")); }).startsWith("1: "));
}

// The simulator answers at once, which at 4800 baud makes requests cheaper by a nineteenth. Of the first
// answer nobody can tell how much of its time was the look whether the line is silent.
void TestConnection::plansFollowTheAnswerTime()
{
    Options options = simulated();
    options.baud = 4800;
    Connection connection(options);
    PlanReader reader(connection, {parseItem("VB100")});
    const qint64 expected = reader.cost().request;
    reader.read(0);
    QVERIFY(!reader.begin());
    QCOMPARE(reader.cost().request, expected);
    reader.read(0);
    QVERIFY(reader.cost().request < expected);
    QVERIFY(reader.begin());
    QVERIFY(!reader.begin());
}

QTEST_GUILESS_MAIN(TestConnection)
#include "test_connection.moc"
