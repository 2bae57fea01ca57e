// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Check values are those that the catalogues of CRCs publish for the text 123456789.

#include "hex.h"
#include "test_class.h"
#include "tools/checksum.h"

#include <QtTest>

#include <climits>

namespace {

const char kCheckText[] = "123456789";

const unsigned char *data(const QByteArray &array)
{
    return reinterpret_cast<const unsigned char *>(array.constData());
}

typedef unsigned short (*Step)(unsigned short, unsigned char);

unsigned short chained(Step step, unsigned short start)
{
    unsigned short crc = start;
    for (const char *c = kCheckText; *c; ++c)
        crc = step(crc, static_cast<unsigned char>(*c));
    return crc;
}

// One byte, shifted in bit by bit.
quint32 leastBitFirst(quint32 crc, unsigned char c, quint32 polynomial)
{
    for (int bit = 0; bit < 8; ++bit) {
        const bool differ = ((crc ^ static_cast<quint32>(c >> bit)) & 1) != 0;
        crc = differ ? crc >> 1 ^ polynomial : crc >> 1;
    }
    return crc;
}

quint32 mostBitFirst(quint32 crc, unsigned char c, quint32 polynomial)
{
    for (int bit = 7; bit >= 0; --bit) {
        const bool differ = ((crc >> 15 ^ static_cast<quint32>(c >> bit)) & 1) != 0;
        crc = (differ ? crc << 1 ^ polynomial : crc << 1) & 0xFFFF;
    }
    return crc;
}

struct Family
{
    const char *name;
    Step step;
    quint32 (*bitwise)(quint32, unsigned char, quint32);
    quint32 polynomial;
};

const Family kFamilies[] = {{"ccitt", update_crc_ccitt, mostBitFirst, 0x1021},
                            {"16", update_crc_16, leastBitFirst, 0xA001},
                            {"kermit", update_crc_kermit, leastBitFirst, 0x8408},
                            {"dnp", update_crc_dnp, leastBitFirst, 0xA6BC}};

} // namespace

class TestChecksum : public QObject
{
    Q_OBJECT

private slots:
    void sums_data();
    void sums();
    void sumsWrapAtTheirWidth();
    void lengthBelowOneGivesZero_data();
    void lengthBelowOneGivesZero();
    void nullPointerGivesZero();
    void onlyTheGivenLengthCounts();
    void crc16OfABufferIsArc();
    void publishedCheckValues_data();
    void publishedCheckValues();
    void publishedCheckValuesOf32Bits();
    void publishedCheckValueOfSick();
    void stepOf16BitsIsEightShifts_data();
    void stepOf16BitsIsEightShifts();
    void stepOf32BitsIsEightShifts();
    void sickShiftsOneBitAndTakesTwoBytes_data();
    void sickShiftsOneBitAndTakesTwoBytes();
};

void TestChecksum::sums_data()
{
    QTest::addColumn<QString>("array");
    QTest::addColumn<int>("byteSum");
    QTest::addColumn<int>("shortSum");
    QTest::addColumn<int>("exclusiveOr");
    QTest::newRow("FF 02") << "ff02" << 1 << 257 << 0xFD;
    QTest::newRow("one byte") << "80" << 0x80 << 0x80 << 0x80;
    QTest::newRow("zero byte") << "00" << 0 << 0 << 0;
    QTest::newRow("bytes are unsigned") << "ffffff" << 0xFD << 765 << 0xFF;
    QTest::newRow("odd length") << "0102040810" << 31 << 31 << 31;
    QTest::newRow("a byte twice") << "a5a5" << 0x4A << 0x14A << 0;
}

void TestChecksum::sums()
{
    QFETCH(QString, array);
    QFETCH(int, byteSum);
    QFETCH(int, shortSum);
    QFETCH(int, exclusiveOr);
    const QByteArray frame = QByteArray::fromHex(array.toLatin1());
    const int length = int(frame.size());
    QCOMPARE(int(UInt8CheckSum(data(frame), length)), byteSum);
    QCOMPARE(int(UShortCheckSum(data(frame), length)), shortSum);
    QCOMPARE(int(XorUInt8CheckSum(data(frame), length)), exclusiveOr);
}

