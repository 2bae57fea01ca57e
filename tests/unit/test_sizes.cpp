// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "hex.h"
#include "short_memory.h"
#include "test_class.h"
#include "tools/sizes.h"

#include <QtTest>

#include <climits>

namespace {

CommunicatorCommand commandOf(int dataType, int count)
{
    CommunicatorCommand command;
    command.dataType = dataType;
    command.count = count;
    return command;
}

} // namespace

class TestSizes : public QObject
{
    Q_OBJECT

private slots:
    void unitsThatBitsOccupy_data();
    void unitsThatBitsOccupy();
    void unitsThatBytesOccupy_data();
    void unitsThatBytesOccupy();
    void bitArrayIsFitted_data();
    void bitArrayIsFitted();
    void bitArrayStaysWhenMemoryIsShort();
    void dataLengthOfACommand_data();
    void dataLengthOfACommand();
    void dataIsCutOrFilledToTheCommandsLength_data();
    void dataIsCutOrFilledToTheCommandsLength();
    void fittingDoesNotTouchTheData();
    void dataThatNoArrayCanHoldIsEmpty();
    void dataIsFilledToWholeWords_data();
    void dataIsFilledToWholeWords();
    void to64bitsDataFillsToFourOnly_data();
    void to64bitsDataFillsToFourOnly();
};

void TestSizes::unitsThatBitsOccupy_data()
{
    QTest::addColumn<uint>("start");
    QTest::addColumn<uint>("count");
    QTest::addColumn<uint>("byteCount");
    QTest::addColumn<uint>("words");
    QTest::addColumn<uint>("doubleWords");
    QTest::newRow("none") << 0u << 0u << 0u << 0u << 0u;
    QTest::newRow("one") << 0u << 1u << 1u << 1u << 1u;
    QTest::newRow("start counts") << 7u << 1u << 1u << 1u << 1u;
    QTest::newRow("7 and 2") << 7u << 2u << 2u << 1u << 1u;
    QTest::newRow("16") << 0u << 16u << 2u << 1u << 1u;
    QTest::newRow("17") << 0u << 17u << 3u << 2u << 1u;
    QTest::newRow("32") << 0u << 32u << 4u << 2u << 1u;
    QTest::newRow("33") << 1u << 32u << 5u << 3u << 2u;
    QTest::newRow("more than 32 bits") << 0xFFFFFFFFu << 1u << 0x20000000u << 0x10000000u << 0x08000000u;
    QTest::newRow("most") << 0xFFFFFFFFu << 0xFFFFFFFFu << 0x40000000u << 0x20000000u << 0x10000000u;
}

void TestSizes::unitsThatBitsOccupy()
{
    QFETCH(uint, start);
    QFETCH(uint, count);
    QFETCH(uint, byteCount);
    QFETCH(uint, words);
    QFETCH(uint, doubleWords);
    QCOMPARE(NumOfBitsToNumOfBytes(start, count), byteCount);
    QCOMPARE(NumOfBitsToNumOfWords(start, count), words);
    QCOMPARE(NumOfBitsToNumOfDWords(start, count), doubleWords);
}

void TestSizes::unitsThatBytesOccupy_data()
{
    QTest::addColumn<uint>("byteCount");
    QTest::addColumn<uint>("words");
    QTest::addColumn<uint>("doubleWords");
    QTest::addColumn<uint>("quadWords");
    QTest::newRow("0") << 0u << 0u << 0u << 0u;
    QTest::newRow("1") << 1u << 1u << 1u << 1u;
    QTest::newRow("2") << 2u << 1u << 1u << 1u;
    QTest::newRow("3") << 3u << 2u << 1u << 1u;
    QTest::newRow("4") << 4u << 2u << 1u << 1u;
    QTest::newRow("5") << 5u << 3u << 2u << 1u;
    QTest::newRow("8") << 8u << 4u << 2u << 1u;
    QTest::newRow("9") << 9u << 5u << 3u << 2u;
    QTest::newRow("most") << 0xFFFFFFFFu << 0x80000000u << 0x40000000u << 0x20000000u;
}

