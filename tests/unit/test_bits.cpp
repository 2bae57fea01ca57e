// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "guarded_bytes.h"
#include "hex.h"
#include "short_memory.h"
#include "test_class.h"
#include "tools/bits.h"

#include <QtTest>

#include <climits>

namespace {

QByteArray withBit(const char *array, int i, bool on)
{
    QByteArray bits = bytes(array);
    setBit(bits, i, on);
    return bits;
}

QByteArray shifted(const char *array, int n)
{
    QByteArray bits = bytes(array);
    RightShiftNBits(bits, n);
    return bits;
}

QByteArray copied(const char *to, const char *from, int destStart, int count)
{
    QByteArray dest = bytes(to);
    QByteArray src = bytes(from);
    CopyBits(dest, src, destStart, count);
    return dest;
}

} // namespace

class TestBits : public QObject
{
    Q_OBJECT

private slots:
    void bitsOfAByte();
    void bitsOfAShort();
    void bitsOfAnInt();
    void valueHasNoBitsBeyondItsWidth();
    void bitOfAnArrayIsCountedFromTheLowestOfTheFirstByte_data();
    void bitOfAnArrayIsCountedFromTheLowestOfTheFirstByte();
    void bitOutsideAnArrayIsFalse();
    void setBitSetsAndClears();
    void setBitGrowsTheArrayWithZeros();
    void setBitAtANegativeIndexSetsNothing();
    void setBitLeavesTheArrayWhenMemoryIsShort();
    void setBitDoesNotTouchACopy();
    void setBitOfABuffer();
    void bitDataIsTheLowestBit();
    void unnecessaryBitsAreClearedInOneByte_data();
    void unnecessaryBitsAreClearedInOneByte();
    void expandedBitsAreOneByteEach_data();
    void expandedBitsAreOneByteEach();
    void expandedBitsStayInTheirArray_data();
    void expandedBitsStayInTheirArray();
    void expandingReadsNoByteBehindTheBits_data();
    void expandingReadsNoByteBehindTheBits();
    void expandingIsEmptyWhenMemoryIsShort();
    void copiedBitsComeFromTheStartOfTheSource_data();
    void copiedBitsComeFromTheStartOfTheSource();
    void copyingLeavesTheSource();
    void copyingIntoItselfGoesBitByBit();
    void copyingDoesNothingWhenMemoryIsShort();
    void copyingToTheLastPossibleBitIsNoOverflow();
    void shiftKeepsWholeBytesAtTheEnd_data();
    void shiftKeepsWholeBytesAtTheEnd();
};

void TestBits::bitsOfAByte()
{
    const unsigned char value = 0x81;
    QCOMPARE(int(setBit(value, 1)), 0x83);
    QCOMPARE(int(setBit(value, 7)), 0x81);
    QCOMPARE(int(clearBit(value, 7)), 0x01);
    QCOMPARE(int(clearBit(value, 1)), 0x81);
    QCOMPARE(getBit(value, 0), true);
    QCOMPARE(getBit(value, 1), false);
    QCOMPARE(getBit(value, 7), true);
}

void TestBits::bitsOfAShort()
{
    const unsigned short value = 0x8001;
    QCOMPARE(int(setBit(value, 8)), 0x8101);
    QCOMPARE(int(clearBit(value, 15)), 0x0001);
    QCOMPARE(getBit(value, 15), true);
    QCOMPARE(getBit(value, 14), false);
}

void TestBits::bitsOfAnInt()
{
    const unsigned int value = 0x80000001u;
    QCOMPARE(setBit(value, 16), 0x80010001u);
    QCOMPARE(clearBit(value, 31), 0x00000001u);
    QCOMPARE(getBit(value, 31), true);
    QCOMPARE(getBit(value, 30), false);
}

void TestBits::valueHasNoBitsBeyondItsWidth()
{
    const unsigned char byte = 0xFF;
    const unsigned short word = 0xFFFF;
    const unsigned int doubleWord = 0xFFFFFFFFu;
    QCOMPARE(int(setBit(static_cast<unsigned char>(0), 8)), 0);
    QCOMPARE(int(setBit(static_cast<unsigned short>(0), 16)), 0);
    QCOMPARE(setBit(0u, 32), 0u);
    QCOMPARE(setBit(0u, 65535), 0u);
    QCOMPARE(int(clearBit(byte, 8)), 0xFF);
    QCOMPARE(int(clearBit(word, 16)), 0xFFFF);
    QCOMPARE(clearBit(doubleWord, 32), 0xFFFFFFFFu);
    QVERIFY(!getBit(byte, 8));
    QVERIFY(!getBit(word, 16));
    QVERIFY(!getBit(doubleWord, 32));
}

