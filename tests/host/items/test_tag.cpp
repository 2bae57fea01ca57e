// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a tag is called, and the number that it shows.

#include "host/items/tag.h"

#include "hex.h"
#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

#include <optional>
#include <string>
#include <vector>

using namespace host;

class TestTag : public QObject
{
    Q_OBJECT

private slots:
    void anItemIsCalledByItsAddressAndItsOwnStation();
    void aTagIsCalledByItsName();
    void tagsMayNameStations();
    void aRecordTellsWhereItsValuesComeFrom();
    void everyValueHasItsOwnAddress_data();
    void everyValueHasItsOwnAddress();
    void manyValuesStandEightToALineInColumns();
    void linesOfATagAreNumberedAndHaveTheUnit();
    void allLabelsOfLongArraysHaveRoom();
    void aLongTextIsOneLine();
    void wideNumbersAreExactInData();
    void scaledNumbersTooLargeToBeToldApartAreNotWritten();
    void aNumberIsShownAsItIsDrawn_data();
    void aNumberIsShownAsItIsDrawn();
    void otherValuesHaveNoNumber_data();
    void otherValuesHaveNoNumber();
};

namespace {

// Of the first value that the bytes hold.
std::optional<double> numberOf(const QString &item, const QString &data, double scale, double offset)
{
    Tag tag = parseItem(item);
    tag.scaling.scale = scale;
    tag.scaling.offset = offset;
    return shownNumber(tag, decodeValues(tag.item, bytes(qPrintable(data))).front());
}

} // namespace

void TestTag::anItemIsCalledByItsAddressAndItsOwnStation()
{
    QCOMPARE(Tag(parseItem("VW10:i16*2")).label(), QString("VW10"));
    QCOMPARE(Tag(parseItem("VW10:i16*2@3")).label(), QString("VW10@3"));
    const TextLines lines({parseItem("VB1"), parseItem("VB1@12")});
    QCOMPARE(lines.text(parseItem("VB1"), {qint64(5)}), QString("VB1    5"));
    QCOMPARE(lines.text(parseItem("VB1@12"), {qint64(6)}), QString("VB1@12 6"));
}

void TestTag::aTagIsCalledByItsName()
{
    Tag tag = parseItem("VW10@3");
    tag.name = "Boiler";
    QCOMPARE(tag.label(), QString("Boiler"));
}

void TestTag::everyValueHasItsOwnAddress_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("label");
    const auto row = [](const char *item, int index, const char *label) {
        QTest::addRow("%s", item) << index << QString(label);
    };
    row("VB100*20", 8, "VB108");
    row("VW100*20", 8, "VW116");
    row("VD100*20", 8, "VD132");
    row("VB100:u16*20", 8, "VB116");
    row("VB100:f32*20", 3, "VB112");
    row("VW100:u8*20", 3, "VW103");
    row("VD100:hex*4", 3, "VD112");
    row("V10.6*20", 0, "V10.6");
    row("V10.6*20", 1, "V10.7");
    row("V10.6*20", 2, "V11.0");
    row("SM0.3*20", 8, "SM1.3");
    row("AIW2*20", 8, "AIW18");
    row("T37*20", 8, "T45");
    row("T37:bool*20", 8, "T45");
    row("HC0*4", 3, "HC3");
    row("VW10*20@3", 8, "VW26@3");
}

void TestTag::everyValueHasItsOwnAddress()
{
    QFETCH(int, index);
    QTEST(valueLabel(parseItem(QTest::currentDataTag()), index), "label");
}

