// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Items of the command line: address, type and count.

#include "host/base/filled.h"
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
    void theWordsOfWideValuesCanBeSwapped_data();
    void theWordsOfWideValuesCanBeSwapped();
    void aStringTakesAByteMoreThanItsRoom();
    void aStationStandsAtTheEndOrBehindTheAddress_data();
    void aStationStandsAtTheEndOrBehindTheAddress();
    void wrongItemsSayWhatCouldBeMeant_data();
    void wrongItemsSayWhatCouldBeMeant();
    void typesOfOtherToolsAreKnown_data();
    void typesOfOtherToolsAreKnown();
    void wrongRangesSayWhatCouldBeMeant_data();
    void wrongRangesSayWhatCouldBeMeant();
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
    row("VB100:string*20", "VB100:string*20", "string", 20, 1);
    row("VW100:u64*2", "VW100:u64*2", "u64", 2, 8);
    row("VB100:i64", "VB100:i64", "i64", 1, 8);
    row("VD100:f64*3", "VD100:f64*3", "f64", 3, 8);
    row("VB100..VB103", "VB100..VB103", "u8", 4, 1);
    row("VB100..103", "VB100..103", "u8", 4, 1);
    row("VB0..VB15:hex", "VB0..VB15:hex", "hex", 16, 1);
    row("VW0..VW30:i16", "VW0..VW30:i16", "i16", 16, 2);
    row("VW0..VW6:u32", "VW0..VW6:u32", "u32", 2, 4);
    row("VD0..VD4:u8", "VD0..VD4:u8", "u8", 8, 1);
    row("VD0..VD12:f64", "VD0..VD12:f64", "f64", 2, 8);
    row("V0.0..V1.7", "V0.0..V1.7", "bool", 16, 1);
    row("V0.6..1.1", "V0.6..1.1", "bool", 4, 1);
    row("T37..T40", "T37..T40", "u16", 4, 2);
    row("T37..40:bool", "T37..40:bool", "bool", 4, 1);
    row("AIW0..AIW6", "AIW0..AIW6", "i16", 4, 2);
    row("HC0..HC5", "HC0..HC5", "u32", 6, 4);
    row("VB0..VB19:str", "VB0..VB19:str", "str", 20, 1);
    row("VB0..VB20:string", "VB0..VB20:string", "string", 20, 1);
    row("MB7..MB7", "MB7..MB7", "u8", 1, 1);
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

void TestItem::theWordsOfWideValuesCanBeSwapped_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("count");
    const auto row = [](const char *text, const char *type, int count) {
        QTest::newRow(text) << type << count;
    };
    row("VD100:f32:swap", "f32:swap", 1);
    row("VD100:u32:swap*4@3", "u32:swap", 4);
    row("VD100@3:i32:swap*4", "i32:swap", 4);
    row("VW100..VW106:u64:swap", "u64:swap", 1);
    row("VB100:i64:swap", "i64:swap", 1);
    row("VB100:f64:swap*2", "f64:swap", 2);
    row("VD100:f32", "f32", 1);
}

void TestItem::theWordsOfWideValuesCanBeSwapped()
{
    const Item item = parseItem(QTest::currentDataTag());
    QTEST(item.typeText(), "type");
    QTEST(item.count, "count");
    QCOMPARE(item.isSwapped, item.typeText().endsWith(":swap"));
}

void TestItem::aStringTakesAByteMoreThanItsRoom()
{
    const Item item = parseItem("VW100:string*20");
    QCOMPARE(item.size(), 21);
    QCOMPARE(item.countOf(21), 20);
    QCOMPARE(parseItem("VW100:str*20").size(), 20);
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
    row("VB0..VB3@3", "VB0@3", 3, "u8", 4);
    row("VW0..VW2:i16@3", "VW0@3", 3, "i16", 2);
    row("VB0..VB3@3:hex", "VB0@3", 3, "hex", 4);
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
    const char typesHint[] = "types are bool u8 i8 u16 i16 u32 i32 u64 i64 f32 f64 hex bcd str string; "
                             ":swap may stand behind u32 i32 u64 i64 f32 f64";
    const char memoryHint[] = "VB1 can be taken as u8 i8 u16 i16 u32 i32 u64 i64 f32 f64 hex bcd str string; "
                              "its first bit is V1.0";

    refused("vb1:u8*2", "not an address of the controller", "write VB1 instead of vb1");
    refused("VW1:U16", "\"U16\" is not a type", "write u16 instead of U16");
    refused("VW1:word", "\"word\" is not a type", "write u16 instead of word");
    refused("VW1:INT", "\"INT\" is not a type", "write i16 instead of INT");
    refused("VD1:Real", "\"Real\" is not a type", "write f32 instead of Real");
    refused("V1.0:bit", "\"bit\" is not a type", "write bool instead of bit");
    refused("VB1:", "\"\" is not a type", typesHint);
    refused("VB1:u128", "\"u128\" is not a type", typesHint);
    refused("VD1:LREAL", "\"LREAL\" is not a type", "write f64 instead of LREAL");
    refused("VB1:swap", "\"swap\" is not a type", typesHint);
    refused("VD1:real:SWAP", "\"real:SWAP\" is not a type", "write f32:swap instead of real:SWAP");
    refused("VD1:f32:swap:swap", "\"f32:swap:swap\" is not a type", typesHint);
    const char swapHint[] = ":swap stands behind u32 i32 u64 i64 f32 f64";
    for (const char *type : {"u8", "u16", "i16", "hex", "bcd", "str", "string"})
        refused(QString("VW1:%1:swap*2").arg(type),
                QString("values of type %1 have no words to swap").arg(type), swapHint);
    refused("V1.0:bool:swap", "values of type bool have no words to swap", swapHint);
    refused("VB1:string", "the string's room is not named",
            "write VB1:string*20 when there is room for 20 characters");
    refused("VB1:string*255", "a string has no room for 255 characters",
            "the controller's strings have up to 254");
    refused("VB2097150:string*2", "VB2097150 is not followed by that many values",
            "the largest count here is 1");
    refused("VB1:u8:u8", "\"u8:u8\" is not a type", typesHint);
    refused("VB1*", "\"\" is not a count", countHint);
    refused("VB1*0", "\"0\" is not a count", countHint);
    refused("VB1*-1", "\"-1\" is not a count", countHint);
    refused("VB1*2*3", "\"2*3\" is not a count", countHint);
    refused("VB1*99999999999", "\"99999999999\" is not a count", countHint);
    refused("VB1*4:u8", "\"4:u8\" is not a count", countHint);
    refused("VB1:bool", "VB1 cannot be taken as bool", memoryHint);
    refused("SMW2:bool", "SMW2 cannot be taken as bool",
            "SMW2 can be taken as u8 i8 u16 i16 u32 i32 u64 i64 f32 f64 hex bcd str string; "
            "its first bit is SM2.0");
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
    for (const char *text :
         {"VB1@3@4", "VB1@3@3", "VB1@3:u16@3", "VB1:u16@3*2", "VB1*2@3:u16", "VB1@3..VB4", "VB1@3..VB4@3"})
        refused(text, "the station is not in its place", placeHint);
}

