// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Bytes of the controller as values and as text.

#include "host/items/value.h"

#include "hex.h"
#include "host/items/tag.h"
#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

using namespace host;

namespace {

QString textOf(const QString &itemText, const char *data)
{
    const Item item = parseItem(itemText);
    QStringList texts;
    for (const Value &value : decodeValues(item, bytes(data)))
        texts << valueText(value);
    return texts.join(' ');
}

} // namespace

class TestValue : public QObject
{
    Q_OBJECT

private slots:
    void bytesBecomeValues_data();
    void bytesBecomeValues();
    void digitsBeyondNineAreNotBcd();
    void aLengthBeyondTheRoomIsNoString();
    void valuesOfSeveralItemsStandInOneColumn();
};

void TestValue::bytesBecomeValues_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *item, const char *data, const char *text) {
        QTest::addRow("%s of %s", item, data) << QString(item) << QString(data) << QString(text);
    };
    row("V0.0*3", "01 00 01", "1 0 1");
    row("VB0", "00", "0");
    row("VB0", "ff", "255");
    row("VB0:i8*3", "7f 80 ff", "127 -128 -1");
    row("VW0", "12 34", "4660");
    row("VW0:i16*2", "7f ff 80 00", "32767 -32768");
    row("VB0:u16*2", "00 01 01 00", "1 256");
    row("VD0", "ff ff ff ff", "4294967295");
    row("VD0:i32*2", "ff ff ff ff 80 00 00 00", "-1 -2147483648");
    row("HC0", "00 01 86 a0", "100000");
    row("T37", "01 2c", "300");
    row("VD0:f32", "3f 80 00 00", "1");
    row("VD0:f32", "bf c0 00 00", "-1.5");
    row("VD0:f32", "40 49 0f db", "3.1415927");
    row("VD0:f32", "3d cc cc cd", "0.1");
    row("VD0:f32", "80 00 00 00", "-0");
    row("VD0:f32", "7f 7f ff ff", "3.4028235e+38");
    row("VD0:f32", "00 00 00 01", "1e-45");
    row("VD0:f32", "7f 80 00 00", "inf");
    row("VD0:f32", "7f c0 00 00", "nan");
    row("VD0:u64", "ff ff ff ff ff ff ff ff", "18446744073709551615");
    row("VB0:u64*2", "00 20 00 00 00 00 00 01 00 00 00 00 00 00 00 07", "9007199254740993 7");
    row("VW0:i64*2", "80 00 00 00 00 00 00 00 ff ff ff ff ff ff ff ff", "-9223372036854775808 -1");
    row("VD0:f64", "3f b9 99 99 99 99 99 9a", "0.1");
    row("VD0:f64", "3f d5 55 55 55 55 55 55", "0.3333333333333333");
    row("VD0:f64", "7f ef ff ff ff ff ff ff", "1.7976931348623157e+308");
    row("VD0:f64", "00 00 00 00 00 00 00 01", "5e-324");
    row("VD0:f64", "80 00 00 00 00 00 00 00", "-0");
    row("VD0:f64*2", "ff f0 00 00 00 00 00 00 7f f8 00 00 00 00 00 00", "-inf nan");
    row("VD0:u32:swap*2", "22 33 00 11 00 01 00 00", "1122867 1");
    row("VW0:i32:swap", "ff fe ff ff", "-2");
    row("VD0:f32:swap", "00 00 bf c0", "-1.5");
    row("VD0:u64:swap", "66 77 44 55 22 33 00 11", "4822678189205111");
    row("VB0:f64:swap", "99 9a 99 99 99 99 3f b9", "0.1");
    row("VB0:hex*4", "11 22 ab ff", "0x11 0x22 0xab 0xff");
    row("VW0:hex*2", "11 22 ab ff", "0x1122 0xabff");
    row("VD0:hex", "11 22 ab ff", "0x1122abff");
    row("VB0:bcd*2", "00 99", "0 99");
    row("VW0:bcd", "20 26", "2026");
    row("VD0:bcd", "99 99 99 99", "99999999");
    row("VB0:str*5", "48 65 6c 6c 6f", "\"Hello\"");
    row("VB0:str*4", "22 5c 00 e4", "\"\\\"\\\\\\x00\\xe4\"");
    row("VB0:str*2", "20 20", "\"  \"");
    row("VB0:string*5", "05 48 65 6c 6c 6f", "\"Hello\"");
    row("VB0:string*5", "02 48 69 6c 6c 6f", "\"Hi\"");
    row("VB0:string*5", "00 48 69 6c 6c 6f", "\"\"");
    row("VW0:string*2", "02 22 00", "\"\\\"\\x00\"");
}

void TestValue::bytesBecomeValues()
{
    QFETCH(QString, item);
    QFETCH(QString, data);
    QTEST(textOf(item, qPrintable(data)), "text");
}

void TestValue::digitsBeyondNineAreNotBcd()
{
    QCOMPARE(failureOf([] { textOf("VW0:bcd*2", "12 34 00 1a"); }),
             QString("2: 0x001a is not BCD / read it with :hex to see what it is"));
}

void TestValue::aLengthBeyondTheRoomIsNoString()
{
    QCOMPARE(
        failureOf([] { textOf("VB0:string*3", "04 48 65 6c"); }),
        QString("2: the length byte is 4, and the string has room for 3 characters / name the room that the "
                "program gives it, or read its bytes with :hex to see what they are"));
    QCOMPARE(textOf("VB0:string*3", "03 48 65 6c"), QString("\"Hel\""));
    try {
        textOf("VB0:string*3", "ff 48 65 6c");
        QFAIL("a length of 255 was taken");
    } catch (const Failure &failure) {
        QCOMPARE(causeWord(failure.cause()), QString("not_string"));
    }
}

void TestValue::valuesOfSeveralItemsStandInOneColumn()
{
    const Item shortItem = parseItem("T1");
    const Item longItem = parseItem("V100.3*2");
    const TextLines lines({shortItem, longItem});
    QCOMPARE(lines.text(shortItem, decodeValues(shortItem, bytes("01 2c"))), QString("T1     300"));
    QCOMPARE(lines.text(longItem, decodeValues(longItem, bytes("01 00"))), QString("V100.3 1 0"));
}

TEST_CLASS(TestValue)
#include "test_value.moc"
