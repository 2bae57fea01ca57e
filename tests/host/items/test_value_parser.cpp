// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Values of the command line as the controller's bytes.

#include "host/items/value_parser.h"

#include "hex.h"
#include "host/items/value.h"
#include "test_class.h"
#include "tests/host/support/refused_text.h"

#include <QtTest>

using namespace host;

namespace {

// "VB0=300": the item and its values.
void encodeAssigned(const QString &text)
{
    encodeValues(parseItem(text.section('=', 0, 0)), text.section('=', 1));
}

} // namespace

class TestValueParser : public QObject
{
    Q_OBJECT

private slots:
    void valuesBecomeBytes_data();
    void valuesBecomeBytes();
    void whatReadPrintsCanBeWritten_data();
    void whatReadPrintsCanBeWritten();
    void numbersOutOfRangeAreRefusedWithTheNearestOne_data();
    void numbersOutOfRangeAreRefusedWithTheNearestOne();
    void garbageIsRefusedWithWhatCouldBeMeant_data();
    void garbageIsRefusedWithWhatCouldBeMeant();
};

void TestValueParser::valuesBecomeBytes_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("bytesOfItem");
    const auto row = [](const char *item, const char *values, const char *bytesOfItem) {
        QTest::addRow("%s=%s", item, values) << QString(item) << QString(values) << QString(bytesOfItem);
    };
    row("V0.0", "0,1,off,on,false,true", "000100010001");
    row("T37:bool", "on", "01");

    row("VB0", "0,255", "00ff");
    row("VB0", " 1, 2 ,3", "010203");
    row("VB0", "0x10,0X1f,0b101,0B1,007,+5", "101f05010705");
    row("VB0:i8", "-128,127,-1,-0x80,-0b1", "807fff80ff");
    row("VW0", "0,65535,0x1234", "0000ffff1234");
    row("VW0:i16", "-32768,32767,-2", "80007ffffffe");
    row("AIW0", "-2", "fffe");
    row("T37", "300", "012c");
    row("C5:i16", "-1", "ffff");
    row("VD0", "0,4294967295", "00000000ffffffff");
    row("VD0:i32", "-2147483648,2147483647", "800000007fffffff");
    row("VB0:u32", "1", "00000001");
    row("HC0", "100000", "000186a0");

    row("VD0:u64", "0,18446744073709551615", "0000000000000000ffffffffffffffff");
    row("VD0:u64", "9007199254740993,0xfedcba9876543210", "0020000000000001fedcba9876543210");
    row("VW0:i64", "-9223372036854775808,9223372036854775807", "80000000000000007fffffffffffffff");
    row("VB0:i64", "-1,-0", "ffffffffffffffff0000000000000000");
    row("VD0:u32:swap", "1122867,1", "2233001100010000");
    row("VW0:i32:swap", "-2", "fffeffff");
    row("VD0:u64:swap", "0x0011223344556677", "6677445522330011");

    row("VB0:bcd", "0,99,12", "009912");
    row("VW0:bcd", "1234,7,9999", "123400079999");
    row("VD0:bcd", "99999999,0", "9999999900000000");

    row("VB0:hex", "00", "00");
    row("VB0:hex", "11223344", "11223344");
    row("VB0:hex", "11,22aB,FF", "1122abff");
    row("VB0:hex", "0x11,0X22aB", "1122ab");
    row("VW0:hex", "0x1122", "1122");
    row("VW0:hex", "0x11223344,0001", "112233440001");
    row("VW0:hex", "11223344,0001", "112233440001");
    row("VD0:hex", "11223344", "11223344");
    row("T37:hex", "012c", "012c");

    row("VD0:f32", "0,1,-1.5,+2", "000000003f800000bfc0000040000000");
    row("VD0:f32", "1.,.5,-.5", "3f8000003f000000bf000000");
    row("VD0:f32", "1e3,-2E-1,1e+2", "447a0000be4ccccd42c80000");
    row("VD0:f32", "-0,inf,-inf,nan,-nan", "800000007f800000ff8000007fc00000ffc00000");
    row("VD0:f32", "3.1415926535897932384626", "40490fdb");
    row("VD0:f32", "0.0e-99", "00000000");
    row("VD0:f32:swap", "-1.5,1", "0000bfc000003f80");
    row("VD0:f64", "0.1,-1.5,5e-324", "3fb999999999999abff80000000000000000000000000001");
    row("VD0:f64", "1.7976931348623157e308,-inf", "7feffffffffffffffff0000000000000");
    row("VB0:f64:swap", "0.1", "999a999999993fb9");
    // The largest and the smallest numbers, also when they are the nearest ones only.
    row("VD0:f32", "3.4028234663852886e38,3.40282350000000000001e38", "7f7fffff7f7fffff");
    row("VD0:f32", "1e-45,1.4e-45,1.1754944e-38", "000000010000000100800000");
    // Half way between two numbers: to the even one, unless a digit far behind decides.
    row("VD0:f32", "16777217,16777219,16777217.00000000000000001", "4b8000004b8000024b800001");

    row("VB0:str", "Hello", "48656c6c6f");
    row("VB0:str", "\"Hello\"", "48656c6c6f");
    row("VB0:str", "a, b=c", "612c20623d63");
    row("VB0:str", " a ", "206120");
    row("VB0:str", "\"  \"", "2020");
    row("VB0:str", "say \"a\"", "73617920226122");
    row("VB0:str", "\\\"\\\\\\x00\\xe4\\xFF", "225c00e4ff");
    row("VB0:str", "\"\\x410\"", "4130");
    row("VB0:string*20", "Hello", "0548656c6c6f");
    row("VB0:string*5", "\"Hello\"", "0548656c6c6f");
    row("VW0:string*20", "\"\"", "00");
    row("VB0..VB5:string", "a, b=", "05612c20623d");
}