void TestBits::bitOfAnArrayIsCountedFromTheLowestOfTheFirstByte_data()
{
    QTest::addColumn<int>("i");
    QTest::addColumn<bool>("on");
    QTest::newRow("0") << 0 << true;
    QTest::newRow("1") << 1 << false;
    QTest::newRow("6") << 6 << false;
    QTest::newRow("7") << 7 << true;
    QTest::newRow("8") << 8 << false;
    QTest::newRow("10") << 10 << true;
    QTest::newRow("15") << 15 << false;
}

void TestBits::bitOfAnArrayIsCountedFromTheLowestOfTheFirstByte()
{
    QFETCH(int, i);
    QFETCH(bool, on);
    const unsigned char buffer[] = {0x81, 0x04};
    QCOMPARE(getBit(bytes("81 04"), i), on);
    QCOMPARE(getBit(buffer, i), on);
}

void TestBits::bitOutsideAnArrayIsFalse()
{
    const unsigned char buffer[] = {0xFF};
    QVERIFY(!getBit(bytes("ff ff"), 16));
    QVERIFY(!getBit(QByteArray::fromRawData("\xff\xff\xff", 2), 16));
    QVERIFY(!getBit(bytes("ff ff"), INT_MAX));
    QVERIFY(!getBit(bytes("ff ff"), -1));
    QVERIFY(!getBit(bytes("ff ff"), INT_MIN));
    QVERIFY(!getBit(QByteArray(), 0));
    QVERIFY(!getBit(buffer, -1));
    QVERIFY(!getBit(buffer, INT_MIN));
}

void TestBits::setBitSetsAndClears()
{
    QCOMPARE(hex(withBit("00 00", 0, true)), QString("0100"));
    QCOMPARE(hex(withBit("00 00", 11, true)), QString("0008"));
    QCOMPARE(hex(withBit("ff ff", 7, false)), QString("7fff"));
    QCOMPARE(hex(withBit("ff ff", 15, false)), QString("ff7f"));
    QCOMPARE(hex(withBit("ff ff", 3, true)), QString("ffff"));
}

void TestBits::setBitGrowsTheArrayWithZeros()
{
    QCOMPARE(hex(withBit("", 0, true)), QString("01"));
    QCOMPARE(hex(withBit("ff", 8, true)), QString("ff01"));
    QCOMPARE(hex(withBit("ff", 31, true)), QString("ff000080"));
    QCOMPARE(hex(withBit("ff", 16, false)), QString("ff0000"));
}

void TestBits::setBitAtANegativeIndexSetsNothing()
{
    QCOMPARE(hex(withBit("00", -1, true)), QString("00"));
    QCOMPARE(hex(withBit("ff", -8, false)), QString("ff"));
    QCOMPARE(hex(withBit("00", INT_MIN, true)), QString("00"));
    unsigned char buffer[] = {0x00};
    setBit(buffer, -1, true);
    QCOMPARE(int(buffer[0]), 0);
    unsigned char two[] = {0x00, 0x00};
    setBit(two + 1, -8, true);
    QCOMPARE(int(two[0]), 0);
}

void TestBits::setBitLeavesTheArrayWhenMemoryIsShort()
{
    const ShortMemory shortage;
    QCOMPARE(hex(withBit("0f", INT_MAX, true)), QString("0f"));
}

void TestBits::setBitDoesNotTouchACopy()
{
    QByteArray bits = bytes("00");
    const QByteArray copy = bits;
    setBit(bits, 0, true);
    QCOMPARE(hex(bits), QString("01"));
    QCOMPARE(hex(copy), QString("00"));
}

void TestBits::setBitOfABuffer()
{
    unsigned char buffer[] = {0x00, 0xFF, 0x00};
    setBit(buffer, 7, true);
    setBit(buffer, 8, false);
    QCOMPARE(int(buffer[0]), 0x80);
    QCOMPARE(int(buffer[1]), 0xFE);
    QCOMPARE(int(buffer[2]), 0x00);
}

