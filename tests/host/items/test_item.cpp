// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Items of the command line: address, type and count.

#include "host/items/item.h"

#include "test_class.h"
#include "tests/host/support/refused_text.h"

#include <QtTest>

using namespace host;

class TestItem : public QObject
{
    Q_OBJECT

private slots:
    void theAddressGivesTheTypeThatIsLeftOut_data();
    void theAddressGivesTheTypeThatIsLeftOut();
    void typeAndCountAreTaken_data();
    void typeAndCountAreTaken();
    void aStationStandsAtTheEndOrBehindTheAddress_data();
    void aStationStandsAtTheEndOrBehindTheAddress();
    void wrongItemsSayWhatCouldBeMeant_data();
    void wrongItemsSayWhatCouldBeMeant();
};

void TestItem::theAddressGivesTheTypeThatIsLeftOut_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("type");
    const auto row = [](const char *name, const char *text, const char *type) {
        QTest::newRow(name) << text << type;
    };
    row("bit", "V10.3", "bool");
    row("byte", "SMB0", "u8");
    row("word", "VW100", "u16");
    row("double word", "MD0", "u32");
    row("analogue input", "AIW0", "i16");
    row("analogue output", "AQW2", "i16");
    row("timer", "T37", "u16");
    row("counter", "C5", "u16");
    row("high-speed counter", "HC0", "u32");
}

void TestItem::theAddressGivesTheTypeThatIsLeftOut()
{
    QFETCH(QString, text);
    const Item item = parseItem(text);
    QTEST(typeName(item.type), "type");
    QCOMPARE(item.address.text(), text);
    QCOMPARE(item.count, 1);
}

void TestItem::typeAndCountAreTaken_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("valueSize");
    const auto row = [](const char *name, const char *text, const char *type, int count, int valueSize) {
        QTest::newRow(name) << text << type << count << valueSize;
    };
    row("VB100:u8", "VB100:u8", "u8", 1, 1);
    row("VB100:i8*3", "VB100:i8*3", "i8", 3, 1);
    row("VB100:u16", "VB100:u16", "u16", 1, 2);
    row("VD100:i16*5", "VD100:i16*5", "i16", 5, 2);
    row("VW100:u32", "VW100:u32", "u32", 1, 4);
    row("VW100:i32", "VW100:i32", "i32", 1, 4);
    row("VB100:f32*2", "VB100:f32*2", "f32", 2, 4);
    row("VB100:hex*4", "VB100:hex*4", "hex", 4, 1);
    row("VW100:hex*4", "VW100:hex*4", "hex", 4, 2);
    row("VD100:bcd", "VD100:bcd", "bcd", 1, 4);
    row("T37:hex", "T37:hex", "hex", 1, 2);
    row("HC0:hex", "HC0:hex", "hex", 1, 4);
    row("T37:bool*2", "T37:bool*2", "bool", 2, 1);
    row("HC0:i32", "HC0:i32", "i32", 1, 4);
    row("VB100:str*16", "VB100:str*16", "str", 16, 1);
    row("V10.3*4", "V10.3*4", "bool", 4, 1);
    row("to the last bit there is", "V2097151.0*8", "bool", 8, 1);
    row("to the last byte there is", "VB2097150*2", "u8", 2, 1);
}

void TestItem::typeAndCountAreTaken()
{
    QFETCH(QString, text);
    const Item item = parseItem(text);
    QTEST(typeName(item.type), "type");
    QTEST(item.count, "count");
    QTEST(item.valueSize(), "valueSize");
}

void TestItem::aStationStandsAtTheEndOrBehindTheAddress_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("place");
    QTest::addColumn<int>("station"); // -1: none
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("count");
    const auto row = [](const char *text, const char *place, int station, const char *type, int count) {
        QTest::newRow(text) << text << place << station << type << count;
    };
    row("VB100", "VB100", -1, "u8", 1);
    row("VB100@3", "VB100@3", 3, "u8", 1);
    row("V10.3@126", "V10.3@126", 126, "bool", 1);
    row("T37@1", "T37@1", 1, "u16", 1);
    row("VW10:i16*4@3", "VW10@3", 3, "i16", 4);
    row("VW10:i16@3", "VW10@3", 3, "i16", 1);
    row("VB100*2@30", "VB100@30", 30, "u8", 2);
    row("VB100@3:u16*2", "VB100@3", 3, "u16", 2);
    row("VB100@3*2", "VB100@3", 3, "u8", 2);
}

