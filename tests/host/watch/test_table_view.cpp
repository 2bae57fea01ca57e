// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The table of watched items, cut to the screen's size.

#include "host/watch/table_view.h"

#include "test_class.h"

#include <QtTest>

#include <chrono>
#include <utility>

using namespace host;
using std::chrono::milliseconds;

class TestTableView : public QObject
{
    Q_OBJECT

private slots:
    void columnsStandBelowEachOther();
    void withoutErrorsThereIsNoColumnForThem();
    void theChangeIsToldInWords_data();
    void theChangeIsToldInWords();
    void oldValuesStandInParentheses();
    void arraysStandEightToALineWithTheirAddresses();
    void everyWidthShowsWhatIsImportant_data();
    void everyWidthShowsWhatIsImportant();
    void anErrorIsWholeBelowItsItem();
    void anErrorWithoutRowsEndsInDots();
    void longNamesLoseTheirMiddle();
    void numbersAreShortenedAndNeverCut();
    void aNumberOrShortTextIsCutWhenNoOtherColumnIsLeft();
    void aColumnIsThereAsSoonAsItHasRoom();
    void arraysHaveAsManyValuesALineAsHaveRoom_data();
    void arraysHaveAsManyValuesALineAsHaveRoom();
    void eightShortValuesAreWorthMoreThanTheTimeOfTheChange();
    void rowsThatAreLeftGoToArraysByTurns();
    void noLineIsWiderThanTheScreen();
    void noTableIsHigherThanTheScreen();
    void itemsWithoutARowAreCounted_data();
    void itemsWithoutARowAreCounted();
    void theTitleGivesWayAndTheMessageIsWrapped();
};

namespace {

const WatchTime kStart;

QStringList many(int count, const QString &value)
{
    QStringList values;
    for (int i = 0; i < count; ++i)
        values << value;
    return values;
}

Watch twoItems()
{
    Watch watch({parseItem("VB100*4"), parseItem("VB20000")});
    watch.items[0].answered({"17", "34", "51", "68"}, kStart);
    watch.items[0].attempts = 7;
    watch.items[1].failed("Invalid address (incorrect variable address)");
    watch.items[1].attempts = 28;
    return watch;
}

// A press: a number, many numbers, a text, and an error.
Watch press()
{
    Tag pressure = parseItem("VD204:f32");
    pressure.name = "Line3.Press.Cylinder12.PressureTransmitter";
    pressure.unit = "bar";
    Watch watch({parseItem("VW200:i16"), pressure, parseItem("VW100*12"), parseItem("VB100:str*12"),
                 parseItem("VB20000")});
    watch.items[0].answered({"-337"}, kStart);
    watch.items[1].answered({"22.363361"}, kStart);
    watch.items[2].answered(QStringList({"4386", "13124"}) + many(10, "0"), kStart);
    watch.items[3].answered({"\"\\x11\\\"3D\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\""}, kStart);
    watch.items[4].failed("Invalid address (incorrect variable address)");
    return watch;
}

} // namespace

void TestTableView::columnsStandBelowEachOther()
{
    QCOMPARE(watchTable(twoItems(), kStart, 120, 20),
             QStringList({
                 "ADDRESS  VALUE        CHANGED     ATTEMPTS  ERRORS  LAST ERROR",
                 "VB100    17 34 51 68  never              7       0",
                 "VB20000                                 28       1  Invalid address (incorrect variable "
                 "address)",
             }));
}

void TestTableView::withoutErrorsThereIsNoColumnForThem()
{
    Watch watch({parseItem("VB100")});
    watch.items[0].answered({"17"}, kStart);
    QCOMPARE(watchTable(watch, kStart, 120, 20),
             QStringList({"ADDRESS  VALUE  CHANGED     ATTEMPTS  ERRORS",
                          "VB100    17     never              0       0"}));
}

void TestTableView::theChangeIsToldInWords_data()
{
    QTest::addColumn<int>("age");
    QTest::addColumn<QString>("text");
    QTest::newRow("with the last answer") << 0 << "just now";
    QTest::newRow("below a second") << 999 << "just now";
    QTest::newRow("a second") << 1000 << "1 s ago";
    QTest::newRow("below a minute") << 59999 << "59 s ago";
    QTest::newRow("a minute") << 60000 << "1 min ago";
    QTest::newRow("below an hour") << 3599000 << "59 min ago";
    QTest::newRow("an hour") << 3600000 << "1 h ago";
    QTest::newRow("days") << 360000000 << "100 h ago";
}

