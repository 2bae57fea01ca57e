// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The pack language: every letter, single and counted, and every error, in all three interpreters.

#include "hex.h"
#include "short_memory.h"
#include "test_class.h"
#include "tools/pack.h"

#include <QtTest>

#include <cstdarg>
#include <cstring>

namespace {

// A buffer for the functions under test. Bytes that were never written show as ee.
class Buffer
{
public:
    Buffer() { std::memset(room, 0xEE, sizeof room); }

    operator unsigned char *() { return room; }
    QString hex(int count) const { return ::hex(QByteArray(reinterpret_cast<const char *>(room), count)); }

private:
    unsigned char room[64];
};

const unsigned char *data(const QByteArray &array)
{
    return reinterpret_cast<const unsigned char *>(array.constData());
}

int packThroughVaList(unsigned char *buffer, const char *format, ...)
{
    va_list values;
    va_start(values, format);
    const int written = VDataPack(buffer, format, values);
    va_end(values);
    return written;
}

QByteArray packArrayThroughVaList(const char *format, ...)
{
    va_list values;
    va_start(values, format);
    const QByteArray packed = VByteArrayPack(format, values);
    va_end(values);
    return packed;
}

int unpackThroughVaList(const unsigned char *buffer, const char *format, ...)
{
    va_list destinations;
    va_start(destinations, format);
    const int consumed = VDataUnpack(buffer, format, destinations);
    va_end(destinations);
    return consumed;
}

bool isOneOf(char letter, const char *letters)
{
    return std::strchr(letters, letter) != nullptr;
}

const char kDigits[] = "0123456789";
const char kSingleLetters[] = "CcnSsvNIiLlVxX";
const char kCountedLetters[] = "CcnvNVxX";

} // namespace

class TestPack : public QObject
{
    Q_OBJECT

private slots:
    void packsOneValue_data();
    void packsOneValue();
    void packsNegativeValuesByTheirLowBits();
    void packsCountedElements_data();
    void packsCountedElements();
    void paddingIsAZeroByte();
    void skippedByteOfABufferStays();
    void skippedByteOfAnArrayIsZero();
    void countedPaddingWritesZerosIntoABuffer();
    void countedSkipLeavesTheBufferAsItWas();
    void countOfZeroBeforePaddingWritesNothing();
    void countedPaddingIsRefusedInAnArray_data();
    void countedPaddingIsRefusedInAnArray();
    void countMayHaveSeveralDigits();
    void argumentsAreTakenFromLeftToRight();
    void manyArgumentsAreTaken();
    void requestHeaderIsTenBytes();
    void bitItemIsFiveBytesAndSixWithPadding();
    void parameterItemIsTwelveBytes();
    void bytesAndWordsNeedNoAlignment();
    void longArraysKeepTheirOrder();
    void arrayThatMemoryCannotHoldIsEmpty();
    void unpacksOneValue_data();
    void unpacksOneValue();
    void unpacksCountedElements_data();
    void unpacksCountedElements();
    void unpackingSkipsPadding_data();
    void unpackingSkipsPadding();
    void unpackingStoresOnlyTheWidthOfTheValue();
    void unpackingNeedsNoAlignment();
    void emptyFormatDoesNothing();
    void emptyFormatWithAnArgumentListDoesNothing();
    void unknownLetterEndsPackingWithZeroAndUnpackingWithMinusOne();
    void letterNotAcceptedAfterACountIsAnError();
    void countErrors_data();
    void countErrors();
    void arraysHaveNoMoreBytesThanAnIntCounts();
    void errorLeavesWhatWasPackedInFrontOfIt();
    void errorLeavesWhatWasUnpackedInFrontOfIt();
    void formsWithArgumentListsDoTheSame();
};