// 258 times 255 is 65790.
void TestChecksum::sumsWrapAtTheirWidth()
{
    const QByteArray frame(258, '\xff');
    QCOMPARE(int(UShortCheckSum(data(frame), 257)), 65535);
    QCOMPARE(int(UShortCheckSum(data(frame), 258)), 254);
    QCOMPARE(int(UInt8CheckSum(data(frame), 257)), 255);
    QCOMPARE(int(UInt8CheckSum(data(frame), 258)), 254);
}

void TestChecksum::lengthBelowOneGivesZero_data()
{
    QTest::addColumn<int>("length");
    QTest::newRow("0") << 0;
    QTest::newRow("-1") << -1;
    QTest::newRow("lowest") << INT_MIN;
}

void TestChecksum::lengthBelowOneGivesZero()
{
    QFETCH(int, length);
    const QByteArray frame = bytes("12 34");
    QCOMPARE(int(UInt8CheckSum(data(frame), length)), 0);
    QCOMPARE(int(UShortCheckSum(data(frame), length)), 0);
    QCOMPARE(int(XorUInt8CheckSum(data(frame), length)), 0);
    QCOMPARE(int(CRC16Calculate(data(frame), length)), 0);
}

void TestChecksum::nullPointerGivesZero()
{
    QCOMPARE(int(UInt8CheckSum(nullptr, 4)), 0);
    QCOMPARE(int(UShortCheckSum(nullptr, 4)), 0);
    QCOMPARE(int(XorUInt8CheckSum(nullptr, 4)), 0);
    QCOMPARE(int(CRC16Calculate(nullptr, 4)), 0);
}

void TestChecksum::onlyTheGivenLengthCounts()
{
    const QByteArray frame = bytes("01 02 ff");
    QCOMPARE(int(UInt8CheckSum(data(frame), 2)), 3);
    QCOMPARE(int(UShortCheckSum(data(frame), 2)), 3);
    QCOMPARE(int(XorUInt8CheckSum(data(frame), 2)), 3);
    QCOMPARE(int(CRC16Calculate(data(QByteArray("1234567890")), 9)), 0xBB3D);
}

void TestChecksum::crc16OfABufferIsArc()
{
    QCOMPARE(int(CRC16Calculate(data(kCheckText), 9)), 0xBB3D);
    QCOMPARE(int(CRC16Calculate(data(bytes("00 00")), 2)), 0);
}

void TestChecksum::publishedCheckValues_data()
{
    QTest::addColumn<int>("family");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("last"); // exclusive or at the end
    QTest::addColumn<int>("check");
    QTest::newRow("CRC-16/IBM-3740") << 0 << 0xFFFF << 0 << 0x29B1;
    QTest::newRow("CRC-16/XMODEM") << 0 << 0 << 0 << 0x31C3;
    QTest::newRow("CRC-16/GENIBUS") << 0 << 0xFFFF << 0xFFFF << 0xD64E;
    QTest::newRow("CRC-16/SPI-FUJITSU") << 0 << 0x1D0F << 0 << 0xE5CC;
    QTest::newRow("CRC-16/ARC") << 1 << 0 << 0 << 0xBB3D;
    QTest::newRow("CRC-16/MODBUS") << 1 << 0xFFFF << 0 << 0x4B37;
    QTest::newRow("CRC-16/USB") << 1 << 0xFFFF << 0xFFFF << 0xB4C8;
    QTest::newRow("CRC-16/MAXIM-DOW") << 1 << 0 << 0xFFFF << 0x44C2;
    QTest::newRow("CRC-16/KERMIT") << 2 << 0 << 0 << 0x2189;
    QTest::newRow("CRC-16/IBM-SDLC") << 2 << 0xFFFF << 0xFFFF << 0x906E;
    QTest::newRow("CRC-16/MCRF4XX") << 2 << 0xFFFF << 0 << 0x6F91;
    QTest::newRow("CRC-16/DNP") << 3 << 0 << 0xFFFF << 0xEA82;
}

