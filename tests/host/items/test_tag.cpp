// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a tag is called, and the number that it shows.

#include "host/items/tag.h"

#include "hex.h"
#include "test_class.h"

#include <QtTest>

#include <optional>

using namespace host;

class TestTag : public QObject
{
    Q_OBJECT

private slots:
    void anItemIsCalledByItsAddressAndItsOwnStation();
    void aTagIsCalledByItsName();
    void theFieldsHaveTheStationThatATagNames();
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
    QCOMPARE(lines.line(parseItem("VB1"), {qint64(5)}), QString("VB1    5"));
    QCOMPARE(lines.line(parseItem("VB1@12"), {qint64(6)}), QString("VB1@12 6"));
}

void TestTag::aTagIsCalledByItsName()
{
    Tag tag = parseItem("VW10@3");
    tag.name = "Boiler";
    QCOMPARE(tag.label(), QString("Boiler"));
}

void TestTag::theFieldsHaveTheStationThatATagNames()
{
    const auto fieldsOf = [](const Tag &tag) { return QString::fromStdString(tagFields(tag).dump()); };
    QCOMPARE(fieldsOf(parseItem("VB1")), QString(R"({"address":"VB1","type":"u8"})"));
    Tag tag = parseItem("VB1@3");
    tag.unit = "mm";
    QCOMPARE(fieldsOf(tag), QString(R"({"address":"VB1","type":"u8","station":3,"unit":"mm"})"));
    QVERIFY(hasStations({parseItem("VB1"), tag}));
    QVERIFY(!hasStations({parseItem("VB1")}));
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