void TestBits::bitDataIsTheLowestBit()
{
    QVERIFY(getBitData(bytes("01")));
    QVERIFY(getBitData(bytes("ff 00")));
    QVERIFY(!getBitData(bytes("fe 01")));
    QVERIFY(!getBitData(QByteArray()));
}

void TestBits::unnecessaryBitsAreClearedInOneByte_data()
{
    QTest::addColumn<int>("nbits");
    QTest::addColumn<QString>("left");
    QTest::newRow("1") << 1 << "01ffff";
    QTest::newRow("7") << 7 << "7fffff";
    QTest::newRow("8 is a multiple") << 8 << "ffffff";
    QTest::newRow("9, bytes behind stay") << 9 << "ff01ff";
    QTest::newRow("12") << 12 << "ff0fff";
    QTest::newRow("23") << 23 << "ffff7f";
    QTest::newRow("24 is the whole array") << 24 << "ffffff";
    QTest::newRow("25 is beyond") << 25 << "ffffff";
    QTest::newRow("far beyond") << INT_MAX << "ffffff";
    QTest::newRow("0") << 0 << "ffffff";
    QTest::newRow("negative") << -3 << "ffffff";
}

void TestBits::unnecessaryBitsAreClearedInOneByte()
{
    QFETCH(int, nbits);
    QFETCH(QString, left);
    QByteArray bits = bytes("ff ff ff");
    clearUnnecessaryBits(bits, nbits);
    QCOMPARE(hex(bits), left);
}

void TestBits::expandedBitsAreOneByteEach_data()
{
    QTest::addColumn<QString>("bits");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("expanded");
    QTest::newRow("a byte") << "a5" << 0 << 8 << "0100010000010001";
    QTest::newRow("across bytes") << "8001" << 7 << 3 << "010100";
    QTest::newRow("one bit") << "04" << 2 << 1 << "01";
    QTest::newRow("all of two bytes") << "ff00" << 0 << 16 << "01010101010101010000000000000000";
    QTest::newRow("more than eight") << "810f" << 0 << 11 << "0100000000000001010101";
    QTest::newRow("more than eight across bytes") << "40810f" << 6 << 12 << "010001000000000000010101";
    QTest::newRow("beyond the array") << "ff" << 6 << 4 << "01010000";
    QTest::newRow("all beyond") << "ff" << 65535 << 2 << "0000";
    QTest::newRow("empty array") << "" << 0 << 2 << "0000";
    QTest::newRow("no count") << "ff" << 0 << 0 << "";
    QTest::newRow("negative count") << "ff" << 0 << -1 << "";
}

void TestBits::expandedBitsAreOneByteEach()
{
    QFETCH(QString, bits);
    QFETCH(int, start);
    QFETCH(int, count);
    QFETCH(QString, expanded);
    const QByteArray array = QByteArray::fromHex(bits.toLatin1());
    QCOMPARE(hex(ExpandBitsToBytes(array, static_cast<unsigned short>(start), count)), expanded);
}

void TestBits::expandedBitsStayInTheirArray_data()
{
    QTest::addColumn<int>("count");
    for (int count = 1; count <= 17; ++count)
        QTest::newRow(qPrintable(QString("%1 bits").arg(count))) << count;
}

// Bits that are all set, and one byte more than they need.
void TestBits::expandedBitsStayInTheirArray()
{
    QFETCH(int, count);
    const QByteArray expanded = ExpandBitsToBytes(bytes("ff ff ff ff"), 3, count);
    QCOMPARE(expanded, QByteArray(count, '\1'));
    QCOMPARE(int(expanded.constData()[count]), 0);
}

void TestBits::expandingReadsNoByteBehindTheBits_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("expanded");
    QTest::newRow("up to the end") << 0 << 16 << "01010101010101010101010101010101";
    QTest::newRow("from the middle of a byte") << 5 << 11 << "0101010101010101010101";
    QTest::newRow("the last bit") << 15 << 1 << "01";
    QTest::newRow("beyond the end") << 14 << 11 << "0101000000000000000000";
    QTest::newRow("far beyond") << 65535 << 3 << "000000";
}

void TestBits::expandingReadsNoByteBehindTheBits()
{
    QFETCH(int, start);
    QFETCH(int, count);
    QFETCH(QString, expanded);
    const GuardedBytes bits(bytes("ff ff"));
    QCOMPARE(hex(ExpandBitsToBytes(bits.array(), static_cast<unsigned short>(start), count)), expanded);
}

