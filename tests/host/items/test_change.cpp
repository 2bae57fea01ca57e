// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Values and bytes before a write and after it.

#include "host/items/change.h"

#include "hex.h"
#include "host/items/assignment.h"
#include "host/items/memory_range.h"
#include "test_class.h"

#include <QtTest>

using namespace host;

namespace {

QStringList linesOf(const ChangeTable &table)
{
    QStringList lines;
    for (const QStringList &row : table.rows)
        lines << row.join(" | ");
    return lines << QString("%1 of %2").arg(table.changed).arg(table.count);
}

} // namespace

class TestChange : public QObject
{
    Q_OBJECT

private slots:
    void valuesStandSideBySide_data();
    void valuesStandSideBySide();
    void tagsAreShownAsPeopleSeeThem();
    void neighboursThatChangeHaveOneRow_data();
    void neighboursThatChangeHaveOneRow();
};

void TestChange::valuesStandSideBySide_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char *assignment, const char *before, const QStringList &lines) {
        QTest::newRow(assignment) << before << lines;
    };
    row("VB100=17", "12", {"VB100 | 18 | -> 17", "1 of 1"});
    row("VB100=17", "11", {"VB100 | 17 | unchanged", "0 of 1"});
    row("VW10@3:i16=-1", "0000", {"VW10@3 | 0 | -> -1", "1 of 1"});
    row("VB100=1,2,3,4", "01090308",
        {"VB101 | 9 | -> 2", "VB103 | 8 | -> 4", "VB100 | 2 of 4 values | unchanged", "2 of 4"});
    row("V10.7=1,0", "0100", {"V10.7 | 2 of 2 values | unchanged", "0 of 2"});
    row("VB0:str=ab", "6100", {"VB0 | \"a\\x00\" | -> \"ab\"", "1 of 1"});
    row("VW0:bcd=12,34", "0012000f", {"VW2 | 0x000f | -> 34", "VW0 | 1 of 2 values | unchanged", "1 of 2"});
    row("VB0:string*2=ab", "096263", {"VB0 | 0x09 0x62 0x63 | -> \"ab\"", "1 of 1"});
    row("VD0:f32=0", "80000000", {"VD0 | -0 | -> 0", "1 of 1"});
}

void TestChange::valuesStandSideBySide()
{
    QFETCH(QString, before);
    const Assignment assignment = parseAssignment(QTest::currentDataTag());
    ChangeTable table;
    addChanges(table, changesOf(assignment.tag, bytes(qPrintable(before)), assignment.data), assignment.tag);
    QTEST(linesOf(table), "lines");
}

void TestChange::tagsAreShownAsPeopleSeeThem()
{
    Tag boiler(parseItem("VW100:i16@3"));
    boiler.name = "Boiler";
    boiler.scaling = {0.1, -40};
    boiler.unit = QString::fromUtf8("°C");
    Tag levels(parseItem("VW10*2"));
    levels.name = "Levels";
    ChangeTable table;
    addChanges(table, changesOf(boiler, bytes("1122"), bytes("0267")), boiler);
    addChanges(table, changesOf(levels, bytes("00010002"), bytes("00010003")), levels);
    QCOMPARE(linesOf(table),
             QStringList({QString::fromUtf8("Boiler@3 | 398.6 °C | -> 21.5 °C"), "Levels[1] | 2 | -> 3",
                          "Levels | 1 of 2 values | unchanged", "2 of 3"}));
}

void TestChange::neighboursThatChangeHaveOneRow_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char *range, const char *before, const char *after, const QStringList &lines) {
        QTest::addRow("%s from %s", range, before) << before << after << lines;
    };
    row("VB100..VB103", "11223344", "11223344", {"0 of 4"});
    row("VB100..VB103", "11223344", "00223300", {"VB100 | 11 | -> 00", "VB103 | 44 | -> 00", "2 of 4"});
    row("VB100..VB103", "11223344", "11003344", {"VB101 | 22 | -> 00", "1 of 4"});
    row("VB0..VB9", "ffffffffffffffffffff", "00000000000000000000",
        {"VB0 | ff ff ff ff ff ff ff ff | -> 00 00 00 00 00 00 00 00", "VB8 | ff ff | -> 00 00", "10 of 10"});
    row("VW100..VW104", "112233445566", "112233555567", {"VW102 | 3344 5566 | -> 3355 5567", "2 of 6"});
    row("T3..T4", "00010002", "00010102", {"T4 | 0002 | -> 0102", "1 of 4"});
}

void TestChange::neighboursThatChangeHaveOneRow()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    const Item range = parseRange(QString(QTest::currentDataTag()).section(' ', 0, 0));
    QTEST(linesOf(rangeChanges(range, bytes(qPrintable(before)), bytes(qPrintable(after)))), "lines");
}

TEST_CLASS(TestChange)
#include "test_change.moc"
