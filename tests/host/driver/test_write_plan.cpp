// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// From an item's values to the driver's requests.

#include "host/driver/write_plan.h"

#include "hex.h"
#include "host/items/assignment.h"
#include "test_class.h"
#include "tests/host/support/command_text.h"

#include <QtTest>

#include <utility>

using namespace host;

namespace {

QString planText(const Item &item, const QByteArray &data)
{
    QStringList texts;
    for (const WriteRequest &request : planWrite(item, data))
        texts << commandText(request.command) + " = " + hex(request.data);
    return texts.join(", ");
}

// The commands alone, for an item of the read form, full of zeros.
QString commandsText(const QString &itemText)
{
    const Item item = parseItem(itemText);
    QStringList texts;
    for (const WriteRequest &request : planWrite(item, QByteArray(item.size(), '\0')))
        texts << commandText(request.command);
    return texts.join(", ");
}

} // namespace

class TestWritePlan : public QObject
{
    Q_OBJECT

private slots:
    void valuesGoInTheOrderThatTheAddressAsksFor_data();
    void valuesGoInTheOrderThatTheAddressAsksFor();
    void longItemsAreSplitIntoWhatOneFrameCarries_data();
    void longItemsAreSplitIntoWhatOneFrameCarries();
    void noByteIsLostOrDoubledWhereItemsAreSplit_data();
    void noByteIsLostOrDoubledWhereItemsAreSplit();
    void bitsGoOnAcrossBytesAndRequests();
    void aRawAddressIsWrittenInOneRequest();
};

void TestWritePlan::valuesGoInTheOrderThatTheAddressAsksFor_data()
{
    QTest::addColumn<QString>("plan");
    const auto row = [](const char *assignment, const char *plan) {
        QTest::newRow(assignment) << QString(plan);
    };
    row("VB100=17,34", "bytes VB100*2 = 1122");
    row("VB100:u16=0x1122,0x3344", "words VB100*2 = 11223344");
    row("VW100=0x1122,0x3344", "words VW100*2 = 22114433");
    row("VW100:u32=0x11223344", "dwords VW100*1 = 22114433");
    row("VD100=0x11223344", "dwords VD100*1 = 44332211");
    row("VD100:u16=0x1122,0x3344", "words VD100*2 = 44332211");
    row("VD100:u8=1,2,3,4", "bytes VD100*4 = 04030201");
    row("VD100:hex=11223344", "dwords VD100*1 = 44332211");
    row("VD100:f32=1", "dwords VD100*1 = 0000803f");
    row("AQW2=-2", "words AQW2*1 = feff");
    row("T37=300", "words T37*1 = 2c01");
    row("C5=5,6", "words C5*2 = 05000600");
    row("HC0=1", "dwords HC0*1 = 01000000");
    row("T37:bool=1", "bits T37*1 = 01");
    row("V10.6=1,0,1", "bits V10.6*3 = 010001");

    row("VD100:u64=0x1122334455667788", "dwords VD100*2 = 4433221188776655");
    row("VB100:u64=0x1122334455667788", "dwords VB100*2 = 1122334455667788");
    row("VD100:u32:swap=0x11223344", "dwords VD100*1 = 22114433");
    row("VB100:string*20=Hi", "bytes VB100*3 = 024869");
    row("VB100:string*20=\"\"", "bytes VB100*1 = 00");
    row("VW100:string*20=Hi", "bytes VB100*3 = 024869");
    row("VW100:string*20=One", "bytes VW100*4 = 4f03656e");
    row("VW0..VW2=0x1122,0x3344", "words VW0*2 = 22114433");

    // Not a whole number of the address's elements: nothing but the named bytes.
    row("VW100:u8=1", "bytes VB100*1 = 01");
    row("VW100:u8=1,2,3", "bytes VB100*3 = 010203");
    row("VD100:u16=0x1122", "words VB100*1 = 1122");
    row("SMW28:str=abc", "bytes SMB28*3 = 616263");
}

