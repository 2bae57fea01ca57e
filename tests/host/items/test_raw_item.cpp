// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Items whose address is for the driver alone: where the address ends, and what may stand in it.

#include "host/items/raw_item.h"

#include "host/items/assignment.h"
#include "host/items/tag_file.h"
#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

#include <vector>

using namespace host;

class TestRawItem : public QObject
{
    Q_OBJECT

private slots:
    void theLastColonWithATypeBehindItEndsTheAddress_data();
    void theLastColonWithATypeBehindItEndsTheAddress();
    void wrongItemsSayWhatCouldBeMeant_data();
    void wrongItemsSayWhatCouldBeMeant();
    void whatIsWrittenBeginsBehindTheFirstTarget_data();
    void whatIsWrittenBeginsBehindTheFirstTarget();
    void valuesAreTakenAsOfAnyItem();
    void wrongAssignmentsSayWhatCouldBeMeant_data();
    void wrongAssignmentsSayWhatCouldBeMeant();
    void tagFilesNameWhatNoCommandLineCan();
    void itemsOfTheControllerStayWhatTheyAre();
};

void TestRawItem::theLastColonWithATypeBehindItEndsTheAddress_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("station"); // -1: none
    const auto row = [](const char *text, const char *address, const char *type, int count, int station) {
        QTest::newRow(text) << text << address << type << count << station;
    };
    row("N1:i32", "N1", "i32", 1, -1);
    row("40001:u16*4", "40001", "u16", 4, -1);
    row("40001:u16*4@3", "40001", "u16", 4, 3);
    row("40001:u16@126", "40001", "u16", 1, 126);
    row("tank 3: level:f32", "tank 3: level", "f32", 1, -1);
    row("a:u8:i32", "a:u8", "i32", 1, -1);
    row("a*2:u8", "a*2", "u8", 1, -1);
    row("a*2@3:u8*4", "a*2@3", "u8", 4, -1);
    row("a=b:str*16", "a=b", "str", 16, -1);
    row("::hex*2", ":", "hex", 2, -1);
    row(" :bool", " ", "bool", 1, -1);
    row("N1:u64*8191", "N1", "u64", 8191, -1);
    row("N1:string*254@5", "N1", "string", 254, 5);
    row("N1:f32:swap*2@3", "N1", "f32:swap", 2, 3);
    row("a:u8:swap:f64:swap", "a:u8:swap", "f64:swap", 1, -1);
    row("a..b:u8", "a..b", "u8", 1, -1);
    row("two\nlines:bcd*65535", "two\nlines", "bcd", 65535, -1);
}

void TestRawItem::theLastColonWithATypeBehindItEndsTheAddress()
{
    QFETCH(QString, text);
    const Item item = parseItem(text, Notation::Raw);
    QTEST(item.address.text(), "address");
    QTEST(item.typeText(), "type");
    QTEST(item.count, "count");
    QTEST(item.station.value_or(-1), "station");
}

void TestRawItem::wrongItemsSayWhatCouldBeMeant_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("failure"); // its beginning
    const auto row = [](const char *text, const char *failure) { QTest::newRow(text) << text << failure; };
    row("N1", "2: no type is named behind the address / write N1:i32 or N1:u16*4; types are bool u8 ");
    row("", "2: no type is named behind the address / write ");
    row(":i32", "2: no type is named behind the address / write ");
    row("N1:i32\n", "2: no type is named behind the address / write ");
    row("N1:int", "2: \"int\" is not a type / write i16 instead of int");
    row("N1:i128*2", "2: \"i128\" is not a type / types are bool u8 ");
    row("N1:swap", "2: \"swap\" is not a type / types are bool u8 ");
    row("N1:u16:swap*2", "2: values of type u16 have no words to swap / :swap stands behind u32 ");
    row("N1:string@3", "2: the string's room is not named / write N1:string*20 when ");
    row("N1:f64*8192", "2: N1 is not followed by that many values / the largest count here is 8191");
    row("N1:i32*0", "2: \"0\" is not a count / a count is a whole number from 1 on");
    row("N1:i32*", "2: \"\" is not a count / a count is a whole number from 1 on");
    row("N1:i32*65536", "2: N1 is not followed by that many values / the largest count here is 65535");
    row("N1:i32@127", "2: \"127\" is not a station / controllers have stations from 1 to 126");
    row("N1:i32@", "2: \"\" is not a station / controllers have stations from 1 to 126");
}

