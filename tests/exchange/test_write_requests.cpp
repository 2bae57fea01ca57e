// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The frames of write requests and the parts that they are made of.

#include "frame_vectors.h"
#include "hex.h"
#include "request_layout.h"
#include "simatic_s7_200_ppi/ppi_request.h"
#include "test_class.h"

#include <QtTest>

namespace {

const int kBlockSize = 14;

typedef QByteArray (*ObjectsRequest)(unsigned short &, unsigned char, unsigned char, unsigned int,
                                     const QByteArray &);

QByteArray memoryRequest(const QByteArray &prefix, unsigned int byteAddress, const QByteArray &data)
{
    unsigned short reference = 0;
    return S7_200_PPIPackWriteMemoryReq(reference, 2, 0, prefix, byteAddress, data);
}

QByteArray bitsRequest(const QByteArray &prefix, unsigned int byteAddress, unsigned int bitNumber,
                       const QByteArray &values)
{
    unsigned short reference = 0;
    return S7_200_PPIPackWriteBitsReq(reference, 2, 0, prefix, byteAddress, bitNumber, values);
}

QByteArray objectsRequest(ObjectsRequest pack, unsigned int number, const QByteArray &values)
{
    unsigned short reference = 0;
    return pack(reference, 2, 0, number, values);
}

int pduSize(const QByteArray &frame)
{
    return int(frame.size()) - kPDUStart - kFrameEnd;
}

QByteArray blockOf(const QByteArray &frame)
{
    return frame.mid(kBlockStart, kBlockSize);
}

QByteArray dataOf(const QByteArray &frame)
{
    const int start = kBlockStart + kBlockSize;
    return frame.mid(start, int(frame.size()) - kFrameEnd - start);
}

// The addresses of the items of a bit write, in their order, 3 bytes each.
QString itemAddresses(const QByteArray &frame, int items)
{
    const int itemSize = 12;
    const int firstAddress = kBlockStart + 2 + itemSize - 3;
    QStringList addresses;
    for (int i = 0; i < items; ++i)
        addresses += hex(frame.mid(firstAddress + i * itemSize, 3));
    return addresses.join(" ");
}

void addObjectColumns()
{
    QTest::addColumn<uint>("number");
    QTest::addColumn<QByteArray>("values");
    QTest::addColumn<QByteArray>("frame");
}

void row(const FrameVectors &frames, const char *name, uint number, const char *values)
{
    QTest::newRow(name) << number << bytes(values) << frames.sent(name);
}

} // namespace

class TestWriteRequests : public QObject
{
    Q_OBJECT

private slots:
    void headerAdvancesTheReference_data();
    void headerAdvancesTheReference();
    void parameterBlock_data();
    void parameterBlock();
    void dataBlockCountsItsPayloadInBits_data();
    void dataBlockCountsItsPayloadInBits();

    void memory_data();
    void memory();
    void memoryWithoutDataHasNoElements_data();
    void memoryWithoutDataHasNoElements();
    void lengthOfALongRequestWraps_data();
    void lengthOfALongRequestWraps();
    void countsOfALongRequestWrap();

    void timers_data();
    void timers();
    void counters_data();
    void counters();
    void counterPDUIsWhatItsFrameCarries();
    void anOddByteMakesAnElementThatIsNotCounted_data();
    void anOddByteMakesAnElementThatIsNotCounted();

    void bits_data();
    void bits();
    void allDataItemsOfBitsButTheLastHaveAFillByte();
    void bitsFollowEachOther_data();
    void bitsFollowEachOther();
    void bitsHaveAreaAndDataBlockOfTheirPrefix_data();
    void bitsHaveAreaAndDataBlockOfTheirPrefix();
    void itemCountOfBitsIsTheLowByteOfTheirNumber_data();
    void itemCountOfBitsIsTheLowByteOfTheirNumber();

    void sizesOfPDUs_data();
    void sizesOfPDUs();
    void stationsAreThoseGiven();
    void everyRequestAdvancesTheReferenceOnce();
    void referenceWrapsFrom65535To0();
};

