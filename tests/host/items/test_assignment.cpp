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
    row("VB2097150=1,2", "VB2097150", "u8", 2, "0102");
}

void TestAssignment::thereAreAsManyValuesAsAreNamed()
{
    const Assignment assignment = parseAssignment(QTest::currentDataTag());
    QTEST(assignment.tag.item.address.text(), "address");
    QTEST(typeName(assignment.tag.item.type), "type");
    QTEST(assignment.tag.item.count, "count");
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
    refused("V10.9=1", "not an address of the controller", "write V10.7 instead of V10.9");
    refused("VB10 =1", "not an address of the controller", "write VB10 instead of VB10 ");
    refused("VB10:byte=1", "\"byte\" is not a type", "write u8 instead of byte");
    refused("V1.0:u8=1", "V1.0 cannot be taken as u8", "V1.0 can be taken as bool; its whole byte is VB1");
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