void TestItem::wrongRangesSayWhatCouldBeMeant_data()
{
    addRefusedTexts();
    refused("VB0..VB3*4", "a range needs no count", "write VB0..VB3");
    refused("VB0*4..VB3", "a range needs no count", "write VB0");
    refused("VB0:u8..VB3", "the type is not in its place", "name it behind the range, as VB0..VB15:hex");
    refused("VB9..VB0", "VB0 lies before VB9", "write VB0..VB9");
    refused("V1.0..V0.7", "V0.7 lies before V1.0", "write V0.7..V1.0");
    refused("VB0..MB9", "VB0 and MB9 are not in the same area", "write VB0..VB9");
    refused("V0.0..M1.3", "V0.0 and M1.3 are not in the same area", "write V0.0..V1.3");
    refused("V0.0..VB1", "V0.0 and VB1 are not in the same area", "write V0.0..V1.7");
    refused("VB0..V1.3", "VB0 and V1.3 are not in the same area", "write VB0..VB1");
    refused("VW0..VW9", "VW9 begins inside another element counted from VW0", "write VW0..VW8");
    refused("AIW0..AIW3", "AIW3: not an address of the controller", "write AIW2 instead of AIW3");
    refused("V0.0..7", "V7: not an address of the controller", "write VB7 or V7.0 instead of V7");
    refused(
        "VB0..", ": not an address of the controller",
        "an address is letters and a number; areas are I Q V M SM S (bits, as V10.3, or with B, W or D, as "
        "VB100), AIW, AQW, T, C and HC");
    refused("VB0..VB14:u16", "VB0..VB14 has 15 bytes, no whole number of values of type u16",
            "end it with VB13 or VB15");
    refused("VW0..VW4:f32:swap", "VW0..VW4 has 6 bytes, no whole number of values of type f32:swap",
            "end it with VW2 or VW6");
    refused("VW0..VW4:u64", "VW0..VW4 has 6 bytes, no whole number of values of type u64", "end it with VW6");
    refused("VB0..VB0:string", "VB0..VB0 has 1 byte, no whole number of values of type string",
            "end it with VB1");
    refused("VB0..VB255:string", "a string has no room for 255 characters",
            "the controller's strings have up to 254");
    refused("V0.0..V0.7:u8", "V0.0 cannot be taken as u8",
            "V0.0 can be taken as bool; its whole byte is VB0");
}

void TestItem::wrongRangesSayWhatCouldBeMeant()
{
    compareRefusal([](const QString &text) { parseItem(text); });
}

void TestItem::wrongItemsSayWhatCouldBeMeant()
{
    compareRefusal([](const QString &text) { parseItem(text); });
}

void TestItem::typesOfOtherToolsAreKnown_data()
{
    QTest::addColumn<QString>("hint");
    const auto row = [](const char *type, const char *names) {
        for (const QByteArray &name : QByteArray(names).split(' '))
            QTest::newRow(name) << filled("write %1 instead of %2", type, name);
    };
    row("bool", "bit");
    row("u8", "byte uint8 usint U8");
    row("i8", "int8 sint");
    row("u16", "word uint16 uint WORD");
    row("i16", "int int16");
    row("u32", "dword uint32 udint");
    row("i32", "dint int32");
    row("u64", "lword uint64 ulint");
    row("i64", "lint int64");
    row("f32", "real float Real");
    row("f64", "lreal double");
    row("str", "char text");
    row("hex", "x raw bytes");
}

void TestItem::typesOfOtherToolsAreKnown()
{
    const QString failure = failureOf([] { parseItem(QString("VB0:") + QTest::currentDataTag()); });
    QFETCH(QString, hint);
    QVERIFY2(failure.endsWith(" / " + hint), qPrintable(failure));
}

TEST_CLASS(TestItem)
#include "test_item.moc"