void TestPack::packsOneValue_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<uint>("value");
    QTest::addColumn<QString>("packed");
    QTest::newRow("C") << "C" << 0x12u << "12";
    QTest::newRow("C, low 8 bits") << "C" << 0x01020384u << "84";
    QTest::newRow("c") << "c" << 0xFEu << "fe";
    QTest::newRow("c, low 8 bits") << "c" << 0x1FFu << "ff";
    QTest::newRow("n") << "n" << 0x1234u << "1234";
    QTest::newRow("n, low 16 bits") << "n" << 0xABCD89EFu << "89ef";
    QTest::newRow("S") << "S" << 0x1234u << "3412";
    QTest::newRow("s") << "s" << 0x1234u << "3412";
    QTest::newRow("v") << "v" << 0x1234u << "3412";
    QTest::newRow("v, low 16 bits") << "v" << 0xABCD89EFu << "ef89";
    QTest::newRow("N") << "N" << 0x12345678u << "12345678";
    QTest::newRow("N, all bits") << "N" << 0xFEDCBA98u << "fedcba98";
    QTest::newRow("I") << "I" << 0x12345678u << "78563412";
    QTest::newRow("i") << "i" << 0x12345678u << "78563412";
    QTest::newRow("L") << "L" << 0x12345678u << "78563412";
    QTest::newRow("l") << "l" << 0x12345678u << "78563412";
    QTest::newRow("V") << "V" << 0x12345678u << "78563412";
    QTest::newRow("V, all bits") << "V" << 0xFEDCBA98u << "98badcfe";
}

void TestPack::packsOneValue()
{
    QFETCH(QString, format);
    QFETCH(uint, value);
    QFETCH(QString, packed);
    const QByteArray letters = format.toLatin1();
    Buffer buffer;
    QCOMPARE(DataPack(buffer, letters.constData(), value), int(packed.size()) / 2);
    QCOMPARE(buffer.hex(5), packed.leftJustified(10, QLatin1Char('e')));
    QCOMPARE(hex(ByteArrayPack(letters.constData(), value)), packed);
}

void TestPack::packsNegativeValuesByTheirLowBits()
{
    Buffer buffer;
    QCOMPARE(DataPack(buffer, "CnN", -1, -2, -3), 7);
    QCOMPARE(buffer.hex(8), QString("fffffefffffffdee"));
    QCOMPARE(hex(ByteArrayPack("CnN", -1, -2, -3)), QString("fffffefffffffd"));
    Buffer littleEndian;
    QCOMPARE(DataPack(littleEndian, "vV", -2, -3), 6);
    QCOMPARE(littleEndian.hex(7), QString("fefffdffffffee"));
    QCOMPARE(hex(ByteArrayPack("vV", -2, -3)), QString("fefffdffffff"));
}

void TestPack::packsCountedElements_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("packed");
    const auto row = [](const char *name, const char *format, const char *packed) {
        QTest::newRow(name) << format << packed;
    };
    row("one byte", "1C", "01");
    row("C", "8C", "0102030405060708");
    row("c", "3c", "010203");
    row("n", "3n", "020104030605");
    row("v", "3v", "010203040506");
    row("N", "2N", "0403020108070605");
    row("V", "2V", "0102030405060708");
}

void TestPack::packsCountedElements()
{
    QFETCH(QString, format);
    QFETCH(QString, packed);
    const QByteArray letters = format.toLatin1();
    const QByteArray memory = bytes("01 02 03 04 05 06 07 08");
    Buffer buffer;
    QCOMPARE(DataPack(buffer, letters.constData(), memory.constData()), int(packed.size()) / 2);
    QCOMPARE(buffer.hex(9), packed.leftJustified(18, QLatin1Char('e')));
    QCOMPARE(hex(ByteArrayPack(letters.constData(), memory.constData())), packed);
}

void TestPack::paddingIsAZeroByte()
{
    Buffer buffer;
    QCOMPARE(DataPack(buffer, "CxC", 1, 2), 3);
    QCOMPARE(buffer.hex(4), QString("010002ee"));
    QCOMPARE(hex(ByteArrayPack("CxC", 1, 2)), QString("010002"));
}

void TestPack::skippedByteOfABufferStays()
{
    Buffer buffer;
    QCOMPARE(DataPack(buffer, "CXC", 1, 2), 3);
    QCOMPARE(buffer.hex(4), QString("01ee02ee"));
}

void TestPack::skippedByteOfAnArrayIsZero()
{
    QCOMPARE(hex(ByteArrayPack("CXC", 1, 2)), QString("010002"));
}

