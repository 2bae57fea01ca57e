// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Items to write: address, type and values.

#include "host/items/assignment.h"

#include "hex.h"
#include "test_class.h"
#include "tests/host/support/refused_text.h"

#include <QtTest>

#include <optional>

using namespace host;

class TestAssignment : public QObject
{
    Q_OBJECT

private slots:
    void thereAreAsManyValuesAsAreNamed_data();
    void thereAreAsManyValuesAsAreNamed();
    void aStationIsKept();
    void wrongAssignmentsSayWhatCouldBeMeant_data();
    void wrongAssignmentsSayWhatCouldBeMeant();
};

void TestAssignment::thereAreAsManyValuesAsAreNamed_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("data");
    const auto row = [](const char *name, const char *address, const char *type, int count,
                        const char *data) { QTest::newRow(name) << address << type << count << data; };
    row("VB100=17", "VB100", "u8", 1, "11");
    row("VW10:i16=-1,0x7f", "VW10", "i16", 2, "ffff007f");
    row("V10.7=1,0,1", "V10.7", "bool", 3, "010001");
    row("VB0:hex=112233", "VB0", "hex", 3, "112233");
    row("VW0:hex=1122,33445566", "VW0", "hex", 3, "112233445566");
    row("VB20:str=a=b", "VB20", "str", 3, "613d62");
    row("VD0:f32=1.0,5.0", "VD0", "f32", 2, "3f80000040a00000");
    row("VD0:f32=1,-5", "VD0", "f32", 2, "3f800000c0a00000");
    row("VD0:f32=1,5,1", "VD0", "f32", 3, "3f80000040a000003f800000");
    row("T37=300", "T37", "u16", 1, "012c");
    row("VB100:string*20=Hi", "VB100", "string", 2, "024869");
    row("VB100:string*20=\"\"", "VB100", "string", 0, "00");
    row("VD0:u64=18446744073709551615,1", "VD0", "u64", 2, "ffffffffffffffff0000000000000001");
    row("VD0:f32:swap=1.0,5.0", "VD0", "f32", 2, "00003f80000040a0");
    row("VB0..VB3=1,2,3,4", "VB0", "u8", 4, "01020304");
    row("VB0..3:hex=01020304", "VB0", "hex", 4, "01020304");
    row("VW0..VW2:i16=-1,2", "VW0", "i16", 2, "ffff0002");
    row("VD0..VD4:f32=1,5", "VD0", "f32", 2, "3f80000040a00000");
    row("V0.6..V1.1=1,0,1,1", "V0.6", "bool", 4, "01000101");
    row("T37..T38=300,1", "T37", "u16", 2, "012c0001");
    row("VB0..VB4:str=Hello", "VB0", "str", 5, "48656c6c6f");
    row("VB0..VB9:string=Hi", "VB0", "string", 2, "024869");
    row("VB2097150=1,2", "VB2097150", "u8", 2, "0102");
}

void TestAssignment::thereAreAsManyValuesAsAreNamed()
{
    const Assignment assignment = parseAssignment(QTest::currentDataTag());
    QTEST(assignment.tag.item.address.text(), "address");
    QTEST(typeName(assignment.tag.item.type), "type");
    QTEST(assignment.tag.item.count, "count");
    QCOMPARE(assignment.tag.item.size(), int(assignment.data.size()));
    QTEST(hex(assignment.data), "data");
}

void TestAssignment::aStationIsKept()
{
    QCOMPARE(parseAssignment("VB100@3=17,18").tag.label(), QString("VB100@3"));
    QCOMPARE(parseAssignment("VW10:i16@3=-1").tag.label(), QString("VW10@3"));
    QCOMPARE(parseAssignment("VB20@3:str=a@4").tag.item.station, std::optional<int>(3));
    QCOMPARE(parseAssignment("VB20:str=a@4").tag.item.station, std::optional<int>());
}

void TestAssignment::wrongAssignmentsSayWhatCouldBeMeant_data()
{
    addRefusedTexts();
    refused("VB100", "no value is given", "write VB100=VALUE");
    refused("VB100*4", "no value is given", "write VB100=VALUE");
    refused("VB100*4=1", "a count is not needed here",
            "write VB100=VALUE,VALUE with as many values as you mean");
    refused("VB100*4@3", "no value is given", "write VB100@3=VALUE");
    refused("VB100*4@3=1", "a count is not needed here",
            "write VB100@3=VALUE,VALUE with as many values as you mean");
    refused("VB20:str*4@3=abcd", "a count is not needed here",
            "write VB20:str@3=TEXT, a text as long as you mean");
    refused("VB100@127=1", "\"127\" is not a station", "controllers have stations from 1 to 126");
    refused("VD0:f32@3=1,5", "\"1,5\" may be one number or two",
            "write VD0:f32@3=1.5 for one number, VD0:f32@3=1.0,5.0 for two");
    refused("vb10=1", "not an address of the controller", "write VB10 instead of vb10");
    refused("V10.9=1", "not an address of the controller", "bits are 0 to 7: write V10.7 instead of V10.9");
    refused("VB10 =1", "not an address of the controller", "write VB10 instead of VB10 ");
    refused("VB10:byte=1", "\"byte\" is not a type", "write u8 instead of byte");
    refused("V1.0:u8=1", "V1.0 cannot be taken as u8", "V1.0 can be taken as bool; its whole byte is VB1");
    refused("VB0..VB3=1,2,3", "3 values for a range of 4",
            "name as many values as the range has, or its first address alone");
    refused("VB0..VB3=1", "1 value for a range of 4",
            "name as many values as the range has, or its first address alone");
    refused("VD0..VD0:f32=1,5", "2 values for a range of 1",
            "name as many values as the range has, or its first address alone");
    refused("VB0..VB9:str=Hello", "5 values for a range of 10",
            "name as many values as the range has, or its first address alone");
    refused("VB0..VB3", "no value is given", "write VB0..VB3=VALUE");
    refused("VB0..VB3*4=1", "a count is not needed here",
            "write VB0..VB3=VALUE,VALUE with as many values as you mean");
    refused("VB9..VB0=1", "VB0 lies before VB9", "write VB0..VB9");
    refused("VB100:string*20", "no value is given", "write VB100:string*20=VALUE");
    refused("VB100:string=Hi", "the string's room is not named",
            "write VB100:string*20 when there is room for 20 characters");
    refused("VD100:f64=1,5", "\"1,5\" may be one number or two",
            "write VD100:f64=1.5 for one number, VD100:f64=1.0,5.0 for two");
    refused("VB0=300", "300 is too large for u8: 0 to 255", "the nearest value is 255");
    refused("VB2097151=1,2", "VB2097151 is not followed by that many values", "the largest count here is 1");
    refused("V2097151.7=1,0", "V2097151.7 is not followed by that many values",
            "the largest count here is 1");
}

void TestAssignment::wrongAssignmentsSayWhatCouldBeMeant()
{
    compareRefusal([](const QString &text) { parseAssignment(text); });
}

TEST_CLASS(TestAssignment)
#include "test_assignment.moc"