void TestItem::aStationStandsAtTheEndOrBehindTheAddress()
{
    QFETCH(QString, text);
    const Item item = parseItem(text);
    QTEST(item.place(), "place");
    QTEST(item.station.value_or(-1), "station");
    QTEST(typeName(item.type), "type");
    QTEST(item.count, "count");
}

void TestItem::wrongItemsSayWhatCouldBeMeant_data()
{
    addRefusedTexts();
    const char countHint[] = "a count is a whole number from 1 on, as VB100*4";
    const char typesHint[] = "types are bool u8 i8 u16 i16 u32 i32 f32 hex bcd str";
    const char memoryHint[] =
        "VB1 can be taken as u8 i8 u16 i16 u32 i32 f32 hex bcd str; its first bit is V1.0";

    refused("vb1:u8*2", "not an address of the controller", "write VB1 instead of vb1");
    refused("VW1:U16", "\"U16\" is not a type", "write u16 instead of U16");
    refused("VW1:word", "\"word\" is not a type", "write u16 instead of word");
    refused("VW1:INT", "\"INT\" is not a type", "write i16 instead of INT");
    refused("VD1:Real", "\"Real\" is not a type", "write f32 instead of Real");
    refused("V1.0:bit", "\"bit\" is not a type", "write bool instead of bit");
    refused("VB1:", "\"\" is not a type", typesHint);
    refused("VB1:u64", "\"u64\" is not a type", typesHint);
    refused("VB1:u8:u8", "\"u8:u8\" is not a type", typesHint);
    refused("VB1*", "\"\" is not a count", countHint);
    refused("VB1*0", "\"0\" is not a count", countHint);
    refused("VB1*-1", "\"-1\" is not a count", countHint);
    refused("VB1*2*3", "\"2*3\" is not a count", countHint);
    refused("VB1*99999999999", "\"99999999999\" is not a count", countHint);
    refused("VB1*4:u8", "\"4:u8\" is not a count", countHint);
    refused("VB1:bool", "VB1 cannot be taken as bool", memoryHint);
    refused("SMW2:bool", "SMW2 cannot be taken as bool",
            "SMW2 can be taken as u8 i8 u16 i16 u32 i32 f32 hex bcd str; its first bit is SM2.0");
    refused("V1.3:u8", "V1.3 cannot be taken as u8", "V1.3 can be taken as bool; its whole byte is VB1");
    refused("T1:f32", "T1 cannot be taken as f32", "T1 can be taken as bool u16 i16 hex");
    refused("C1:bcd", "C1 cannot be taken as bcd", "C1 can be taken as bool u16 i16 hex");
    refused("HC1:u16", "HC1 cannot be taken as u16", "HC1 can be taken as u32 i32 hex");
    refused("AIW0:u8", "AIW0 cannot be taken as u8", "AIW0 can be taken as u16 i16 hex bcd");
    refused("VB2097151*2", "VB2097151 is not followed by that many values", "the largest count here is 1");
    refused("VD2097144*3", "VD2097144 is not followed by that many values", "the largest count here is 2");
    refused("V2097151.1*8", "V2097151.1 is not followed by that many values", "the largest count here is 7");
    refused("T0*65537", "T0 is not followed by that many values", "the largest count here is 65536");
    const char stationHint[] = "controllers have stations from 1 to 126";
    for (const char *station : {"", "0", "127", "-1", "x", "2.5", "3,4", "99999999999"})
        refused(QString("VB1@%1").arg(station), QString("\"%1\" is not a station").arg(station), stationHint);
    refused("VB1@127:u8", "\"127\" is not a station", stationHint);
    refused("vb1@3", "not an address of the controller", "write VB1 instead of vb1");
    refused("VB1@3*0", "\"0\" is not a count", countHint);
    refused("VB1:bool@3", "VB1 cannot be taken as bool", memoryHint);
    const char placeHint[] = "name one station at the end, as VW10:i16*4@3, or right behind the address";
    for (const char *text : {"VB1@3@4", "VB1@3@3", "VB1@3:u16@3", "VB1:u16@3*2", "VB1*2@3:u16"})
        refused(text, "the station is not in its place", placeHint);
}

void TestItem::wrongItemsSayWhatCouldBeMeant()
{
    compareRefusal([](const QString &text) { parseItem(text); });
}

TEST_CLASS(TestItem)
#include "test_item.moc"