void TestValueParser::valuesBecomeBytes()
{
    QFETCH(QString, item);
    QFETCH(QString, values);
    QString encoded;
    QCOMPARE(failureOf([&] { encoded = hex(encodeValues(parseItem(item), values)); }), QString());
    QTEST(encoded, "bytesOfItem");
}

void TestValueParser::whatReadPrintsCanBeWritten_data()
{
    QTest::addColumn<QString>("data");
    for (const char *item : {"VD0:u64",      "VW0:i64",        "VB0:f64",   "VD0:u64:swap", "VB0:i64:swap",
                             "VW0:f64:swap", "VD0:u32:swap*2", "VB0*8",     "VB0:i8*8",     "VW0*4",
                             "VW0:i16*4",    "VD0*2",          "VD0:i32*2", "VD0:f32*2",    "VB0:hex*8",
                             "VW0:hex*4",    "VD0:hex*2",      "VB0:str*8", "T0*4",         "HC0:i32*2"})
        for (const char *data :
             {"00 01 7f 80 bf fe 22 5c", "3d cc cc cd ff 80 00 00", "00 00 00 01 41 42 43 44"})
            QTest::addRow("%s", item) << QString(data);
    QTest::addRow("VD0:bcd*2") << QString("12 34 56 78 00 00 00 99");
    QTest::addRow("VW0:f32:swap*2") << QString("cc cd 3d cc 00 00 ff 80");
    QTest::addRow("VB0:string*7") << QString("07 34 22 5c 00 ff 41 99");
    QTest::addRow("V0.0*8") << QString("01 00 00 01 01 01 00 00");
}

void TestValueParser::whatReadPrintsCanBeWritten()
{
    QFETCH(QString, data);
    const QByteArray memory = bytes(qPrintable(data));
    const Item item = parseItem(QTest::currentDataTag());
    QStringList texts;
    for (const Value &value : decodeValues(item, memory))
        texts << valueText(value);
    QCOMPARE(hex(encodeValues(item, texts.join(','))), hex(memory));
}

