// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Times as users write them.

#include "common/duration.h"
#include "tests/support/test_class.h"

#include <QtTest>

#include <chrono>
#include <string>

using common::Milliseconds;

class TestCommonDuration : public QObject
{
    Q_OBJECT

private slots:
    void timesAreRead_data();
    void timesAreRead();
    void aNumberAloneCountsInThePlainUnit_data();
    void aNumberAloneCountsInThePlainUnit();
    void whatIsNoTimeIsRefused_data();
    void whatIsNoTimeIsRefused();
    void theLargestUnitIsShown_data();
    void theLargestUnitIsShown();
};

void TestCommonDuration::timesAreRead_data()
{
    QTest::addColumn<qint64>("milliseconds");
    const auto row = [](const char *text, qint64 milliseconds) { QTest::newRow(text) << milliseconds; };
    row("0ms", 0);
    row("500ms", 500);
    row("1s", 1000);
    row("1 s", 1000);
    row("1.5s", 1500);
    row("0.001s", 1);
    row("2min", 120000);
    row("0.5min", 30000);
    row("1h", 3600000);
    row("365d", 31536000000);
}

void TestCommonDuration::timesAreRead()
{
    QFETCH(qint64, milliseconds);
    const auto time = common::parseDuration(QTest::currentDataTag(), Milliseconds(7));
    QVERIFY(time.has_value());
    QCOMPARE(qint64(time->count()), milliseconds);
}

void TestCommonDuration::aNumberAloneCountsInThePlainUnit_data()
{
    QTest::addColumn<qint64>("unit");
    QTest::addColumn<qint64>("milliseconds");
    QTest::newRow("500") << qint64(1) << qint64(500);
    QTest::newRow("2") << qint64(1000) << qint64(2000);
    QTest::newRow("0.5") << qint64(60000) << qint64(30000);
    QTest::newRow("0") << qint64(1000) << qint64(0);
}

void TestCommonDuration::aNumberAloneCountsInThePlainUnit()
{
    QFETCH(qint64, unit);
    QFETCH(qint64, milliseconds);
    const auto time = common::parseDuration(QTest::currentDataTag(), Milliseconds(unit));
    QVERIFY(time.has_value());
    QCOMPARE(qint64(time->count()), milliseconds);
}

void TestCommonDuration::whatIsNoTimeIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char *text : {"", "s", "x", "-1s", "+1s", "1e3", "1,5s", "1.s", ".5s", "1S", "1sec", "1s ",
                             " 1s", "1  s", "0x10", "1.5", "0.5ms", "1000000d", "999999999999999h"})
        QTest::newRow(text) << QByteArray(text);
    QTest::newRow("a zero behind it") << QByteArray("1s\0", 3);
    QTest::newRow("many digits") << QByteArray(100000, '1');
}

void TestCommonDuration::whatIsNoTimeIsRefused()
{
    QFETCH(QByteArray, text);
    QVERIFY(!common::parseDuration(text.toStdString(), Milliseconds(1)).has_value());
}

void TestCommonDuration::theLargestUnitIsShown_data()
{
    QTest::addColumn<qint64>("milliseconds");
    const auto row = [](const char *text, qint64 milliseconds) { QTest::newRow(text) << milliseconds; };
    row("0s", 0);
    row("1ms", 1);
    row("4294ms", 4294);
    row("90s", 90000);
    row("10min", 600000);
    row("1h", 3600000);
    row("365d", 31536000000);
}

void TestCommonDuration::theLargestUnitIsShown()
{
    QFETCH(qint64, milliseconds);
    QCOMPARE(common::durationText(Milliseconds(milliseconds)), std::string(QTest::currentDataTag()));
}

TEST_CLASS(TestCommonDuration)
#include "test_duration.moc"
