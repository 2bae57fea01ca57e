// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "guarded_bytes.h"
#include "hex.h"
#include "test_class.h"
#include "tools/byte_order.h"

#include <QtTest>

#include <climits>

namespace {

const unsigned char kWire[] = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08};

void addArrayAndResults()
{
    QTest::addColumn<QString>("array");
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("doubleWords");
}

void row(const char *name, const char *array, const char *words, const char *doubleWords)
{
    QTest::newRow(name) << array << words << doubleWords;
}

} // namespace

class TestByteOrder : public QObject
{
    Q_OBJECT

private slots:
    void wireIsAlwaysBigEndian();
    void appendedShortHasItsHighByteFirst();
    void elementsFromTheWire_data();
    void elementsFromTheWire();
    void noElementsNeedNoData();
    void elementsFromTheWireNeedNoAlignment();
    void elementsFromTheWireReadNoByteBehindThem();
    void arrayThatIsTooLongIsEmpty();
    void elementsForTheWireAreFilledWithZeros_data();
    void elementsForTheWireAreFilledWithZeros();
    void elementsForTheWireReadNoByteBehindThem();
    void conversionInPlaceLeavesAnIncompleteElement_data();
    void conversionInPlaceLeavesAnIncompleteElement();
    void conversionInPlaceDoesNotTouchACopy();
};

void TestByteOrder::wireIsAlwaysBigEndian()
{
    QCOMPARE(isBigEndian(), true);
}

void TestByteOrder::appendedShortHasItsHighByteFirst()
{
    QByteArray array = bytes("55");
    appendBigEndianUShort(array, 0x89AB);
    appendBigEndianUShort(array, 0x0001);
    QCOMPARE(hex(array), QString("5589ab0001"));
}

void TestByteOrder::elementsFromTheWire_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("doubleWords");
    const auto row = [](const char *name, int count, const char *words, const char *doubleWords) {
        QTest::newRow(name) << count << words << doubleWords;
    };
    row("1", 1, "0201", "04030201");
    row("2", 2, "02010403", "0403020108070605");
    row("0", 0, "", "");
    row("negative", -1, "", "");
    row("far below 0", INT_MIN, "", "");
}

void TestByteOrder::elementsFromTheWire()
{
    QFETCH(int, count);
    QFETCH(QString, words);
    QFETCH(QString, doubleWords);
    QCOMPARE(hex(fromBigEndianUShortArray(kWire, count)), words);
    QCOMPARE(hex(fromBigEndianULongArray(kWire, count)), doubleWords);
}

void TestByteOrder::noElementsNeedNoData()
{
    QVERIFY(fromBigEndianUShortArray(nullptr, 0).isEmpty());
    QVERIFY(fromBigEndianULongArray(nullptr, 0).isEmpty());
}

void TestByteOrder::elementsFromTheWireNeedNoAlignment()
{
    QCOMPARE(hex(fromBigEndianUShortArray(kWire + 1, 2)), QString("03020504"));
    QCOMPARE(hex(fromBigEndianULongArray(kWire + 1, 1)), QString("05040302"));
}

void TestByteOrder::elementsFromTheWireReadNoByteBehindThem()
{
    const GuardedBytes wire(QByteArray(42, '\1'));
    QCOMPARE(fromBigEndianUShortArray(wire.bytes(), 21), wire.array());
    QCOMPARE(fromBigEndianULongArray(wire.bytes() + 2, 10), wire.array().left(40));
}

void TestByteOrder::arrayThatIsTooLongIsEmpty()
{
    QVERIFY(fromBigEndianUShortArray(kWire, INT_MAX).isEmpty());
    QVERIFY(fromBigEndianULongArray(kWire, INT_MAX).isEmpty());
    QVERIFY(fromBigEndianULongArray(kWire, 0x40000001).isEmpty()); // 4 bytes in 32 bits
}

void TestByteOrder::elementsForTheWireAreFilledWithZeros_data()
{
    addArrayAndResults();
    row("empty", "", "", "");
    row("1 byte", "01", "0001", "00000001");
    row("2 bytes", "0102", "0201", "00000201");
    row("3 bytes", "010203", "02010003", "00030201");
    row("4 bytes", "01020304", "02010403", "04030201");
    row("5 bytes", "0102030405", "020104030005", "0403020100000005");
    row("8 bytes", "0102030405060708", "0201040306050807", "0403020108070605");
    row("33 bytes", "0102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f2021",
        "02010403060508070a090c0b0e0d100f1211141316151817"
        "1a191c1b1e1d201f0021",
        "04030201080706050c0b0a09100f0e0d14131211181716151c1b1a19201f1e1d"
        "00000021");
}

void TestByteOrder::elementsForTheWireAreFilledWithZeros()
{
    QFETCH(QString, array);
    QFETCH(QString, words);
    QFETCH(QString, doubleWords);
    const QByteArray host = QByteArray::fromHex(array.toLatin1());
    QCOMPARE(hex(toBigEndianUShortArray(host)), words);
    QCOMPARE(hex(toBigEndianULongArray(host)), doubleWords);
    QCOMPARE(hex(host), array);
}

void TestByteOrder::elementsForTheWireReadNoByteBehindThem()
{
    const GuardedBytes host(bytes("11 22 33"));
    QCOMPARE(hex(toBigEndianUShortArray(host.array())), QString("22110033"));
    QCOMPARE(hex(toBigEndianULongArray(host.array())), QString("00332211"));
}

void TestByteOrder::conversionInPlaceLeavesAnIncompleteElement_data()
{
    addArrayAndResults();
    row("empty", "", "", "");
    row("1 byte", "01", "01", "01");
    row("2 bytes", "0102", "0201", "0102");
    row("3 bytes", "010203", "020103", "010203");
    row("4 bytes", "01020304", "02010403", "04030201");
    row("7 bytes", "01020304050607", "02010403060507", "04030201050607");
    row("8 bytes", "0102030405060708", "0201040306050807", "0403020108070605");
}

void TestByteOrder::conversionInPlaceLeavesAnIncompleteElement()
{
    QFETCH(QString, array);
    QFETCH(QString, words);
    QFETCH(QString, doubleWords);
    QByteArray shorts = QByteArray::fromHex(array.toLatin1());
    QByteArray longs = shorts;
    toLittleEndianUShortArray(shorts);
    toLittleEndianULongArray(longs);
    QCOMPARE(hex(shorts), words);
    QCOMPARE(hex(longs), doubleWords);
}

void TestByteOrder::conversionInPlaceDoesNotTouchACopy()
{
    QByteArray array = bytes("01 02");
    const QByteArray copy = array;
    toLittleEndianUShortArray(array);
    QCOMPARE(hex(array), QString("0201"));
    QCOMPARE(hex(copy), QString("0102"));
}

TEST_CLASS(TestByteOrder)
#include "test_byte_order.moc"
