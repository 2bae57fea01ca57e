// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The table of watched items, cut to the screen's size.

#include "host/watch/table_view.h"

#include "test_class.h"

#include <QtTest>

#include <chrono>

using namespace host;
using std::chrono::seconds;

class TestTableView : public QObject
{
    Q_OBJECT

private slots:
    void columnsStandBelowEachOther();
    void theChangeIsMarkedAndThenAges_data();
    void theChangeIsMarkedAndThenAges();
    void oldValuesStandInParentheses();
    void longValuesLeaveTheErrorRoom();
    void noLineIsWiderThanTheScreen();
    void itemsWithoutARowAreCounted_data();
    void itemsWithoutARowAreCounted();
};

namespace {

const WatchTime kStart;

Watch twoItems()
{
    Watch watch({parseItem("VB100*4"), parseItem("VB20000")});
    watch.items[0].answered("17 34 51 68", kStart);
    watch.items[0].attempts = 7;
    watch.items[1].failed("Invalid address (incorrect variable address)");
    watch.items[1].attempts = 28;
    return watch;
}

} // namespace

void TestTableView::columnsStandBelowEachOther()
{
    QCOMPARE(
        watchTable(twoItems(), kStart, 120, 20),
        QStringList({
            "ADDRESS  VALUE        CHANGED  ATTEMPTS  ERRORS  LAST ERROR",
            "VB100    17 34 51 68  -               7       0",
            "VB20000               -              28       1  Invalid address (incorrect variable address)",
        }));
}

void TestTableView::theChangeIsMarkedAndThenAges_data()
{
    QTest::addColumn<int>("age");
    QTest::addColumn<QString>("text");
    QTest::newRow("just now") << 0 << "0 s";
    QTest::newRow("below a minute") << 59 << "59 s";
    QTest::newRow("a minute") << 60 << "1 min";
    QTest::newRow("below an hour") << 3599 << "59 min";
    QTest::newRow("an hour") << 3600 << "1 h";
    QTest::newRow("days") << 360000 << "100 h";
}

void TestTableView::theChangeIsMarkedAndThenAges()
{
    QFETCH(int, age);
    QFETCH(QString, text);
    Watch watch({parseItem("VB100")});
    watch.items[0].answered("1", kStart);
    watch.items[0].answered("2", kStart);
    const WatchTime now = kStart + seconds(age);
    QCOMPARE(watchTable(watch, now, 80, 20).at(1), QString("VB100    2      *               0       0"));
    watch.items[0].answered("2", kStart);
    QVERIFY(watchTable(watch, now, 80, 20).at(1).startsWith("VB100    2      " + text + ' '));
}

void TestTableView::oldValuesStandInParentheses()
{
    Watch watch = twoItems();
    watch.items[0].failed("packet loss");
    QVERIFY(watchTable(watch, kStart, 120, 20).at(1).startsWith("VB100    (17 34 51 68)  -"));
    watch.items[0].answered("17 34 51 68", kStart);
    QCOMPARE(watchTable(watch, kStart, 120, 20).at(1),
             QString("VB100    17 34 51 68  -               7       1  packet loss"));
}

void TestTableView::longValuesLeaveTheErrorRoom()
{
    Watch watch = twoItems();
    watch.items[0].answered(QString("0 ").repeated(100) + "0", kStart);
    const QStringList lines = watchTable(watch, kStart, 100, 20);
    QCOMPARE(lines.at(1),
             QString("VB100    0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0...  *               7       0"));
    QVERIFY(lines.at(2).endsWith("  Invalid address (inco..."));
    QCOMPARE(lines.at(2).size(), 100);
}

void TestTableView::noLineIsWiderThanTheScreen()
{
    for (int columns = 1; columns < 120; ++columns)
        for (const QString &line : watchTable(twoItems(), kStart, columns, 20))
            QVERIFY2(line.size() <= columns, qPrintable(line));
}

void TestTableView::itemsWithoutARowAreCounted_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("lastLine");
    QTest::newRow("all have one") << 4 << "T3";
    QTest::newRow("two have none") << 3 << "... and 2 more";
    QTest::newRow("none has one") << 2 << "... and 3 more";
    QTest::newRow("not even the head") << 0 << "... and 3 more";
}

void TestTableView::itemsWithoutARowAreCounted()
{
    QFETCH(int, rows);
    const Watch watch({parseItem("T1"), parseItem("T2"), parseItem("T3")});
    const QString last = watchTable(watch, kStart, 80, rows).last();
    QTEST(last.startsWith("...") ? last : last.section(' ', 0, 0), "lastLine");
}

TEST_CLASS(TestTableView)
#include "test_table_view.moc"