void TestPack::countedPaddingWritesZerosIntoABuffer()
{
    Buffer buffer;
    QCOMPARE(DataPack(buffer, "2x"), 2);
    QCOMPARE(buffer.hex(3), QString("0000ee"));
    QCOMPARE(DataPack(buffer, "C3xC", 1, 2), 5);
    QCOMPARE(buffer.hex(6), QString("0100000002ee"));
}

void TestPack::countedSkipLeavesTheBufferAsItWas()
{
    Buffer buffer;
    QCOMPARE(DataPack(buffer, "C3XC", 1, 2), 5);
    QCOMPARE(buffer.hex(6), QString("01eeeeee02ee"));
}

void TestPack::countOfZeroBeforePaddingWritesNothing()
{
    Buffer buffer;
    QCOMPARE(DataPack(buffer, "C0x0XC", 1, 2), 2);
    QCOMPARE(buffer.hex(3), QString("0102ee"));
    QCOMPARE(DataPack(buffer, "0x"), 0);
}

void TestPack::countedPaddingIsRefusedInAnArray_data()
{
    QTest::addColumn<QString>("format");
    QTest::newRow("2x") << "2x";
    QTest::newRow("2X") << "2X";
    QTest::newRow("0x") << "0x";
    QTest::newRow("0X") << "0X";
    QTest::newRow("behind other items") << "C1x";
}

void TestPack::countedPaddingIsRefusedInAnArray()
{
    QFETCH(QString, format);
    QVERIFY(ByteArrayPack(format.toLatin1().constData(), 1).isEmpty());
}

void TestPack::countMayHaveSeveralDigits()
{
    const char text[] = "abcdefghijkl";
    QCOMPARE(ByteArrayPack("12C", text), QByteArray("abcdefghijkl"));
    QCOMPARE(ByteArrayPack("0003C", text), QByteArray("abc"));
}

void TestPack::argumentsAreTakenFromLeftToRight()
{
    const quint16 words[] = {0x0102, 0x0304};
    const QByteArray packed = ByteArrayPack("Cx2nvXN", 0x11, words, 0x2233, 0x44556677);
    QCOMPARE(hex(packed), QString("11000102030433220044556677"));
}