void TestWriteRequests::headerAdvancesTheReference_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("parameterLength");
    QTest::addColumn<int>("dataLength");
    QTest::addColumn<QString>("header");
    QTest::addColumn<int>("after");
    QTest::newRow("reference 7") << 6 << 14 << 6 << "320100000007000e0006" << 7;
    QTest::newRow("first") << 0 << 14 << 5 << "320100000001000e0005" << 1;
    QTest::newRow("last before the wrap") << 0xfffe << 14 << 6 << "32010000ffff000e0006" << 0xffff;
    QTest::newRow("wrap") << 0xffff << 14 << 6 << "320100000000000e0006" << 0;
    QTest::newRow("long blocks") << 0x1233 << 0x0bf6 << 0x05f9 << "3201000012340bf605f9" << 0x1234;
}

void TestWriteRequests::headerAdvancesTheReference()
{
    QFETCH(int, before);
    QFETCH(int, parameterLength);
    QFETCH(int, dataLength);
    QFETCH(QString, header);
    QFETCH(int, after);
    unsigned short reference = static_cast<unsigned short>(before);
    const QByteArray packed = S7_200_PPIPackLayer7WriteReqHeader(
        reference, static_cast<unsigned short>(parameterLength), static_cast<unsigned short>(dataLength));
    QCOMPARE(hex(packed), header);
    QCOMPARE(int(reference), after);
}

void TestWriteRequests::parameterBlock_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<uint>("address");
    QTest::addColumn<int>("transportSize");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("block");
    const auto row = [](const char *name, const char *prefix, uint address, int transportSize, int count,
                        const char *block) {
        QTest::newRow(name) << QByteArray(prefix) << address << transportSize << count << block;
    };
    row("VB100", "VB", 100u, 2, 2, "0501120a10020002000184000320");
    row("VW10", "VW", 10u, 4, 2, "0501120a10040002000184000050");
    row("VD10", "VD", 10u, 6, 1, "0501120a10060001000184000050");
    row("SMB28", "SMB", 28u, 2, 1, "0501120a100200010000050000e0");
    row("AQW2", "AQW", 2u, 4, 1, "0501120a10040001000007000010");
    row("T37", "T", 37u, 0x1f, 1, "0501120a101f000100001f000025");
    row("C5", "C", 5u, 0x1e, 1, "0501120a101e000100001e000005");
    row("HC1 is an object", "HC", 1u, 2, 1, "0501120a10020001000020000001");
    row("unknown prefix", "DB", 100u, 2, 1, "0501120a10020001000000000320");
    row("lower case", "vb", 100u, 2, 1, "0501120a10020001000000000320");
    row("no prefix", "", 100u, 2, 1, "0501120a10020001000000000320");
    row("V in front is data block 1", "VX", 0u, 2, 1, "0501120a10020001000100000000");
    row("count ffff", "VB", 0u, 2, 0xffff, "0501120a1002ffff000184000000");
    row("last address", "VB", 2097151u, 2, 1, "0501120a10020001000184fffff8");
    row("byte 2^21", "VB", 2097152u, 2, 1, "0501120a10020001000184000000");
    row("byte 2^32 - 1", "VB", 4294967295u, 2, 1, "0501120a10020001000184fffff8");
    row("timer 2^24 + 1", "T", 16777217u, 0x1f, 1, "0501120a101f000100001f000001");
}

void TestWriteRequests::parameterBlock()
{
    QFETCH(QByteArray, prefix);
    QFETCH(uint, address);
    QFETCH(int, transportSize);
    QFETCH(int, count);
    QFETCH(QString, block);
    const QByteArray packed = S7_200_PPIPackLayer7WriteByteWordDWordReqParamBlock(
        prefix, address, static_cast<unsigned char>(transportSize), static_cast<unsigned short>(count));
    QCOMPARE(hex(packed), block);
}

void TestWriteRequests::dataBlockCountsItsPayloadInBits_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("head");
    QTest::newRow("nothing") << QByteArray() << "00040000";
    QTest::newRow("1 byte") << bytes("ff") << "00040008";
    QTest::newRow("2 bytes") << bytes("1122") << "00040010";
    QTest::newRow("a timer") << bytes("00 00 00 01 2c") << "00040028";
    QTest::newRow("a counter") << bytes("00 00 05") << "00040018";
    QTest::newRow("32 bytes") << QByteArray(32, '\x01') << "00040100";
    QTest::newRow("8191 bytes") << QByteArray(8191, '\x01') << "0004fff8";
    QTest::newRow("8192 bytes") << QByteArray(8192, '\x01') << "00040000";
    QTest::newRow("8193 bytes") << QByteArray(8193, '\x01') << "00040008";
}