void TestBits::expandingIsEmptyWhenMemoryIsShort()
{
    const ShortMemory shortage;
    QVERIFY(ExpandBitsToBytes(bytes("ff"), 65535, INT_MAX - 100).isEmpty());
}

void TestBits::copiedBitsComeFromTheStartOfTheSource_data()
{
    QTest::addColumn<QString>("dest");
    QTest::addColumn<QString>("src");
    QTest::addColumn<int>("destStart");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("result");
    const auto row = [](const char *name, const char *dest, const char *src, int destStart, int count,
                        const char *result) {
        QTest::newRow(name) << dest << src << destStart << count << result;
    };
    row("whole byte", "00", "a5", 0, 8, "a5");
    row("zeros are copied, too", "ffff", "a5", 4, 8, "5ffa");
    row("grows", "00", "ff", 6, 4, "c003");
    row("grows from nothing", "", "01", 16, 1, "000001");
    row("grows with zeros, too", "ff", "00", 8, 1, "ff00");
    row("beyond the source is 0", "ffff", "ff", 0, 12, "fff0");
    row("empty source", "ff", "", 0, 4, "f0");
    row("no count", "00", "ff", 0, 0, "00");
    row("no count, no growth", "", "ff", 20, 0, "");
    row("negative count", "00", "ff", 0, -1, "00");
    row("begins below bit 0", "00", "0c", -2, 4, "03");
    row("all below bit 0", "00", "ff", -8, 8, "00");
    row("far below bit 0", "00", "ff", INT_MIN, INT_MAX, "00");
}

void TestBits::copiedBitsComeFromTheStartOfTheSource()
{
    QFETCH(QString, dest);
    QFETCH(QString, src);
    QFETCH(int, destStart);
    QFETCH(int, count);
    QFETCH(QString, result);
    QCOMPARE(hex(copied(dest.toLatin1().constData(), src.toLatin1().constData(), destStart, count)), result);
}

void TestBits::copyingLeavesTheSource()
{
    QByteArray dest = bytes("00");
    QByteArray src = bytes("0f");
    CopyBits(dest, src, 4, 4);
    QCOMPARE(hex(dest), QString("f0"));
    QCOMPARE(hex(src), QString("0f"));
}

void TestBits::copyingIntoItselfGoesBitByBit()
{
    QByteArray bits = bytes("01");
    CopyBits(bits, bits, 1, 9);
    QCOMPARE(hex(bits), QString("ff03"));
}

void TestBits::copyingDoesNothingWhenMemoryIsShort()
{
    const ShortMemory shortage;
    QCOMPARE(hex(copied("00", "ff", 0, INT_MAX)), QString("00"));
}

void TestBits::copyingToTheLastPossibleBitIsNoOverflow()
{
    const ShortMemory shortage;
    QCOMPARE(hex(copied("00", "ff", INT_MAX - 2, INT_MAX)), QString("00"));
}

void TestBits::shiftKeepsWholeBytesAtTheEnd_data()
{
    QTest::addColumn<QString>("bits");
    QTest::addColumn<int>("n");
    QTest::addColumn<QString>("result");
    QTest::newRow("by 0") << "0102" << 0 << "0102";
    QTest::newRow("by 1") << "0181" << 1 << "8040";
    QTest::newRow("by 4") << "00ff" << 4 << "f00f";
    QTest::newRow("by 7") << "800103" << 7 << "030600";
    QTest::newRow("one byte") << "f0" << 3 << "1e";
    QTest::newRow("by 8") << "010203" << 8 << "020301";
    QTest::newRow("by 12, the moved byte takes no part") << "ff3412" << 12 << "2301ff";
    QTest::newRow("by 16") << "010203" << 16 << "030102";
    QTest::newRow("by 20") << "010230" << 20 << "030102";
    QTest::newRow("by the whole array") << "010203" << 24 << "010203";
    QTest::newRow("by more than the array") << "010203" << 29 << "010203";
    QTest::newRow("by far more") << "010203" << INT_MAX << "010203";
    QTest::newRow("by less than nothing") << "010203" << -5 << "010203";
    QTest::newRow("empty array") << "" << 3 << "";
}

void TestBits::shiftKeepsWholeBytesAtTheEnd()
{
    QFETCH(QString, bits);
    QFETCH(int, n);
    QFETCH(QString, result);
    QCOMPARE(hex(shifted(bits.toLatin1().constData(), n)), result);
}

TEST_CLASS(TestBits)
#include "test_bits.moc"