void TestPack::manyArgumentsAreTaken()
{
    const QByteArray packed =
        ByteArrayPack("CCCCCCCCCCCCCCCC", 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
    QCOMPARE(hex(packed), QString("0102030405060708090a0b0c0d0e0f10"));
}

void TestPack::requestHeaderIsTenBytes()
{
    const QString header("32010000123400020000");
    QCOMPARE(hex(ByteArrayPack("CCnnnn", 50, 1, 0, 0x1234, 2, 0)), header);
    Buffer buffer;
    QCOMPARE(DataPack(buffer, "CCnnnn", 50, 1, 0, 0x1234, 2, 0), 10);
    QCOMPARE(buffer.hex(10), header);
}

void TestPack::bitItemIsFiveBytesAndSixWithPadding()
{
    QCOMPARE(hex(ByteArrayPack("xCnC", 3, 1, 0x0102)), QString("0003000102"));
    QCOMPARE(hex(ByteArrayPack("xCnCx", 3, 1, 0x0102)), QString("000300010200"));
}

void TestPack::parameterItemIsTwelveBytes()
{
    const unsigned char address[] = {0x00, 0x03, 0x20};
    const QString item("120a10020004000184000320");
    QCOMPARE(hex(ByteArrayPack("CCCCnnC3C", 0x12, 0x0A, 0x10, 0x02, 4, 1, 0x84, address)), item);
    Buffer buffer;
    QCOMPARE(DataPack(buffer, "CCCCnnC3C", 0x12, 0x0A, 0x10, 0x02, 4, 1, 0x84, address), 12);
    QCOMPARE(buffer.hex(12), item);
}

void TestPack::bytesAndWordsNeedNoAlignment()
{
    const QByteArray memory = bytes("00 01 02 03 04 05 06 07 08");
    Buffer buffer;
    QCOMPARE(DataPack(buffer + 1, "nvNV", 0x1234, 0x1234, 0x12345678, 0x12345678), 12);
    QCOMPARE(buffer.hex(13), QString("ee123434121234567878563412"));
    QCOMPARE(DataPack(buffer + 1, "2n2v", data(memory) + 1, data(memory) + 1), 8);
    QCOMPARE(buffer.hex(9), QString("ee0201040301020304"));
    QCOMPARE(DataPack(buffer + 1, "2NV", data(memory) + 1, 1), 12);
    QCOMPARE(buffer.hex(13), QString("ee040302010807060501000000"));
}

void TestPack::longArraysKeepTheirOrder()
{
    const QByteArray a(100, 'a');
    const QByteArray b(100, 'b');
    const QByteArray c(1000, 'c');
    QCOMPARE(
        ByteArrayPack("100C100C1000CC100C", a.constData(), b.constData(), c.constData(), 'd', a.constData()),
        a + b + c + 'd' + a);
    QCOMPARE(ByteArrayPack("100C28CC", a.constData(), b.constData(), 'd'), a + b.left(28) + 'd');
    QCOMPARE(ByteArrayPack("100C27Cn", a.constData(), b.constData(), 0x6566), a + b.left(27) + "ef");
    QCOMPARE(ByteArrayPack("1000CX", c.constData()), c + '\0');
}

void TestPack::arrayThatMemoryCannotHoldIsEmpty()
{
    const unsigned char small[] = {1, 2, 3, 4};
    QVERIFY(ByteArrayPack("1000000000V", small).isEmpty());
    const ShortMemory shortage;
    QVERIFY(ByteArrayPack("CC1000000000C", 1, 2, small).isEmpty());
}

void TestPack::unpacksOneValue_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("width");
    QTest::addColumn<uint>("value");
    QTest::newRow("C") << "C" << 1 << 0x89u;
    QTest::newRow("c") << "c" << 1 << 0x89u;
    QTest::newRow("n") << "n" << 2 << 0x89ABu;
    QTest::newRow("S") << "S" << 2 << 0xAB89u;
    QTest::newRow("s") << "s" << 2 << 0xAB89u;
    QTest::newRow("v") << "v" << 2 << 0xAB89u;
    QTest::newRow("N") << "N" << 4 << 0x89ABCDEFu;
    QTest::newRow("I") << "I" << 4 << 0xEFCDAB89u;
    QTest::newRow("i") << "i" << 4 << 0xEFCDAB89u;
    QTest::newRow("L") << "L" << 4 << 0xEFCDAB89u;
    QTest::newRow("l") << "l" << 4 << 0xEFCDAB89u;
    QTest::newRow("V") << "V" << 4 << 0xEFCDAB89u;
}

void TestPack::unpacksOneValue()
{
    QFETCH(QString, format);
    QFETCH(int, width);
    QFETCH(uint, value);
    const QByteArray letters = format.toLatin1();
    const QByteArray source = bytes("89 ab cd ef");
    quint8 byte = 0;
    quint16 word = 0;
    quint32 doubleWord = 0;
    void *const destination = width == 1   ? static_cast<void *>(&byte)
                              : width == 2 ? static_cast<void *>(&word)
                                           : static_cast<void *>(&doubleWord);
    QCOMPARE(DataUnpack(data(source), letters.constData(), destination), width);
    QCOMPARE(uint(byte) + word + doubleWord, value);
}

// An element lies in the packed bytes as it does in the ones it was packed from, or reversed: the same
// both ways.
void TestPack::unpacksCountedElements_data()
{
    packsCountedElements_data();
}

void TestPack::unpacksCountedElements()
{
    QFETCH(QString, format);
    QFETCH(QString, packed);
    const QByteArray letters = format.toLatin1();
    const QByteArray source = bytes("01 02 03 04 05 06 07 08");
    Buffer elements;
    unsigned char *const destination = elements;
    QCOMPARE(DataUnpack(data(source), letters.constData(), destination), int(packed.size()) / 2);
    QCOMPARE(elements.hex(9), packed.leftJustified(18, QLatin1Char('e')));
}