void TestWriteRequests::dataBlockCountsItsPayloadInBits()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, head);
    const QByteArray block = S7_200_PPIPackLayer7WriteByteWordDWordReqDataBlock(payload);
    QCOMPARE(hex(block), head + hex(payload));
}

void TestWriteRequests::memory_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<uint>("address");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("frame");
    const FrameVectors frames("exchange/write_requests.frames");
    const auto row = [&](const char *name, const char *prefix, uint address, const char *data) {
        QTest::newRow(name) << QByteArray(prefix) << address << bytes(data) << frames.sent(name);
    };
    row("VB10", "VB", 10u, "112233");
    row("VW10", "VW", 10u, "34127856");
    row("VW10, a word and a half", "VW", 10u, "341278");
    row("VD10", "VD", 10u, "44332211");
    row("VD10, half a double word", "VD", 10u, "3412");
    row("VD10, 5 bytes", "VD", 10u, "4433221155");
    row("QB0", "QB", 0u, "ff");
    row("SB3", "SB", 3u, "01");
    row("IW0", "IW", 0u, "3412");
    row("MD4", "MD", 4u, "44332211");
    row("SMD28", "SMD", 28u, "44332211");
    row("AQW2", "AQW", 2u, "3412");
    row("no prefix", "", 10u, "11");
}

void TestWriteRequests::memory()
{
    QFETCH(QByteArray, prefix);
    QFETCH(uint, address);
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, frame);
    QCOMPARE(hex(memoryRequest(prefix, address, data)), hex(frame));
}

void TestWriteRequests::memoryWithoutDataHasNoElements_data()
{
    QTest::addColumn<QByteArray>("frame");
    const FrameVectors frames("exchange/write_requests.frames");
    for (const char *prefix : {"VB", "VW", "VD"})
        QTest::newRow(prefix) << frames.sent(QByteArray(prefix) + " without data");
}

void TestWriteRequests::memoryWithoutDataHasNoElements()
{
    QFETCH(QByteArray, frame);
    QCOMPARE(hex(memoryRequest(QTest::currentDataTag(), 10, QByteArray())), hex(frame));
}

// A byte write's PDU is 28 bytes and its data, which are all 01 here.
void TestWriteRequests::lengthOfALongRequestWraps_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QByteArray>("front");
    QTest::addColumn<QString>("end");
    const FrameVectors frames("exchange/write_requests.frames");
    const auto row = [&](const char *name, int size, const char *end) {
        QTest::newRow(name) << size << frames.sent(name) << end;
    };
    row("224 bytes, PDU of 252, do not", 224, "1816");
    row("225 bytes, check sum of nothing", 225, "0016");
    row("252 bytes, check sum of 27 bytes", 252, "6616");
    row("300 bytes, check sum of 75 bytes", 300, "6016");
}

void TestWriteRequests::lengthOfALongRequestWraps()
{
    QFETCH(int, size);
    QFETCH(QByteArray, front);
    QFETCH(QString, end);
    const QByteArray frame = memoryRequest("VB", 0, QByteArray(size, '\x01'));
    QCOMPARE(int(frame.size()), size + 37);
    QCOMPARE(hex(frame.left(35)), hex(front));
    QCOMPARE(hex(frame.right(2)), end);
}

void TestWriteRequests::countsOfALongRequestWrap()
{
    const QByteArray frame = memoryRequest("VB", 0, QByteArray(65536, '\x01'));
    QCOMPARE(int(frame.size()), 65573);
    QCOMPARE(hex(frame.left(35)), hex(bytes("68 1f 1f 68 02 00 6c 32 01 00 00 00 01 00 0e 00 04"
                                            "05 01 12 0a 10 02 00 00 00 01 84 00 00 00 00 04 00 00")));
    QCOMPARE(hex(frame.right(2)), QString("7116"));
}

