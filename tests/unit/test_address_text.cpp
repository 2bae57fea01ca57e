// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "guarded_bytes.h"
#include "test_class.h"
#include "tools/address_text.h"

#include <QtTest>

#include <climits>

class TestAddressText : public QObject
{
    Q_OBJECT

private slots:
    void prefixIsTheLeadingLetters_data();
    void prefixIsTheLeadingLetters();
    void prefixHasAsciiLettersOnly();
    void prefixEndsAtAZeroByte();
    void numberBeginsAtTheFirstDigitOfTheBase_data();
    void numberBeginsAtTheFirstDigitOfTheBase();
    void numberOfAnyOtherBaseIsMinusOne_data();
    void numberOfAnyOtherBaseIsMinusOne();
    void numberEndsWithItsArray();
    void otherCharactersAreNoDigits();
    void hexadecimalTextIsRead_data();
    void hexadecimalTextIsRead();
    void hexadecimalTextNeedsNoEnd();
};

void TestAddressText::prefixIsTheLeadingLetters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("prefix");
    const auto row = [](const char *name, const char *text, const char *prefix) {
        QTest::newRow(name) << text << prefix;
    };
    row("VW100", "VW100", "VW");
    row("VB100", "VB100", "VB");
    row("SMB28", "SMB28", "SMB");
    row("V10.3", "V10.3", "V");
    row("HC0", "HC0", "HC");
    row("100", "100", "");
    row("empty", "", "");
    row("only letters", "AIW", "AIW");
    row("lower case stays", "vb100", "vb");
    row("underscores", "_A_b1", "_A_b");
    row("later letters", "V1B", "V");
    row("blank first", " V1", "");
    row("A and Z", "AZaz5", "AZaz");
    row("below A", "A@", "A");
    row("above Z", "Z[", "Z");
    row("below a", "a`", "a");
    row("above z", "z{", "z");
}

void TestAddressText::prefixIsTheLeadingLetters()
{
    QFETCH(QString, text);
    QFETCH(QString, prefix);
    QCOMPARE(ExtractPrefixSymbol(text), prefix.toLatin1());
    QCOMPARE(ExtractPrefixSymbol(text.toLatin1()), prefix.toLatin1());
}

// 0xC4 is a letter in Latin-1.
void TestAddressText::prefixHasAsciiLettersOnly()
{
    QCOMPARE(ExtractPrefixSymbol(QByteArray("V\xC4"
                                            "B1")),
             QByteArray("V"));
    QCOMPARE(ExtractPrefixSymbol(QByteArray("\xFF"
                                            "B1")),
             QByteArray());
    QCOMPARE(ExtractPrefixSymbol(QString(QChar(0x00C4)) + QString("B1")), QByteArray());
    QCOMPARE(ExtractPrefixSymbol(QString("V") + QChar(0x0142) + QString("1")), QByteArray("V"));
    QCOMPARE(ExtractPrefixSymbol(QString("V") + QChar(0x0142 + 0x4100) + QString("1")), QByteArray("V"));
}

void TestAddressText::prefixEndsAtAZeroByte()
{
    QCOMPARE(ExtractPrefixSymbol(QByteArray("V\0B1", 4)), QByteArray("V"));
}

void TestAddressText::numberBeginsAtTheFirstDigitOfTheBase_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("base");
    QTest::addColumn<int>("number");
    QTest::newRow("VB100") << "VB100" << 10 << 100;
    QTest::newRow("VB100, prefix letter is a digit") << "VB100" << 16 << 0xB100;
    QTest::newRow("DB10, prefix is all digits") << "DB10" << 16 << 0xDB10;
    QTest::newRow("vb1f, lower case") << "vb1f" << 16 << 0xB1F;
    QTest::newRow("T1F") << "T1F" << 16 << 0x1F;
    QTest::newRow("G1, letters behind F are skipped") << "Gg1" << 16 << 1;
    QTest::newRow("I17, octal") << "I17" << 8 << 15;
    QTest::newRow("I97, octal begins at 7") << "I97" << 8 << 7;
    QTest::newRow("I87, 8 is no octal digit") << "I87" << 8 << 7;
    QTest::newRow("Va7, a is no decimal digit") << "Va7" << 10 << 7;
    QTest::newRow("I18, no octal number") << "I18" << 8 << 0;
    QTest::newRow("37") << "37" << 10 << 37;
    QTest::newRow("V007") << "V007" << 10 << 7;
    QTest::newRow("V-5, the sign is skipped") << "V-5" << 10 << 5;
    QTest::newRow("no digit") << "VB" << 10 << 0;
    QTest::newRow("empty") << "" << 10 << 0;
    QTest::newRow("empty, hexadecimal") << "" << 16 << 0;
    QTest::newRow("dot behind") << "V10.3" << 10 << 0;
    QTest::newRow("letter behind") << "V10A" << 10 << 0;
    QTest::newRow("blank behind") << "V10 " << 10 << 0;
    QTest::newRow("tabulator behind") << "V10\t" << 10 << 0;
    QTest::newRow("newline behind, hexadecimal") << "V10\n" << 16 << 0;
    QTest::newRow("blank between") << "V1 0" << 10 << 0;
    QTest::newRow("blank in front is skipped") << "V 10" << 10 << 10;
    QTest::newRow("highest") << "V2147483647" << 10 << INT_MAX;
    QTest::newRow("one more") << "V2147483648" << 10 << 0;
    QTest::newRow("hexadecimal, no int") << "V80000000" << 16 << 0;
    QTest::newRow("0x in front of hexadecimal digits") << "V0x1F" << 16 << 0x1F;
    QTest::newRow("0x without hexadecimal digits") << "V0x" << 16 << 0;
    QTest::newRow("0x in front of decimal digits") << "V0x1F" << 10 << 0;
    QTest::newRow("highest, octal") << "V17777777777" << 8 << INT_MAX;
    QTest::newRow("one more, octal") << "V20000000000" << 8 << 0;
}