void TestPack::unpackingSkipsPadding_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("consumed");
    QTest::addColumn<int>("value");
    QTest::newRow("xC") << "xC" << 2 << 0x02;
    QTest::newRow("XC") << "XC" << 2 << 0x02;
    QTest::newRow("2xC") << "2xC" << 3 << 0x03;
    QTest::newRow("2XC") << "2XC" << 3 << 0x03;
    QTest::newRow("0xC") << "0xC" << 1 << 0x01;
    QTest::newRow("0XC") << "0XC" << 1 << 0x01;
    QTest::newRow("Cx") << "Cx" << 2 << 0x01;
}

void TestPack::unpackingSkipsPadding()
{
    QFETCH(QString, format);
    QFETCH(int, consumed);
    QFETCH(int, value);
    const QByteArray source = bytes("01 02 03");
    unsigned char byte = 0;
    QCOMPARE(DataUnpack(data(source), format.toLatin1().constData(), &byte), consumed);
    QCOMPARE(int(byte), value);
}

void TestPack::unpackingStoresOnlyTheWidthOfTheValue()
{
    const QByteArray source = bytes("12 34 56 78");
    Buffer stored;
    unsigned char *const place = stored;
    QCOMPARE(DataUnpack(data(source), "CC", place, place + 4), 2);
    QCOMPARE(stored.hex(8), QString("12eeeeee34eeeeee"));
    QCOMPARE(DataUnpack(data(source), "n", place), 2);
    QCOMPARE(stored.hex(8), QString("3412eeee34eeeeee"));
}

void TestPack::unpackingNeedsNoAlignment()
{
    const QByteArray source = bytes("00 12 34 56 78 9a bc");
    Buffer stored;
    unsigned char *const place = stored + 1;
    QCOMPARE(DataUnpack(data(source) + 1, "nN", place, place + 2), 6);
    QCOMPARE(stored.hex(8), QString("ee3412bc9a7856ee"));
    QCOMPARE(DataUnpack(data(source) + 1, "3n", place), 6);
    QCOMPARE(stored.hex(8), QString("ee34127856bc9aee"));
    QCOMPARE(DataUnpack(data(source) + 1, "1N", place), 4);
    QCOMPARE(stored.hex(8), QString("ee78563412bc9aee"));
}

void TestPack::emptyFormatDoesNothing()
{
    Buffer buffer;
    QCOMPARE(DataPack(buffer, ""), 0);
    QCOMPARE(buffer.hex(1), QString("ee"));
    QVERIFY(ByteArrayPack("").isEmpty());
    QCOMPARE(DataUnpack(buffer, ""), 0);
}

void TestPack::emptyFormatWithAnArgumentListDoesNothing()
{
    Buffer buffer;
    QCOMPARE(packThroughVaList(buffer, "", 1), 0);
    QCOMPARE(buffer.hex(1), QString("ee"));
    QVERIFY(packArrayThroughVaList("", 1).isEmpty());
    unsigned char stored = 0x77;
    QCOMPARE(unpackThroughVaList(buffer, "", &stored), 0);
    QCOMPARE(int(stored), 0x77);
}

void TestPack::unknownLetterEndsPackingWithZeroAndUnpackingWithMinusOne()
{
    const unsigned char source[] = {0x12, 0x34};
    for (int code = 1; code < 256; ++code) {
        const char format[] = {'C', static_cast<char>(code), '\0'};
        if (isOneOf(format[1], kDigits) || isOneOf(format[1], kSingleLetters))
            continue;
        Buffer buffer;
        unsigned char stored = 0;
        QCOMPARE(DataPack(buffer, format, 1, 2), 0);
        QCOMPARE(buffer.hex(3), QString("01eeee"));
        QVERIFY(ByteArrayPack(format, 1, 2).isEmpty());
        QCOMPARE(DataUnpack(source, format, &stored), -1);
        QCOMPARE(int(stored), 0x12);
    }
}

void TestPack::letterNotAcceptedAfterACountIsAnError()
{
    const unsigned char source[] = {0x12, 0x34};
    for (int code = 1; code < 256; ++code) {
        const char format[] = {'C', '2', static_cast<char>(code), '\0'};
        if (isOneOf(format[2], kDigits) || isOneOf(format[2], kCountedLetters))
            continue;
        Buffer buffer;
        unsigned char stored = 0;
        QCOMPARE(DataPack(buffer, format, 1, 2), -1);
        QCOMPARE(buffer.hex(3), QString("01eeee"));
        QVERIFY(ByteArrayPack(format, 1, 2).isEmpty());
        QCOMPARE(DataUnpack(source, format, &stored), -1);
        QCOMPARE(int(stored), 0x12);
    }
}