void TestWriteRequests::timers_data()
{
    addObjectColumns();
    const FrameVectors frames("exchange/write_requests.frames");
    row(frames, "T37", 37u, "2c 01");
    row(frames, "T37 and T38", 37u, "2c 01 e8 03");
    row(frames, "no timers", 37u, "");
}

void TestWriteRequests::timers()
{
    QFETCH(uint, number);
    QFETCH(QByteArray, values);
    QFETCH(QByteArray, frame);
    QCOMPARE(hex(objectsRequest(S7_200_PPIPackWriteTimersReq, number, values)), hex(frame));
}

void TestWriteRequests::counters_data()
{
    addObjectColumns();
    const FrameVectors frames("exchange/write_requests.frames");
    row(frames, "C5", 5u, "05 00");
    row(frames, "C5 and C6", 5u, "05 00 06 01");
    row(frames, "no counters", 5u, "");
}

void TestWriteRequests::counters()
{
    QFETCH(uint, number);
    QFETCH(QByteArray, values);
    QFETCH(QByteArray, frame);
    QCOMPARE(hex(objectsRequest(S7_200_PPIPackWriteCountersReq, number, values)), hex(frame));
}

void TestWriteRequests::counterPDUIsWhatItsFrameCarries()
{
    unsigned short reference = 6;
    QCOMPARE(hex(S7_200_PPIPackLayer7WriteCountersReqPDU(reference, 5, bytes("05 00"))),
             hex(bytes("32 01 00 00 00 07 00 0e 00 07 05 01 12 0a 10 1e 00 01 00 00 1e 00 00 05"
                       "00 04 00 18 00 00 05")));
    QCOMPARE(int(reference), 7);
}

void TestWriteRequests::anOddByteMakesAnElementThatIsNotCounted_data()
{
    QTest::addColumn<bool>("timers");
    QTest::addColumn<QByteArray>("values");
    QTest::addColumn<QString>("block");
    QTest::addColumn<QString>("data");
    const auto row = [](const char *name, bool timers, const char *values, const char *block,
                        const char *data) {
        QTest::newRow(name) << timers << bytes(values) << block << data;
    };
    row("timers, 3 bytes", true, "2c 01 e8", "0501120a101f000100001f000005", "00040050000000012c00000000e8");
    row("timers, 1 byte", true, "e8", "0501120a101f000000001f000005", "0004002800000000e8");
    row("counters, 3 bytes", false, "05 00 06", "0501120a101e000100001e000005", "00040030000005000006");
    row("counters, 1 byte", false, "11", "0501120a101e000000001e000005", "00040018000011");
}

void TestWriteRequests::anOddByteMakesAnElementThatIsNotCounted()
{
    QFETCH(bool, timers);
    QFETCH(QByteArray, values);
    QFETCH(QString, block);
    QFETCH(QString, data);
    const QByteArray frame =
        objectsRequest(timers ? S7_200_PPIPackWriteTimersReq : S7_200_PPIPackWriteCountersReq, 5, values);
    QCOMPARE(hex(blockOf(frame)), block);
    QCOMPARE(hex(dataOf(frame)), data);
}

void TestWriteRequests::bits_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<uint>("byte");
    QTest::addColumn<uint>("bit");
    QTest::addColumn<QByteArray>("values");
    QTest::addColumn<QByteArray>("frame");
    const FrameVectors frames("exchange/write_requests.frames");
    const auto row = [&](const char *name, const char *prefix, uint byte, uint bit, const char *values) {
        QTest::newRow(name) << QByteArray(prefix) << byte << bit << bytes(values) << frames.sent(name);
    };
    row("V10.3", "V", 10u, 3u, "01");
    row("Q0.7 and Q1.0", "Q", 0u, 7u, "01 00");
    row("V10.6 to V11.0", "V", 10u, 6u, "01 00 01");
    row("the value as it stands", "M", 13u, 3u, "ff");
}

void TestWriteRequests::bits()
{
    QFETCH(QByteArray, prefix);
    QFETCH(uint, byte);
    QFETCH(uint, bit);
    QFETCH(QByteArray, values);
    QFETCH(QByteArray, frame);
    QCOMPARE(hex(bitsRequest(prefix, byte, bit, values)), hex(frame));
}