void TestWritePlan::valuesGoInTheOrderThatTheAddressAsksFor()
{
    const Assignment assignment = parseAssignment(QTest::currentDataTag());
    QTEST(planText(assignment.tag.item, assignment.data), "plan");
}

void TestWritePlan::longItemsAreSplitIntoWhatOneFrameCarries_data()
{
    QTest::addColumn<QString>("commands");
    const auto row = [](const char *item, const char *commands) { QTest::newRow(item) << QString(commands); };
    // 240 bytes of PDU less 28 are 212: 106 words, 53 double words.
    row("VB0*212", "bytes VB0*212");
    row("VB0*213", "bytes VB0*212, bytes VB212*1");
    row("VW0*107", "words VW0*106, words VW212*1");
    row("VD0*107", "dwords VD0*53, dwords VD212*53, dwords VD424*1");
    row("VD0:u8*216", "bytes VD0*212, bytes VD212*4");
    row("VB1:u32*54", "dwords VB1*53, dwords VB213*1");
    row("VB1:u64*27", "dwords VB1*52, dwords VB209*2");
    row("VB0:string*212", "bytes VB0*212, bytes VB212*1");
    row("AQW0*107", "words AQW0*106, words AQW212*1");

    // Records of 5 and 3 bytes.
    row("T0*43", "words T0*42, words T42*1");
    row("C0*71", "words C0*70, words C70*1");

    // 18 bytes for each bit, 11 for all: 12 bits.
    row("V10.0*12", "bits V10.0*12");
    row("V10.0*13", "bits V10.0*12, bits V11.4*1");
    row("V10.5*27", "bits V10.5*12, bits V12.1*12, bits V13.5*3");
}

void TestWritePlan::longItemsAreSplitIntoWhatOneFrameCarries()
{
    QTEST(commandsText(QTest::currentDataTag()), "commands");
}

void TestWritePlan::noByteIsLostOrDoubledWhereItemsAreSplit_data()
{
    QTest::addColumn<int>("requests");
    QTest::newRow("VB0*1000") << 5;
    QTest::newRow("VB0:u16*300") << 3;
    QTest::newRow("VB0:u64*60") << 3;
    QTest::newRow("VB0:string*254") << 2;
    QTest::newRow("C0*200") << 3;
    QTest::newRow("V0.0*100") << 9;
}

void TestWritePlan::noByteIsLostOrDoubledWhereItemsAreSplit()
{
    const Item item = parseItem(QTest::currentDataTag());
    QByteArray data;
    for (int i = 0; i < item.size(); ++i)
        data += char(item.type == ValueType::Bool ? i % 3 == 0 : i % 251);
    QByteArray joined;
    const QList<WriteRequest> requests = planWrite(item, data);
    for (const WriteRequest &request : requests)
        joined += request.data;
    if (item.address.isObject())
        for (int i = 0; i + 1 < joined.size(); i += 2)
            std::swap(joined.data()[i], joined.data()[i + 1]);
    QTEST(int(requests.size()), "requests");
    QCOMPARE(hex(joined), hex(data));
}

void TestWritePlan::bitsGoOnAcrossBytesAndRequests()
{
    const Assignment assignment = parseAssignment("M0.7=1,0,0,0,0,0,0,0,0,0,0,1,1,0");
    QCOMPARE(planText(assignment.tag.item, assignment.data),
             QString("bits M0.7*12 = 010000000000000000000001, bits M2.3*2 = 0100"));
}

void TestWritePlan::aRawAddressIsWrittenInOneRequest()
{
    const auto plan = [](const char *text) {
        const Assignment assignment = parseAssignment(text, Notation::Raw);
        return planText(assignment.tag.item, assignment.data);
    };
    QCOMPARE(plan("T1:i32=250"), QString("dwords T1*1 = fa000000"));
    QCOMPARE(plan("40001:u16=1,0x203"), QString("words 40001*2 = 01000302"));
    QCOMPARE(plan("name:str=abc"), QString("bytes name*3 = 616263"));
    QCOMPARE(plan("on:bool=1"), QString("bits on*1 = 01"));
}

TEST_CLASS(TestWritePlan)
#include "test_write_plan.moc"