void TestPack::countErrors_data()
{
    QTest::addColumn<QString>("format");
    QTest::newRow("no C") << "C0C";
    QTest::newRow("no c") << "C0c";
    QTest::newRow("no n") << "C0n";
    QTest::newRow("no v") << "C0v";
    QTest::newRow("no N") << "C0N";
    QTest::newRow("no V") << "C0V";
    QTest::newRow("several zeros") << "C000C";
    QTest::newRow("no letter") << "C3";
    QTest::newRow("no letter after 0") << "C0";
    QTest::newRow("one more than an int") << "C2147483648C";
    QTest::newRow("1 in 32 bits") << "C4294967297C";
    QTest::newRow("1 in 64 bits") << "C18446744073709551617C";
    QTest::newRow("many digits") << "C99999999999999999999999999999999C";
    QTest::newRow("padding, one more than an int") << "C2147483648x";
    QTest::newRow("padding, 0 in 32 bits") << "C4294967296X";
    QTest::newRow("padding, the highest int and a digit more") << "C21474836470X";
}

void TestPack::countErrors()
{
    QFETCH(QString, format);
    const QByteArray letters = format.toLatin1();
    const unsigned char source[] = {0x12, 0x34};
    Buffer buffer;
    unsigned char stored = 0;
    unsigned char next = 0x77;
    QCOMPARE(DataPack(buffer, letters.constData(), 1, source), -1);
    QCOMPARE(buffer.hex(3), QString("01eeee"));
    QVERIFY(ByteArrayPack(letters.constData(), 1, source).isEmpty());
    QCOMPARE(DataUnpack(source, letters.constData(), &stored, &next), -1);
    QCOMPARE(int(stored), 0x12);
    QCOMPARE(int(next), 0x77);
}

// One byte and 2^31 - 1 more: nothing is read of them.
void TestPack::arraysHaveNoMoreBytesThanAnIntCounts()
{
    const unsigned char source[] = {0x12, 0x34};
    QVERIFY(ByteArrayPack("C2147483647C", 1, source).isEmpty());
}

void TestPack::errorLeavesWhatWasPackedInFrontOfIt()
{
    Buffer buffer;
    QCOMPARE(DataPack(buffer, "CQ", 0x12), 0);
    QCOMPARE(buffer.hex(2), QString("12ee"));
    QCOMPARE(DataPack(buffer, "nC0C", 0x3456, 0x78), -1);
    QCOMPARE(buffer.hex(4), QString("345678ee"));
}

void TestPack::errorLeavesWhatWasUnpackedInFrontOfIt()
{
    const unsigned char source[] = {0x12, 0x34, 0x56};
    unsigned char byte = 0;
    quint16 word = 0;
    QCOMPARE(DataUnpack(source, "Cq", &byte), -1);
    QCOMPARE(int(byte), 0x12);
    QCOMPARE(DataUnpack(source, "xn0C", &word), -1);
    QCOMPARE(int(word), 0x3456);
}

void TestPack::formsWithArgumentListsDoTheSame()
{
    Buffer buffer;
    QCOMPARE(packThroughVaList(buffer, "Cn", 1, 0x0203), 3);
    QCOMPARE(buffer.hex(4), QString("010203ee"));
    QCOMPARE(packThroughVaList(buffer, "Q"), 0);
    QCOMPARE(packThroughVaList(buffer, "0C"), -1);
    QCOMPARE(hex(packArrayThroughVaList("Cn", 1, 0x0203)), QString("010203"));
    QVERIFY(packArrayThroughVaList("2x").isEmpty());
    unsigned char byte = 0;
    quint16 word = 0;
    QCOMPARE(unpackThroughVaList(buffer, "Cn", &byte, &word), 3);
    QCOMPARE(int(byte), 0x01);
    QCOMPARE(int(word), 0x0203);
    QCOMPARE(unpackThroughVaList(buffer, "Q"), -1);
}

TEST_CLASS(TestPack)
#include "test_pack.moc"