void TestAddressText::numberBeginsAtTheFirstDigitOfTheBase()
{
    QFETCH(QString, text);
    QFETCH(int, base);
    QFETCH(int, number);
    QCOMPARE(ExtractPLCDeviceAddress(text, base), number);
    QCOMPARE(ExtractPLCDeviceAddress(text.toLatin1(), base), number);
}

void TestAddressText::numberOfAnyOtherBaseIsMinusOne_data()
{
    QTest::addColumn<int>("base");
    QTest::newRow("2") << 2;
    QTest::newRow("0") << 0;
    QTest::newRow("-10") << -10;
    QTest::newRow("36") << 36;
    QTest::newRow("beyond what toInt knows") << 37;
}

void TestAddressText::numberOfAnyOtherBaseIsMinusOne()
{
    QFETCH(int, base);
    QCOMPARE(ExtractPLCDeviceAddress(QString("VB100"), base), -1);
    QCOMPARE(ExtractPLCDeviceAddress(QByteArray("VB100"), base), -1);
    QCOMPARE(ExtractPLCDeviceAddress(QByteArray(), base), -1);
}

void TestAddressText::numberEndsWithItsArray()
{
    QCOMPARE(ExtractPLCDeviceAddress(QByteArray::fromRawData("1234", 2), 10), 12);
    QCOMPARE(ExtractPLCDeviceAddress(QByteArray::fromRawData("V1234", 3), 10), 12);
}

void TestAddressText::otherCharactersAreNoDigits()
{
    QCOMPARE(ExtractPLCDeviceAddress(QString("V") + QChar(0x0661) + QString("7"), 10), 7);
    QCOMPARE(ExtractPLCDeviceAddress(QString("V7") + QChar(0x0661), 10), 0);
    QCOMPARE(ExtractPLCDeviceAddress(QString("V7") + QChar(0x00A0), 10), 0);
}

void TestAddressText::hexadecimalTextIsRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("length");
    QTest::addColumn<uint>("value");
    QTest::newRow("0x1A") << "0x1A" << 4 << 26u;
    QTest::newRow("0X1a") << "0X1a" << 4 << 26u;
    QTest::newRow("0x1A, cut") << "0x1A" << 3 << 1u;
    QTest::newRow("0x1A, prefix only") << "0x1A" << 2 << 0u;
    QTest::newRow("0x1A, half a prefix") << "0x1A" << 1 << 0u;
    QTest::newRow("0x") << "0x" << 10 << 0u;
    QTest::newRow("0") << "0" << 1 << 0u;
    QTest::newRow("012") << "012" << 3 << 0x12u;
    QTest::newRow("1G") << "1G" << 2 << 0u;
    QTest::newRow("1G, cut") << "1G" << 1 << 1u;
    QTest::newRow("all digits") << "89abcdef" << 8 << 0x89ABCDEFu;
    QTest::newRow("all capitals") << "01ABCDEF" << 8 << 0x01ABCDEFu;
    QTest::newRow("text ends first") << "12" << 99 << 0x12u;
    QTest::newRow("only the last 8 digits stay") << "123456789" << 9 << 0x23456789u;
    QTest::newRow("prefix after a zero") << "00x1" << 4 << 0u;
    QTest::newRow("two prefixes") << "0x0x1" << 5 << 0u;
    QTest::newRow("x without 0") << "x1" << 2 << 0u;
    QTest::newRow("blank") << "1 " << 2 << 0u;
    QTest::newRow("sign") << "-1" << 2 << 0u;
    QTest::newRow("empty") << "" << 5 << 0u;
    QTest::newRow("no length") << "12" << 0 << 0u;
    QTest::newRow("negative length") << "12" << -1 << 0u;
}

void TestAddressText::hexadecimalTextIsRead()
{
    QFETCH(QString, text);
    QFETCH(int, length);
    QFETCH(uint, value);
    QCOMPARE(HexToUInt(text.toLatin1().constData(), length), value);
}

void TestAddressText::hexadecimalTextNeedsNoEnd()
{
    const GuardedBytes zero("0");
    const GuardedBytes threes("33");
    const GuardedBytes prefix("0x");
    QCOMPARE(HexToUInt(zero.text(), 1), 0u);
    QCOMPARE(HexToUInt(threes.text(), 2), 0x33u);
    QCOMPARE(HexToUInt(prefix.text(), 2), 0u);
    QCOMPARE(HexToUInt(zero.text() + 1, 0), 0u);
}

TEST_CLASS(TestAddressText)
#include "test_address_text.moc"