void TestRawItem::wrongItemsSayWhatCouldBeMeant()
{
    QFETCH(QString, text);
    QFETCH(QString, failure);
    const QString told = failureOf([&] { parseItem(text, Notation::Raw); });
    QCOMPARE(told.left(failure.size()), failure);
}

void TestRawItem::whatIsWrittenBeginsBehindTheFirstTarget_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("values");
    const auto row = [](const char *text, const char *target, const char *values) {
        QTest::newRow(text) << text << target << values;
    };
    row("T1:i32=250", "T1:i32", "250");
    row("T1:i32@3=250", "T1:i32@3", "250");
    row("a=b:u8=1", "a=b:u8", "1");
    row("name:str=b:u8=1", "name:str", "b:u8=1");
    row("name:string*9=b:u8=1", "name:string*9", "b:u8=1");
    row("T1:f32:swap@3=2", "T1:f32:swap@3", "2");
    row("name:str=", "name:str", "");
    row("@tags.csv:Tare=1", "@tags.csv:Tare", "1");
}

void TestRawItem::whatIsWrittenBeginsBehindTheFirstTarget()
{
    QFETCH(QString, text);
    const AssignmentText parts = splitAssignment(text, Notation::Raw);
    QVERIFY(parts.hasValues);
    QTEST(parts.target, "target");
    QTEST(parts.values, "values");
}

void TestRawItem::valuesAreTakenAsOfAnyItem()
{
    const Assignment assignment = parseAssignment("T1:i16=-1,0x7f", Notation::Raw);
    QCOMPARE(assignment.data.toHex(), QByteArray("ffff007f"));
    QCOMPARE(assignment.tag.item.count, 2);
    QCOMPARE(assignment.tag.item.address.text(), QString("T1"));
    QCOMPARE(parseAssignment("T1:hex=1a2b3c", Notation::Raw).tag.item.count, 3);
    QCOMPARE(parseAssignment("T1:u32:swap=1", Notation::Raw).data.toHex(), QByteArray("00010000"));
    QCOMPARE(parseAssignment("T1:string*9=Hi", Notation::Raw).data.toHex(), QByteArray("024869"));
    QCOMPARE(parseAssignment("T1:bool=on", Notation::Raw).data.toHex(), QByteArray("01"));
}

void TestRawItem::wrongAssignmentsSayWhatCouldBeMeant_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("failure"); // its beginning
    const auto row = [](const char *text, const char *failure) { QTest::newRow(text) << text << failure; };
    row("T1:i32*2=1,2", "2: a count is not needed here / write T1:i32=VALUE,VALUE with as many values ");
    row("T1:bool=1,0",
        "2: several bits cannot be written at once to an address of this driver / write them one ");
    row("T1=5", "2: no type is named behind the address / write T1:i32 or ");
    row("T1:int=5", "2: \"int\" is not a type / write i16 instead of int");
    row("T1:i32", "2: no value is given / write T1:i32=VALUE");
}

void TestRawItem::wrongAssignmentsSayWhatCouldBeMeant()
{
    QFETCH(QString, text);
    QFETCH(QString, failure);
    const QString told = failureOf([&] { parseAssignment(text, Notation::Raw); });
    QCOMPARE(told.left(failure.size()), failure);
}

void TestRawItem::tagFilesNameWhatNoCommandLineCan()
{
    Outcome outcome;
    const std::vector<Tag> tags = parseTagFile("tags.csv",
                                               "name,address,type,scale,station\n"
                                               "Net,@N1:u8=,i32*2,0.001,7\n"
                                               "Tare,T1:i32,,,\n",
                                               outcome, Notation::Raw);
    QVERIFY(outcome.isSuccess());
    QCOMPARE(tags.at(0).item.address.text(), QString("@N1:u8="));
    QCOMPARE(tags.at(0).item.count, 2);
    QCOMPARE(tags.at(0).item.station.value_or(-1), 7);
    QCOMPARE(typeName(tags.at(0).item.type), QString("i32"));
    QCOMPARE(tags.at(1).item.address.text(), QString("T1"));
}

void TestRawItem::itemsOfTheControllerStayWhatTheyAre()
{
    QCOMPARE(parseItem("VB100", Notation::Controller).address.number, 100);
    const QString told = failureOf([] { parseItem("N1:i32", Notation::Controller); });
    QVERIFY2(told.startsWith("2: not an address of the controller / "), qPrintable(told));
}

TEST_CLASS(TestRawItem)
#include "test_raw_item.moc"