void TestTableView::theChangeIsToldInWords()
{
    QFETCH(int, age);
    QFETCH(QString, text);
    Watch watch({parseItem("VB100")});
    watch.items[0].answered({"1"}, kStart);
    const WatchTime now = kStart + milliseconds(age);
    QVERIFY(watchTable(watch, now, 80, 20).at(1).startsWith("VB100    1      never  "));
    watch.items[0].answered({"2"}, kStart);
    QVERIFY(watchTable(watch, now, 80, 20).at(1).startsWith("VB100    2      " + text + ' '));
    watch.items[0].answered({"2"}, now);
    QVERIFY(watchTable(watch, now, 80, 20).at(1).startsWith("VB100    2      " + text + ' '));
}

void TestTableView::oldValuesStandInParentheses()
{
    Watch watch = twoItems();
    watch.items[0].failed("packet loss");
    QVERIFY(watchTable(watch, kStart, 120, 20).at(1).startsWith("VB100    (17 34 51 68)  never"));
    watch.items[0].answered({"17", "34", "51", "68"}, kStart);
    QCOMPARE(watchTable(watch, kStart, 120, 20).at(1),
             QString("VB100    17 34 51 68  never              7       1  packet loss"));
}

void TestTableView::arraysStandEightToALineWithTheirAddresses()
{
    Watch watch({parseItem("V10.6*18")});
    watch.items[0].answered(many(18, "1"), kStart);
    QCOMPARE(watchTable(watch, kStart, 80, 20),
             QStringList({"ADDRESS  VALUE                CHANGED     ATTEMPTS  ERRORS",
                          "V10.6    1 1 1 1 1 1 1 1      never              0       0",
                          "V11.6    1 1 1 1 1 1 1 1", "V12.6    1 1"}));
    watch.items[0].failed("packet loss");
    QVERIFY(watchTable(watch, kStart, 80, 20).at(3).startsWith("V12.6    (1 1)"));
}

void TestTableView::everyWidthShowsWhatIsImportant_data()
{
    QTest::addColumn<QStringList>("table");
    QTest::newRow("60") << QStringList(
        {"ADDRESS                   VALUE                   CHANGED",
         "VW200                     -337                    never",
         "Line3.Press...ransmitter  22.363361 bar           never",
         "VW100                     4386 13124 0 0          never",
         "VW108                        0     0 0 0", "VW116                        0     0 0 0",
         "VB100                     \"\\x11\\\"3D\\x00\\x00\"...   never", "VB20000",
         "  last error: Invalid address (incorrect variable address)"});
    QTest::newRow("80") << QStringList(
        {"ADDRESS                           VALUE                       CHANGED     ERRORS",
         "VW200                             -337                        never            0",
         "Line3.Press.Cyl...ureTransmitter  22.363361 bar               never            0",
         "VW100                             4386 13124 0 0 0 0 0 0      never            0",
         "VW116                                0     0 0 0",
         "VB100                             \"\\x11\\\"3D\\x00\\x00\\x00\"...   never            0",
         "VB20000                                                                        1",
         "  last error: Invalid address (incorrect variable address)"});
    QTest::newRow("200") << QStringList(
        {"ADDRESS                                     VALUE                                       CHANGED    "
         " ATTEMPTS  ERRORS  LAST ERROR",
         "VW200                                       -337                                        never      "
         "        0       0",
         "Line3.Press.Cylinder12.PressureTransmitter  22.363361 bar                               never      "
         "        0       0",
         "VW100                                       4386 13124 0 0 0 0 0 0                      never      "
         "        0       0",
         "VW116                                          0     0 0 0",
         "VB100                                       "
         "\"\\x11\\\"3D\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\"  never              0       0",
         "VB20000                                                                                            "
         "        0       1  Invalid address (incorrect variable address)"});
}

void TestTableView::everyWidthShowsWhatIsImportant()
{
    const int columns = QString(QTest::currentDataTag()).toInt();
    QFETCH(QStringList, table);
    QCOMPARE(watchTable(press(), kStart, columns, 20).join('\n'), table.join('\n'));
}