void TestValueParser::numbersOutOfRangeAreRefusedWithTheNearestOne_data()
{
    addRefusedTexts();
    refused("VB0=256", "256 is too large for u8: 0 to 255", "the nearest value is 255");
    refused("VB0=0x100", "0x100 is too large for u8: 0 to 255", "the nearest value is 255");
    refused("VB0=99999999999999999999999", "99999999999999999999999 is too large for u8: 0 to 255",
            "the nearest value is 255");
    refused("VB0=-1", "-1 is too small for u8: 0 to 255", "the nearest value is 0; for -1 there is i8");
    refused("VB0=-99999999999999999999999", "-99999999999999999999999 is too small for u8: 0 to 255",
            "the nearest value is 0");
    refused("VB0:i8=128", "128 is too large for i8: -128 to 127", "the nearest value is 127");
    refused("VB0:i8=-129", "-129 is too small for i8: -128 to 127", "the nearest value is -128");
    refused("VW0=65536", "65536 is too large for u16: 0 to 65535", "the nearest value is 65535");
    refused("T37=-2", "-2 is too small for u16: 0 to 65535", "the nearest value is 0; for -2 there is i16");
    refused("VW0:i16=32768", "32768 is too large for i16: -32768 to 32767", "the nearest value is 32767");
    refused("AQW0=-32769", "-32769 is too small for i16: -32768 to 32767", "the nearest value is -32768");
    refused("VD0=4294967296", "4294967296 is too large for u32: 0 to 4294967295",
            "the nearest value is 4294967295");
    refused("VD0:i32=2147483648", "2147483648 is too large for i32: -2147483648 to 2147483647",
            "the nearest value is 2147483647");
    refused("VD0:i32=-2147483649", "-2147483649 is too small for i32: -2147483648 to 2147483647",
            "the nearest value is -2147483648");
    refused("VD0:u64=18446744073709551616",
            "18446744073709551616 is too large for u64: 0 to 18446744073709551615",
            "the nearest value is 18446744073709551615");
    refused("VD0:u64=-5", "-5 is too small for u64: 0 to 18446744073709551615",
            "the nearest value is 0; for -5 there is i8");
    refused("VD0:i64=9223372036854775808",
            "9223372036854775808 is too large for i64: -9223372036854775808 to 9223372036854775807",
            "the nearest value is 9223372036854775807");
    refused("VD0:i64=-9223372036854775809",
            "-9223372036854775809 is too small for i64: -9223372036854775808 to 9223372036854775807",
            "the nearest value is -9223372036854775808");
    refused("VD0=-2147483649", "-2147483649 is too small for u32: 0 to 4294967295",
            "the nearest value is 0; for -2147483649 there is i64");
    refused("VD0:f64=1e309",
            "1e309 is too large for f64: -1.7976931348623157e+308 to 1.7976931348623157e+308",
            "the nearest value is 1.7976931348623157e+308");
    refused("VD0:f64=-1e-400", "-1e-400 is too near to 0 for f64", "the nearest value is 0");
    refused("VB0:string*3=Hello", "the text has 5 characters, and the string has room for 3",
            "shorten it; what stands behind * is the room that the program gives the string");
    refused("VB0:bcd=100", "100 is too large for bcd: 0 to 99", "the nearest value is 99");
    refused("VB0:bcd=-3", "-3 is too small for bcd: 0 to 99", "the nearest value is 0");
    refused("VW0:bcd=10000", "10000 is too large for bcd: 0 to 9999", "the nearest value is 9999");
    refused("VD0:bcd=100000000", "100000000 is too large for bcd: 0 to 99999999",
            "the nearest value is 99999999");
    refused("VD0:f32=3.4028236e38", "3.4028236e38 is too large for f32: -3.4028235e+38 to 3.4028235e+38",
            "the nearest value is 3.4028235e+38");
    refused("VD0:f32=-1e999", "-1e999 is too small for f32: -3.4028235e+38 to 3.4028235e+38",
            "the nearest value is -3.4028235e+38");
    refused("VD0:f32=7e-46", "7e-46 is too near to 0 for f32", "the nearest value is 0");
    refused("VD0:f32=-1e-400", "-1e-400 is too near to 0 for f32", "the nearest value is 0");
}

void TestValueParser::numbersOutOfRangeAreRefusedWithTheNearestOne()
{
    compareRefusal(encodeAssigned);
}

