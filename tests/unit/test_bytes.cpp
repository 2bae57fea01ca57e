// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "hex.h"
#include "test_class.h"
#include "tools/bytes.h"

#include <QtTest>

namespace {

void addArrayAndValue()
{
    QTest::addColumn<QString>("array");
    QTest::addColumn<int>("value");
}

} // namespace

class TestBytes : public QObject
{
    Q_OBJECT

private slots:
    void intIsTheFirstFourBytesLowestFirst_data();
    void intIsTheFirstFourBytesLowestFirst();
    void wordIsTheFirstTwoBytesLowestFirst_data();
    void wordIsTheFirstTwoBytesLowestFirst();
    void shortHasASign_data();
    void shortHasASign();
    void valuesBecomeArraysLowestByteFirst();
    void reverseArrayReversesACopy_data();
    void reverseArrayReversesACopy();
    void rotateArrayBringsTheFirstToTheEnd_data();
    void rotateArrayBringsTheFirstToTheEnd();
};

void TestBytes::intIsTheFirstFourBytesLowestFirst_data()
{
    addArrayAndValue();
    QTest::newRow("empty") << "" << 0;
    QTest::newRow("one byte") << "fe" << 0xFE;
    QTest::newRow("two bytes") << "0102" << 0x201;
    QTest::newRow("three bytes") << "010203" << 197121;
    QTest::newRow("four bytes") << "01020304" << 0x4030201;
    QTest::newRow("fifth byte ignored") << "0102030405" << 0x4030201;
    QTest::newRow("all bits") << "ffffffff" << -1;
}

void TestBytes::intIsTheFirstFourBytesLowestFirst()
{
    QFETCH(QString, array);
    QFETCH(int, value);
    QCOMPARE(QByteArrayToInt(QByteArray::fromHex(array.toLatin1())), static_cast<unsigned int>(value));
}

void TestBytes::wordIsTheFirstTwoBytesLowestFirst_data()
{
    addArrayAndValue();
    QTest::newRow("empty") << "" << 0;
    QTest::newRow("one byte") << "ff" << 255;
    QTest::newRow("two bytes") << "0180" << 0x8001;
    QTest::newRow("third byte ignored") << "010203" << 0x201;
}

void TestBytes::wordIsTheFirstTwoBytesLowestFirst()
{
    QFETCH(QString, array);
    QFETCH(int, value);
    QCOMPARE(int(QByteArrayToWord(QByteArray::fromHex(array.toLatin1()))), value);
}

void TestBytes::shortHasASign_data()
{
    addArrayAndValue();
    QTest::newRow("empty") << "" << 0;
    QTest::newRow("one byte is never negative") << "ff" << 255;
    QTest::newRow("minus one") << "ffff" << -1;
    QTest::newRow("lowest") << "0080" << -32768;
    QTest::newRow("highest") << "ff7f" << 32767;
    QTest::newRow("third byte ignored") << "feffff" << -2;
}

void TestBytes::shortHasASign()
{
    QFETCH(QString, array);
    QFETCH(int, value);
    QCOMPARE(int(QByteArrayToShort(QByteArray::fromHex(array.toLatin1()))), value);
}

void TestBytes::valuesBecomeArraysLowestByteFirst()
{
    QCOMPARE(hex(wordToByteArray(0x89AB)), QString("ab89"));
    QCOMPARE(hex(wordToByteArray(0)), QString("0000"));
    QCOMPARE(hex(shortToByteArray(-2)), QString("feff"));
    QCOMPARE(hex(shortToByteArray(0x1234)), QString("3412"));
    QCOMPARE(hex(intToByteArray(0x12345678)), QString("78563412"));
    QCOMPARE(hex(intToByteArray(-2)), QString("feffffff"));
}

void TestBytes::reverseArrayReversesACopy_data()
{
    QTest::addColumn<QString>("array");
    QTest::addColumn<QString>("reversed");
    const auto row = [](const char *name, const char *array, const char *reversed) {
        QTest::newRow(name) << array << reversed;
    };
    row("empty", "", "");
    row("one byte", "01", "01");
    row("even length", "01020304", "04030201");
    row("odd length", "010203", "030201");
}

void TestBytes::reverseArrayReversesACopy()
{
    QFETCH(QString, array);
    QFETCH(QString, reversed);
    const QByteArray original = QByteArray::fromHex(array.toLatin1());
    QCOMPARE(hex(reverseArray(original)), reversed);
    QCOMPARE(hex(original), array);
}

void TestBytes::rotateArrayBringsTheFirstToTheEnd_data()
{
    QTest::addColumn<int>("n");
    QTest::addColumn<int>("m");
    QTest::addColumn<QString>("rotated");
    QTest::newRow("1 and 4") << 1 << 4 << "0203040501";
    QTest::newRow("2 and 3") << 2 << 3 << "0304050102";
    QTest::newRow("only the first n + m") << 2 << 1 << "0301020405";
    QTest::newRow("nothing to the end") << 0 << 5 << "0102030405";
    QTest::newRow("nothing behind") << 5 << 0 << "0102030405";
    QTest::newRow("negative n") << -1 << 5 << "0102030405";
    QTest::newRow("negative m") << 2 << -1 << "0102030405";
}

void TestBytes::rotateArrayBringsTheFirstToTheEnd()
{
    QFETCH(int, n);
    QFETCH(int, m);
    QFETCH(QString, rotated);
    QByteArray array = bytes("01 02 03 04 05");
    RotateArray<unsigned char>(reinterpret_cast<unsigned char *>(array.data()), n, m);
    QCOMPARE(hex(array), rotated);
}

TEST_CLASS(TestBytes)
#include "test_bytes.moc"