void TestWriteRequests::allDataItemsOfBitsButTheLastHaveAFillByte()
{
    const QByteArray frame = bitsRequest("V", 10, 0, bytes("01 02 03 04"));
    const QByteArray data = bytes("00 03 00 01 01 00  00 03 00 01 02 00  00 03 00 01 03 00  00 03 00 01 04");
    QCOMPARE(hex(frame.mid(15, 2)), QString("0017"));
    QCOMPARE(hex(frame.mid(kBlockStart + 50, 23)), hex(data));
    QCOMPARE(int(frame.size()), kBlockStart + 50 + 23 + kFrameEnd);
}

void TestWriteRequests::bitsFollowEachOther_data()
{
    QTest::addColumn<uint>("byte");
    QTest::addColumn<uint>("bit");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("addresses");
    const auto row = [](const char *name, uint byte, uint bit, int count, const char *addresses) {
        QTest::newRow(name) << byte << bit << count << addresses;
    };
    row("within a byte", 10u, 3u, 2, "000053 000054");
    row("into the next byte", 10u, 6u, 3, "000056 000057 000058");
    row("through a byte", 0u, 7u, 10,
        "000007 000008 000009 00000a 00000b 00000c 00000d 00000e 00000f 000010");
    row("first bit 8", 10u, 8u, 3, "000058 000058 000059");
    row("first bit 17", 10u, 17u, 3, "000061 000058 000059");
    row("first bit -2, wrapped", 10u, 4294967294u, 3, "00004e 000058 000059");
    row("first bit -1, wrapped", 10u, 4294967295u, 3, "00004f 000050 000051");
    row("over the end of the addresses", 2097151u, 7u, 2, "ffffff 000000");
    row("over the end of the byte numbers", 4294967295u, 7u, 2, "ffffff 000000");
}

void TestWriteRequests::bitsFollowEachOther()
{
    QFETCH(uint, byte);
    QFETCH(uint, bit);
    QFETCH(int, count);
    QFETCH(QString, addresses);
    QCOMPARE(itemAddresses(bitsRequest("V", byte, bit, QByteArray(count, '\x01')), count), addresses);
}

void TestWriteRequests::bitsHaveAreaAndDataBlockOfTheirPrefix_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<QString>("block");
    QTest::newRow("V") << QByteArray("V") << "0501120a10010001000184000053";
    QTest::newRow("I") << QByteArray("I") << "0501120a10010001000081000053";
    QTest::newRow("SM") << QByteArray("SM") << "0501120a10010001000005000053";
    QTest::newRow("S") << QByteArray("S") << "0501120a10010001000004000053";
    QTest::newRow("VB is not looked at for its width") << QByteArray("VB") << "0501120a10010001000184000053";
    QTest::newRow("VD is not looked at for its width") << QByteArray("VD") << "0501120a10010001000184000053";
    QTest::newRow("HC is addressed by bit, too") << QByteArray("HC") << "0501120a10010001000020000053";
    QTest::newRow("AIW") << QByteArray("AIW") << "0501120a10010001000006000053";
    QTest::newRow("unknown prefix") << QByteArray("q") << "0501120a10010001000000000053";
    QTest::newRow("no prefix") << QByteArray() << "0501120a10010001000000000053";
}

void TestWriteRequests::bitsHaveAreaAndDataBlockOfTheirPrefix()
{
    QFETCH(QByteArray, prefix);
    QFETCH(QString, block);
    QCOMPARE(hex(blockOf(bitsRequest(prefix, 10, 3, bytes("01")))), block);
}

// The data hold an item for every bit all the same.
void TestWriteRequests::itemCountOfBitsIsTheLowByteOfTheirNumber_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("front");
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("end");
    const FrameVectors frames("exchange/write_requests.frames");
    const auto row = [&](const char *name, int count, int size, const char *end) {
        QTest::newRow(name) << count << frames.sent(name) << size << end;
    };
    row("255 bits", 255, 4610, "4c16");
    row("256 bits, no items", 256, 1556, "ad16");
    row("257 bits, 1 item", 257, 1574, "7916");
}