void TestChecksum::publishedCheckValues()
{
    QFETCH(int, family);
    QFETCH(int, start);
    QFETCH(int, last);
    QFETCH(int, check);
    const int crc = chained(kFamilies[family].step, static_cast<unsigned short>(start));
    QCOMPARE(crc ^ last, check);
}

void TestChecksum::publishedCheckValuesOf32Bits()
{
    unsigned int crc = 0xFFFFFFFFu;
    for (const char *c = kCheckText; *c; ++c)
        crc = update_crc_32(crc, static_cast<unsigned char>(*c));
    QCOMPARE(~crc, 0xCBF43926u); // CRC-32/ISO-HDLC
    QCOMPARE(crc, 0x340BC6D9u);  // CRC-32/JAMCRC
}

// Published as 56A6, the low byte first.
void TestChecksum::publishedCheckValueOfSick()
{
    unsigned short crc = 0;
    unsigned char previous = 0;
    for (const char *c = kCheckText; *c; ++c) {
        crc = update_crc_sick(crc, static_cast<unsigned char>(*c), previous);
        previous = static_cast<unsigned char>(*c);
    }
    QCOMPARE(int(crc), 0xA656);
}

void TestChecksum::stepOf16BitsIsEightShifts_data()
{
    QTest::addColumn<int>("family");
    for (int i = 0; i < 4; ++i)
        QTest::newRow(kFamilies[i].name) << i;
}

void TestChecksum::stepOf16BitsIsEightShifts()
{
    QFETCH(int, family);
    const Family &of = kFamilies[family];
    for (int crc = 0; crc < 0x10000; crc += 0x55) {
        for (int c = 0; c < 0x100; ++c) {
            const unsigned char byte = static_cast<unsigned char>(c);
            QCOMPARE(quint32(of.step(static_cast<unsigned short>(crc), byte)),
                     of.bitwise(static_cast<quint32>(crc), byte, of.polynomial));
        }
    }
}

void TestChecksum::stepOf32BitsIsEightShifts()
{
    for (quint32 i = 0; i < 2000; ++i) {
        const quint32 crc = i * 2654435761u; // spread over all bits
        for (int c = 0; c < 0x100; c += 5) {
            const unsigned char byte = static_cast<unsigned char>(c);
            QCOMPARE(update_crc_32(crc, byte), leastBitFirst(crc, byte, 0xEDB88320u));
        }
    }
}

void TestChecksum::sickShiftsOneBitAndTakesTwoBytes_data()
{
    QTest::addColumn<int>("crc");
    QTest::addColumn<int>("c");
    QTest::addColumn<int>("previous");
    QTest::addColumn<int>("after");
    QTest::newRow("first byte") << 0 << 0x31 << 0 << 0x0031;
    QTest::newRow("previous byte above") << 0 << 0x32 << 0x31 << 0x3132;
    QTest::newRow("one bit up") << 0x0031 << 0x00 << 0x00 << 0x0062;
    QTest::newRow("top bit reduces") << 0x8000 << 0x00 << 0x00 << 0x8005;
    QTest::newRow("top bit is gone") << 0xC000 << 0x00 << 0x00 << 0x0005;
    QTest::newRow("all bits") << 0xFFFF << 0xFF << 0xFF << 0x8004;
}

void TestChecksum::sickShiftsOneBitAndTakesTwoBytes()
{
    QFETCH(int, crc);
    QFETCH(int, c);
    QFETCH(int, previous);
    QFETCH(int, after);
    QCOMPARE(int(update_crc_sick(static_cast<unsigned short>(crc), static_cast<unsigned char>(c),
                                 static_cast<unsigned char>(previous))),
             after);
}

TEST_CLASS(TestChecksum)
#include "test_checksum.moc"