void TestValueParser::garbageIsRefusedWithWhatCouldBeMeant_data()
{
    addRefusedTexts();
    const QString wholeHint = "whole numbers are written 10, -10, 0x0a or 0b1010, with commas between";
    const QString floatHint = "numbers are written 1.5, -2e3, inf or nan";
    const QString hexHint = "hex is 2 digits for each value of VB0, as 0x1a";
    const QString escapeHint = "write \\\\ for \\, \\\" for \" and \\xNN for any other byte";

    refused("V0.0=", "\"\" is not a bit", "bits are 0 off false and 1 on true");
    refused("V0.0=2", "\"2\" is not a bit", "bits are 0 off false and 1 on true");
    refused("V0.0=1,,0", "\"\" is not a bit", "bits are 0 off false and 1 on true");
    refused("V0.0=ON", "\"ON\" is not a bit", "write on instead of ON");
    refused("V0.0=True", "\"True\" is not a bit", "write true instead of True");

    refused("VB0=", "\"\" is not a whole number", wholeHint);
    refused("VB0=1,", "\"\" is not a whole number", wholeHint);
    refused("VB0=1 2", "\"1 2\" is not a whole number", wholeHint);
    refused("VB0=12x", "\"12x\" is not a whole number", wholeHint);
    refused("VB0=0x", "\"0x\" is not a whole number", wholeHint);
    refused("VB0=fff", "\"fff\" is not a whole number", wholeHint);
    refused("VB0=16#100", "\"16#100\" is not a whole number", wholeHint);
    refused("VW0=fff", "\"fff\" is not a whole number", "write 0xfff instead of fff");
    refused("VB0=--1", "\"--1\" is not a whole number", wholeHint);
    refused("VB0=1e2", "\"1e2\" is not a whole number", wholeHint);
    refused("VW0=1e2", "\"1e2\" is not a whole number", "write 0x1e2 instead of 1e2");
    refused("VB0=ff", "\"ff\" is not a whole number", "write 0xff instead of ff");
    refused("VW0=16#12Ab", "\"16#12Ab\" is not a whole number", "write 0x12Ab instead of 16#12Ab");
    refused("VB0=2#101", "\"2#101\" is not a whole number", "write 0b101 instead of 2#101");
    refused("VB0=1.5", "\"1.5\" is not a whole number",
            "this type holds whole numbers; fractions need f32 or f64");
    refused("VB0:bcd=1a", "\"1a\" is not a whole number", "write 0x1a instead of 1a");

    refused("VD0:f32=", "\"\" is not a number", floatHint);
    refused("VD0:f32=.", "\".\" is not a number", floatHint);
    refused("VD0:f32=1e", "\"1e\" is not a number", floatHint);
    refused("VD0:f32=0x10", "\"0x10\" is not a number", floatHint);
    refused("VD0:f32=infinity", "\"infinity\" is not a number", floatHint);
    refused("VD0:f32=1.5.2", "\"1.5.2\" is not a number", floatHint);

    refused("VB0:hex=", "\"\" is not a row of bytes in hex", hexHint);
    refused("VB0:hex=1", "\"1\" is not a row of bytes in hex", hexHint);
    refused("VB0:hex=11 22", "\"11 22\" is not a row of bytes in hex", hexHint);
    refused("VB0:hex=1g", "\"1g\" is not a row of bytes in hex", hexHint);
    refused("VB0:hex=0x", "\"0x\" is not a row of bytes in hex", hexHint);
    refused("VB0:hex=0x1", "\"0x1\" is not a row of bytes in hex", hexHint);
    refused("VB0:hex=0x0x12", "\"0x0x12\" is not a row of bytes in hex", hexHint);
    refused("VW0:hex=112233", "\"112233\" is no whole number of values",
            "hex is 4 digits for each value of VW0, as 0x1a2b");
    refused("VD0:hex=1122", "\"1122\" is no whole number of values",
            "hex is 8 digits for each value of VD0, as 0x1a2b3c4d");

    refused("VB0:str=", "the text is empty", "a text is one character or more; \\x00 is the character 0");
    refused("VB0:str=\"\"", "the text is empty", "a text is one character or more; \\x00 is the character 0");
    refused("VB0:string*3=", "the text is empty",
            "write \"\", with the quotes, for a string without a character");
    refused("VB0:str=\"", "the quotes do not stand around the whole text",
            "write \\\" for a quote within it");
    refused("VB0:str=\"ab", "the quotes do not stand around the whole text",
            "write \\\" for a quote within it");
    refused("VB0:str=\"a\"b\"", "the quotes do not stand around the whole text",
            "write \\\" for a quote within it");
    refused("VB0:str=\\n", "\\n means nothing", escapeHint);
    refused("VB0:str=a\\x4", "\\x means nothing", escapeHint);
    refused("VB0:str=a\\", "\\ means nothing", escapeHint);
    refused("VB0:str=\xc3\xa4", "\xc3\xa4 is no character of plain ASCII",
            "write other characters as the bytes that the display shows them for, \\xNN each");
}

void TestValueParser::garbageIsRefusedWithWhatCouldBeMeant()
{
    compareRefusal(encodeAssigned);
}

TEST_CLASS(TestValueParser)
#include "test_value_parser.moc"