void TestWriteRequests::itemCountOfBitsIsTheLowByteOfTheirNumber()
{
    QFETCH(int, count);
    QFETCH(QByteArray, front);
    QFETCH(int, size);
    QFETCH(QString, end);
    const QByteArray frame = bitsRequest("V", 0, 0, QByteArray(count, '\x01'));
    QCOMPARE(hex(frame.left(int(front.size()))), hex(front));
    QCOMPARE(int(frame.size()), size);
    QCOMPARE(hex(frame.right(2)), end);
}

void TestWriteRequests::sizesOfPDUs_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<int>("size");
    const QByteArray eight = bytes("01 00 02 00 03 00 04 00");
    QTest::newRow("8 bytes") << memoryRequest("VB", 0, eight) << 28 + 8;
    QTest::newRow("4 words") << memoryRequest("VW", 0, eight) << 28 + 2 * 4;
    QTest::newRow("2 double words") << memoryRequest("VD", 0, eight) << 28 + 4 * 2;
    QTest::newRow("4 timers") << objectsRequest(S7_200_PPIPackWriteTimersReq, 0, eight) << 28 + 5 * 4;
    QTest::newRow("4 counters") << objectsRequest(S7_200_PPIPackWriteCountersReq, 0, eight) << 28 + 3 * 4;
    QTest::newRow("1 bit") << bitsRequest("V", 0, 0, eight.left(1)) << 10 + 2 + 12 * 1 + 6 * 1 - 1;
    QTest::newRow("3 bits") << bitsRequest("V", 0, 0, eight.left(3)) << 10 + 2 + 12 * 3 + 6 * 3 - 1;
    QTest::newRow("8 bits") << bitsRequest("V", 0, 0, eight) << 10 + 2 + 12 * 8 + 6 * 8 - 1;
}

void TestWriteRequests::sizesOfPDUs()
{
    QFETCH(QByteArray, frame);
    QFETCH(int, size);
    QCOMPARE(pduSize(frame), size);
}

void TestWriteRequests::stationsAreThoseGiven()
{
    unsigned short reference = 0;
    const QByteArray values = bytes("01");
    QCOMPARE(hex(QByteArray(S7_200_PPIPackWriteMemoryReq(reference, 126, 3, "VB", 0, values)).mid(4, 2)),
             QString("7e03"));
    QCOMPARE(hex(QByteArray(S7_200_PPIPackWriteTimersReq(reference, 126, 3, 0, values)).mid(4, 2)),
             QString("7e03"));
    QCOMPARE(hex(QByteArray(S7_200_PPIPackWriteCountersReq(reference, 126, 3, 0, values)).mid(4, 2)),
             QString("7e03"));
    QCOMPARE(hex(QByteArray(S7_200_PPIPackWriteBitsReq(reference, 126, 3, "V", 0, 0, values)).mid(4, 2)),
             QString("7e03"));
}

void TestWriteRequests::everyRequestAdvancesTheReferenceOnce()
{
    unsigned short reference = 6;
    const QByteArray values = bytes("01 00");
    S7_200_PPIPackWriteMemoryReq(reference, 2, 0, "VB", 0, values);
    QCOMPARE(int(reference), 7);
    S7_200_PPIPackWriteTimersReq(reference, 2, 0, 0, values);
    QCOMPARE(int(reference), 8);
    S7_200_PPIPackLayer7WriteCountersReqPDU(reference, 0, values);
    QCOMPARE(int(reference), 9);
    S7_200_PPIPackWriteCountersReq(reference, 2, 0, 0, values);
    QCOMPARE(int(reference), 10);
    S7_200_PPIPackWriteBitsReq(reference, 2, 0, "V", 0, 0, values);
    QCOMPARE(int(reference), 11);
}

void TestWriteRequests::referenceWrapsFrom65535To0()
{
    unsigned short reference = 0xffff;
    QCOMPARE(hex(S7_200_PPIPackWriteMemoryReq(reference, 2, 0, "VB", 10, bytes("112233"))),
             hex(bytes("68 22 22 68 02 00 6c 32 01 00 00 00 00 00 0e 00 07"
                       "05 01 12 0a 10 02 00 03 00 01 84 00 00 50 00 04 00 18 11 22 33 44 16")));
    QCOMPARE(int(reference), 0);
}

TEST_CLASS(TestWriteRequests)

#include "test_write_requests.moc"