void TestSizes::unitsThatBytesOccupy()
{
    QFETCH(uint, byteCount);
    QFETCH(uint, words);
    QFETCH(uint, doubleWords);
    QFETCH(uint, quadWords);
    QCOMPARE(NumOfBytesToNumOfWords(byteCount), words);
    QCOMPARE(NumOfBytesToNumOfDWords(byteCount), doubleWords);
    QCOMPARE(NumOfBytesToNumOfQuadWords(byteCount), quadWords);
}

void TestSizes::bitArrayIsFitted_data()
{
    QTest::addColumn<QString>("bits");
    QTest::addColumn<int>("nbits");
    QTest::addColumn<QString>("fitted");
    QTest::newRow("already fits") << "ffff" << 16 << "ffff";
    QTest::newRow("one bit more") << "ffff" << 17 << "ffff00";
    QTest::newRow("cut, upper bits stay") << "ffff" << 3 << "ff";
    QTest::newRow("filled") << "" << 9 << "0000";
    QTest::newRow("nothing") << "ff" << 0 << "";
    QTest::newRow("negative") << "ff" << -9 << "";
    QTest::newRow("far below 0") << "ff" << INT_MIN << "";
}

void TestSizes::bitArrayIsFitted()
{
    QFETCH(QString, bits);
    QFETCH(int, nbits);
    QFETCH(QString, fitted);
    QByteArray array = QByteArray::fromHex(bits.toLatin1());
    FitBitArray(array, nbits);
    QCOMPARE(hex(array), fitted);
}

void TestSizes::bitArrayStaysWhenMemoryIsShort()
{
    const ShortMemory shortage;
    QByteArray array = bytes("0f");
    FitBitArray(array, INT_MAX);
    QCOMPARE(hex(array), QString("0f"));
}

void TestSizes::dataLengthOfACommand_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("length");
    QTest::newRow("bit, 8") << int(kBits) << 8 << 1;
    QTest::newRow("bit, 9") << int(kBits) << 9 << 2;
    QTest::newRow("bit, most") << int(kBits) << INT_MAX << 0x10000000;
    QTest::newRow("byte") << int(kBytes) << 5 << 5;
    QTest::newRow("word") << int(kWords) << 3 << 6;
    QTest::newRow("double word") << int(kDoubleWords) << 3 << 12;
    QTest::newRow("quad word") << int(kQuadWords) << 3 << 24;
    QTest::newRow("block") << int(kBlock) << 7 << 7;
    QTest::newRow("bit block, 1") << int(kBitBlock) << 1 << 1;
    QTest::newRow("bit block, 17") << int(kBitBlock) << 17 << 3;
    QTest::newRow("no items") << int(kWords) << 0 << 0;
    QTest::newRow("unknown type 7") << 7 << 3 << 0;
    QTest::newRow("negative type") << -1 << 3 << 0;
    QTest::newRow("negative count of bits") << int(kBits) << -9 << 0;
    QTest::newRow("negative count of bytes") << int(kBytes) << INT_MIN << 0;
    QTest::newRow("words beyond an int") << int(kWords) << 0x40000000 << INT_MAX;
    QTest::newRow("double words beyond an int") << int(kDoubleWords) << INT_MAX << INT_MAX;
    QTest::newRow("quad words beyond 32 bits") << int(kQuadWords) << 0x20000001 << INT_MAX;
}

void TestSizes::dataLengthOfACommand()
{
    QFETCH(int, dataType);
    QFETCH(int, count);
    QFETCH(int, length);
    QCOMPARE(GetSafeDataLen(commandOf(dataType, count)), length);
}

void TestSizes::dataIsCutOrFilledToTheCommandsLength_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("fitted");
    const auto row = [](const char *name, int dataType, int count, const char *data, const char *fitted) {
        QTest::newRow(name) << dataType << count << data << fitted;
    };
    row("5 bytes for 2 words", kWords, 2, "0102030405", "01020304");
    row("3 bytes for 2 words", kWords, 2, "010203", "01020300");
    row("4 bytes for 2 words", kWords, 2, "01020304", "01020304");
    row("nothing for 1 double word", kDoubleWords, 1, "", "00000000");
    row("9 bits keep the upper ones", kBits, 9, "ffffff", "ffff");
    row("quad word", kQuadWords, 1, "0102", "0102000000000000");
    row("block", kBlock, 2, "010203", "0102");
    row("unknown type", 9, 2, "010203", "");
    row("negative count", kBytes, -1, "010203", "");
}