void TestTableView::anErrorIsWholeBelowItsItem()
{
    QCOMPARE(watchTable(twoItems(), kStart, 60, 20),
             QStringList({"ADDRESS  VALUE        CHANGED     ATTEMPTS  ERRORS",
                          "VB100    17 34 51 68  never              7       0",
                          "VB20000                                 28       1",
                          "  last error: Invalid address (incorrect variable address)"}));
    QCOMPARE(
        watchTable(twoItems(), kStart, 40, 20),
        QStringList({"ADDRESS  VALUE        CHANGED     ERRORS", "VB100    17 34 51 68  never            0",
                     "VB20000                                1", "  last error: Invalid address (incorrect",
                     "  variable address)"}));
}

void TestTableView::anErrorWithoutRowsEndsInDots()
{
    QCOMPARE(watchTable(twoItems(), kStart, 40, 4).last(),
             QString("  last error: Invalid address (incor ..."));
    QCOMPARE(int(watchTable(twoItems(), kStart, 40, 3).size()), 3);
}

void TestTableView::longNamesLoseTheirMiddle()
{
    Tag tag = parseItem("VB100");
    tag.name = QString("Line3.").repeated(20) + "Pressure";
    Watch watch({tag});
    watch.items[0].answered({"17"}, kStart);
    const QString line = watchTable(watch, kStart, 60, 20).at(1);
    QVERIFY(line.startsWith("Line3."));
    QVERIFY2(line.contains("Pressure  17     never"), qPrintable(line));
}

void TestTableView::numbersAreShortenedAndNeverCut()
{
    Tag tag = parseItem("VD0:f32");
    tag.unit = "mbar";
    Watch watch({tag});
    watch.items[0].answered({"-1.1754944e-38"}, kStart);
    const auto valueIn = [&](int columns) { return watchTable(watch, kStart, columns, 20).at(1).mid(9); };
    QCOMPARE(valueIn(28), QString("-1.1754944e-38 mbar"));
    QCOMPARE(valueIn(27), QString("~-1.17549e-38 mbar"));
    QCOMPARE(valueIn(20), QString("~-1.175e-38"));
    watch.items[0].failed("packet loss");
    QCOMPARE(valueIn(23), QString("(~-1e-38 mbar)"));
    Watch hex({parseItem("VD0:hex")});
    hex.items[0].answered({"0x1122abff"}, kStart);
    QCOMPARE(watchTable(hex, kStart, 14, 20).at(1), QString("VD0    #######"));
}

void TestTableView::aNumberOrShortTextIsCutWhenNoOtherColumnIsLeft()
{
    for (const auto &[item, text] : {std::pair("VD0", "4294967295"), std::pair("VB0:str*5", "\"short\"")}) {
        Watch watch({parseItem(item)});
        watch.items[0].answered({text}, kStart);
        for (int columns = 1; columns < 80; ++columns) {
            const QStringList lines = watchTable(watch, kStart, columns, 20);
            if (lines.at(0).contains("CHANGED"))
                QVERIFY2(lines.at(1).contains(text), qPrintable(lines.at(1)));
        }
    }
}

void TestTableView::aColumnIsThereAsSoonAsItHasRoom()
{
    Watch watch({parseItem("VB0")});
    watch.items[0].answered({"1"}, kStart);
    for (int columns = 80; columns > 20; --columns) {
        const QString head = watchTable(watch, kStart, columns, 20).at(0);
        if (head.contains("ERRORS"))
            QCOMPARE(watchTable(watch, kStart, int(head.size()), 20).at(0), head);
    }
}

void TestTableView::arraysHaveAsManyValuesALineAsHaveRoom_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<int>("values");
    QTest::addColumn<QString>("others");
    const auto row = [](int from, int to, int values, const char *others) {
        QTest::addRow("%d to %d columns", from, to) << from << to << values << QString(others);
    };
    row(17, 22, 1, "");
    row(23, 34, 2, "");
    row(35, 46, 4, "");
    row(47, 54, 4, " CHANGED");
    row(55, 64, 4, " CHANGED ERRORS");
    row(65, 67, 4, " CHANGED ATTEMPTS ERRORS");
    row(68, 75, 8, " CHANGED");
    row(76, 85, 8, " CHANGED ERRORS");
    row(86, 120, 8, " CHANGED ATTEMPTS ERRORS");
}