void TestTag::manyValuesStandEightToALineInColumns()
{
    const Tag tag = parseItem("V10.6*10");
    const TextLines lines({parseItem("VB1"), tag});
    QCOMPARE(lines.text(tag, std::vector<Value>(10, true)), QString("V10.6 1 1 1 1 1 1 1 1\nV11.6 1 1"));
    QCOMPARE(lines.text(tag, std::vector<Value>(8, true)), QString("V10.6 1 1 1 1 1 1 1 1"));
    const Tag words = parseItem("VW92*17");
    std::vector<Value> values(17, qint64(5));
    values[9] = qint64(65535);
    QCOMPARE(TextLines({words}).text(words, values), QString("VW92  5     5 5 5 5 5 5 5\n"
                                                             "VW108 5 65535 5 5 5 5 5 5\n"
                                                             "VW124 5"));
}

void TestTag::linesOfATagAreNumberedAndHaveTheUnit()
{
    Tag tag = parseItem("VB0*3");
    tag.name = "Levels";
    tag.unit = "mm";
    const std::vector<ValueLine> lines = valueLines(tag, {"1", "22", "3"}, 2);
    QCOMPARE(int(lines.size()), 2);
    QCOMPARE(lines[0].label + ' ' + lines[0].text, QString("Levels 1 22 mm"));
    QCOMPARE(lines[1].label + ' ' + lines[1].text, QString("Levels[2] 3 mm"));
}

void TestTag::allLabelsOfLongArraysHaveRoom()
{
    const TextLines lines({parseItem("VB9*90"), parseItem("VB1"), parseItem("VB2:str*500")});
    QCOMPARE(lines.text(parseItem("VB1"), {qint64(5)}), QString("VB1  5")); // as wide as VB97
    QCOMPARE(TextLines({parseItem("VB3*8"), parseItem("VB1")}).text(parseItem("VB1"), {qint64(5)}),
             QString("VB1 5"));
}

void TestTag::aLongTextIsOneLine()
{
    const Tag tag = parseItem("VB0:str*20");
    QCOMPARE(TextLines({tag}).text(tag, {Characters{"12345678901234567890"}}),
             QString("VB0 \"12345678901234567890\""));
}

void TestTag::tagsMayNameStations()
{
    QVERIFY(hasStations({parseItem("VB1"), parseItem("VB1@3")}));
    QVERIFY(!hasStations({parseItem("VB1")}));
}

void TestTag::aRecordTellsWhereItsValuesComeFrom()
{
    const Origin origin = {"2026-01-31T13:00:00.250+01:00", "/dev/ttyUSB0", 3};
    Tag tag = parseItem("VB1@3");
    QCOMPARE(QString::fromStdString(tagRecord(origin, tag, {qint64(17)}).dump()),
             QString(R"({"time":"2026-01-31T13:00:00.250+01:00","port":"/dev/ttyUSB0","station":3,)"
                     R"("address":"VB1","type":"u8","values":[17]})"));
    tag.name = "Level";
    tag.unit = "mm";
    const Failure refusal(ExitCode::Refused, Cause::RefusedAddress, "no such place", "try another");
    QCOMPARE(QString::fromStdString(tagErrorRecord(origin, tag, refusal).dump()),
             QString(R"({"time":"2026-01-31T13:00:00.250+01:00","port":"/dev/ttyUSB0","station":3,)"
                     R"("name":"Level","address":"VB1","type":"u8","unit":"mm",)"
                     R"("error":"no such place","cause":"refused_address"})"));
}

// Every one of them is beyond what a double can hold, or needs all of it.
void TestTag::wideNumbersAreExactInData()
{
    const auto values = [](const char *item, const char *data) {
        const Tag tag = parseItem(item);
        const Json record = tagRecord({}, tag, decodeValues(tag.item, bytes(data)));
        return QString::fromStdString(record["type"].get<std::string>() + ' ' + record["values"].dump());
    };
    QCOMPARE(values("VD0:u64*2", "ffffffffffffffff 0020000000000001"),
             QString("u64 [18446744073709551615,9007199254740993]"));
    QCOMPARE(values("VD0:i64*2", "8000000000000000 ffdfffffffffffff"),
             QString("i64 [-9223372036854775808,-9007199254740993]"));
    QCOMPARE(values("VD0:f64*3", "3fb999999999999a 7ff0000000000000 3ff0000000000001"),
             QString("f64 [0.1,\"inf\",1.0000000000000002]"));
    QCOMPARE(values("VD0:u32:swap", "00010000"), QString("u32:swap [1]"));
    QCOMPARE(values("VB0:string*5", "024869616c6c"), QString("string [\"Hi\"]"));
}