void TestSizes::dataIsCutOrFilledToTheCommandsLength()
{
    QFETCH(int, dataType);
    QFETCH(int, count);
    QFETCH(QString, data);
    QFETCH(QString, fitted);
    QCOMPARE(hex(ToSafeData(commandOf(dataType, count), QByteArray::fromHex(data.toLatin1()))), fitted);
}

void TestSizes::fittingDoesNotTouchTheData()
{
    const QByteArray data = bytes("01 02 03");
    QCOMPARE(hex(ToSafeData(commandOf(1, 4), data)), QString("01020300"));
    QCOMPARE(hex(ToSafeData(commandOf(1, 1), data)), QString("01"));
    QCOMPARE(hex(data), QString("010203"));
}

void TestSizes::dataThatNoArrayCanHoldIsEmpty()
{
    QVERIFY(ToSafeData(commandOf(2, 0x40000000), bytes("01")).isEmpty());
    QVERIFY(ToSafeData(commandOf(4, INT_MAX), bytes("01")).isEmpty());
    QVERIFY(ToSafeData(commandOf(3, 0x40000001), bytes("01")).isEmpty()); // 4 bytes in 32 bits
    const ShortMemory shortage;
    QVERIFY(ToSafeData(commandOf(1, INT_MAX), bytes("01")).isEmpty());
    QVERIFY(ToSafeData(commandOf(1, 500000000), bytes("01")).isEmpty());
}

void TestSizes::dataIsFilledToWholeWords_data()
{
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("doubleWords");
    const auto row = [](const char *name, const char *data, const char *words, const char *doubleWords) {
        QTest::newRow(name) << data << words << doubleWords;
    };
    row("empty", "", "", "");
    row("1 byte", "01", "0100", "01000000");
    row("2 bytes", "0102", "0102", "01020000");
    row("3 bytes", "010203", "01020300", "01020300");
    row("4 bytes", "01020304", "01020304", "01020304");
    row("5 bytes", "0102030405", "010203040500", "0102030405000000");
}

void TestSizes::dataIsFilledToWholeWords()
{
    QFETCH(QString, data);
    QFETCH(QString, words);
    QFETCH(QString, doubleWords);
    const QByteArray array = QByteArray::fromHex(data.toLatin1());
    QCOMPARE(hex(To16bitsData(array)), words);
    QCOMPARE(hex(To32bitsData(array)), doubleWords);
    QCOMPARE(hex(array), data);
}

void TestSizes::to64bitsDataFillsToFourOnly_data()
{
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("filled");
    const auto row = [](const char *name, const char *data, const char *filled) {
        QTest::newRow(name) << data << filled;
    };
    row("empty", "", "");
    row("1 byte", "01", "01000000");
    row("2 bytes", "0102", "01020000");
    row("3 bytes", "010203", "01020300");
    row("4 bytes", "01020304", "01020304");
    row("5 bytes", "0102030405", "0102030405");
    row("6 bytes", "010203040506", "010203040506");
    row("7 bytes", "01020304050607", "01020304050607");
    row("8 bytes", "0102030405060708", "0102030405060708");
    row("9 bytes", "010203040506070809", "010203040506070809000000");
    row("11 bytes", "0102030405060708090a0b", "0102030405060708090a0b00");
    row("12 bytes", "0102030405060708090a0b0c", "0102030405060708090a0b0c");
}

void TestSizes::to64bitsDataFillsToFourOnly()
{
    QFETCH(QString, data);
    QFETCH(QString, filled);
    QCOMPARE(hex(To64bitsData(QByteArray::fromHex(data.toLatin1()))), filled);
}

TEST_CLASS(TestSizes)
#include "test_sizes.moc"