void TestTableView::arraysHaveAsManyValuesALineAsHaveRoom()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(QString, others);
    Watch watch({parseItem("VW100*8")});
    watch.items[0].answered(many(8, "12345"), kStart);
    for (int columns = from; columns <= to; ++columns) {
        const QStringList lines = watchTable(watch, kStart, columns, 20);
        QCOMPARE(lines.at(0).simplified(), "ADDRESS VALUE" + others);
        QTEST(int(lines.at(1).count("12345")), "values");
    }
}

void TestTableView::eightShortValuesAreWorthMoreThanTheTimeOfTheChange()
{
    Watch watch({parseItem("VB100*8")});
    watch.items[0].answered(many(8, "7"), kStart);
    for (const int columns : {24, 25}) {
        const QStringList lines = watchTable(watch, kStart, columns, 20);
        QCOMPARE(lines.at(0).simplified(), QString("ADDRESS VALUE"));
        QCOMPARE(lines.at(1), QString("VB100    7 7 7 7 7 7 7 7"));
    }
}

void TestTableView::rowsThatAreLeftGoToArraysByTurns()
{
    Watch watch({parseItem("VB0*300"), parseItem("VB500*12")});
    watch.items[0].answered(many(300, "0"), kStart);
    watch.items[1].answered(many(12, "0"), kStart);
    QCOMPARE(
        watchTable(watch, kStart, 80, 6),
        QStringList({"ADDRESS  VALUE                 CHANGED     ATTEMPTS  ERRORS",
                     "VB0      0 0 0 0 0 0 0 0       never              0       0",
                     "VB8      0 0 0 0 0 0 0 0", "VB16     0 0 0 0 0 0 0 0 +276",
                     "VB500    0 0 0 0 0 0 0 0       never              0       0", "VB508    0 0 0 0"}));
    QCOMPARE(int(watchTable(watch, kStart, 80, 1000).size()), 1 + 38 + 2);
}

void TestTableView::noLineIsWiderThanTheScreen()
{
    for (const Watch &watch : {twoItems(), press()})
        for (int columns = 1; columns < 200; ++columns)
            for (const QString &line : watchTable(watch, kStart, columns, 20))
                QVERIFY2(line.size() <= columns, qPrintable(line));
}

void TestTableView::noTableIsHigherThanTheScreen()
{
    for (int rows = 2; rows < 30; ++rows)
        for (const int columns : {20, 60, 80, 200})
            QVERIFY(int(watchTable(press(), kStart, columns, rows).size()) <= rows);
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
    if (last.startsWith("..."))
        QCOMPARE(watchTable(watch, kStart, int(last.size()), rows).last(), last);
}

void TestTableView::theTitleGivesWayAndTheMessageIsWrapped()
{
    const QString title = "/dev/ttyUSB0 every 500 ms";
    QCOMPARE(headLines(title, ", poll 7", QString(), 60),
             QStringList({"/dev/ttyUSB0 every 500 ms, Ctrl-C ends, poll 7", ""}));
    QCOMPARE(headLines(title, ", poll 7", "/dev/ttyUSB0 is gone: waiting for it to come back", 40),
             QStringList({"/dev/ttyUSB0 every 500 ms, poll 7", "/dev/ttyUSB0 is gone: waiting for it to",
                          "come back"}));
    QCOMPARE(headLines(title, ", poll 7", "twenty characters it", 20).mid(1),
             QStringList("twenty characters it"));
    QCOMPARE(headLines(title, ", poll 7", "a b c d e", 20).first(), QString("/dev/ttyU..., poll 7"));
    QCOMPARE(int(headLines(title, ", poll 7", QString("word ").repeated(100), 20).size()), 4);
    const int length = int(lastHeadLines(title, press(), 1000).at(0).size());
    QCOMPARE(int(lastHeadLines(title, press(), length).size()), 1);
    QCOMPARE(int(lastHeadLines(title, press(), length - 1).size()), 2);
}

TEST_CLASS(TestTableView)
#include "test_table_view.moc"