void TestTag::scaledNumbersTooLargeToBeToldApartAreNotWritten()
{
    Tag tag = parseItem("VD0:u64");
    tag.scaling.scale = 0.5;
    QCOMPARE(unscaledText(tag, "4503599627370496"), QString("9007199254740992"));
    QCOMPARE(
        failureOf([&] { unscaledText(tag, "4503599627370497"); }),
        QString("2: a scaled number of this size cannot be told from its neighbours / write the number as it "
                "lies in the controller: VD0:u64=9007199254740994"));
    tag.item = parseItem("VD0:f64@3");
    QCOMPARE(unscaledText(tag, "4503599627370497"), QString("9.00719925474099e+15"));
}

void TestTag::aNumberIsShownAsItIsDrawn_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("number");
    const auto row = [](const char *item, const char *data, double scale, double offset, double number) {
        QTest::addRow("%s %s times %g", item, data, scale)
            << QString(item) << QString(data) << scale << offset << number;
    };
    row("V0.0", "01", 1, 0, 1);
    row("V0.0", "00", 1, 0, 0);
    row("V0.0", "01", 10, 5, 1); // a bit has no scale
    row("VB0", "11", 1, 0, 17);
    row("VW0:i16", "ffff", 1, 0, -1);
    row("VW0:i16", "00d7", 0.1, 0, 21.5);
    row("VW0:i16", "0000", 0.1, -40, -40);
    row("VD0", "ffffffff", 1, 0, 4294967295.0);
    row("VD0:f32", "3dcccccd", 1, 0, 0.1); // the nearest float, as it is read
    row("VD0:f32", "3dcccccd", 2, 0, 0.2);
    row("VW0:bcd", "0012", 1, 0, 12);
    row("VD0:u64", "8000000000000000", 1, 0, 9223372036854775808.0);
    row("VD0:i64", "ffffffffffffffff", 0.1, 0, -0.1);
    row("VD0:f64", "3fb999999999999a", 1, 0, 0.1);
    row("VD0:f32:swap", "cccd3dcc", 2, 0, 0.2);
}

void TestTag::aNumberIsShownAsItIsDrawn()
{
    QFETCH(QString, item);
    QFETCH(QString, data);
    QFETCH(double, scale);
    QFETCH(double, offset);
    QFETCH(double, number);
    QCOMPARE(numberOf(item, data, scale, offset), std::optional<double>(number));
}

void TestTag::otherValuesHaveNoNumber_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
    QTest::addColumn<double>("scale");
    const auto row = [](const char *item, const char *data, double scale) {
        QTest::addRow("%s %s times %g", item, data, scale) << QString(item) << QString(data) << scale;
    };
    row("VD0:f32", "7f800000", 1); // infinity
    row("VD0:f32", "ff800000", 0.5);
    row("VD0:f32", "7fc00000", 1); // not a number
    row("VD0:f32", "7fc00000", 2);
    row("VB0:hex", "12", 1);
    row("VB0:hex", "12", 10);
    row("VB0:str*2", "3132", 1);
    row("VB0:string*2", "023132", 1);
    row("VD0:f64", "7ff0000000000000", 1);
}

void TestTag::otherValuesHaveNoNumber()
{
    QFETCH(QString, item);
    QFETCH(QString, data);
    QFETCH(double, scale);
    QVERIFY(!numberOf(item, data, scale, 0));
}

TEST_CLASS(TestTag)
#include "test_tag.moc"
