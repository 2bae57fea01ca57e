// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "ppi_request.h"

#include "ppi_address.h"
#include "ppi_layer2.h"
#include "tools/array_size.h"
#include "tools/byte_order.h"
#include "tools/sizes.h"

#include <new>

namespace {

const unsigned char kProtocol = 0x32;
const unsigned char kJob = 0x01;
const unsigned char kReadVariable = 0x04;
const unsigned char kWriteVariable = 0x05;
const unsigned char kVariableSpecification = 0x12;
const unsigned char kAddressLength = 0x0A; // of what follows it in the item
const unsigned char kAnyPointer = 0x10;

const unsigned char kBit = 0x01;
const unsigned char kByte = 0x02;
const unsigned char kWord = 0x04;
const unsigned char kDWord = 0x06;
const unsigned char kCounter = 0x1E;
const unsigned char kTimer = 0x1F;
const unsigned char kHighSpeedCounter = 0x20;

const int kOneItemBlockSize = 14;
const int kDataHeadSize = 4; // in front of the payload of a write
const int kBitItemSize = 5;  // and a fill byte behind all but the last
const int kTimerRecordSize = 5;
const int kCounterRecordSize = 3;

// Transport sizes of the data: their length is counted in bits.
const unsigned char kBitData = 0x03;
const unsigned char kOtherData = 0x04;

void appendHeader(PpiBytes &pdu, unsigned short &pduReference, int parameterLength, int dataLength)
{
    ++pduReference;
    const unsigned int parameters = static_cast<unsigned int>(parameterLength);
    const unsigned int data = static_cast<unsigned int>(dataLength);
    // clang-format off
    const unsigned char header[] = {
        kProtocol, kJob,
        0, 0,
        ppiByte(pduReference, 1), ppiByte(pduReference, 0),
        ppiByte(parameters, 1), ppiByte(parameters, 0),
        ppiByte(data, 1), ppiByte(data, 0),
    };
    // clang-format on
    pdu.append(header);
}

void appendItem(PpiBytes &pdu, unsigned char transportSize, unsigned short count, const QByteArray &prefix,
                unsigned int wireAddress)
{
    // clang-format off
    const unsigned char item[] = {
        kVariableSpecification, kAddressLength, kAnyPointer,
        transportSize,
        ppiByte(count, 1), ppiByte(count, 0),
        0, S7_200_PPIDBNumber(prefix),
        S7_200_PPIAreaCode(prefix),
        ppiByte(wireAddress, 2), ppiByte(wireAddress, 1), ppiByte(wireAddress, 0),
    };
    // clang-format on
    pdu.append(item);
}

void appendOneItemBlock(PpiBytes &pdu, unsigned char function, unsigned char transportSize,
                        unsigned short count, const QByteArray &prefix, unsigned int address)
{
    const unsigned char head[] = {function, 1};
    pdu.append(head);
    appendItem(pdu, transportSize, count, prefix, S7_200_PPIWireAddress(prefix, address));
}

PpiBytes packReadPDU(unsigned short &pduReference, unsigned char transportSize, unsigned short count,
                     const QByteArray &prefix, unsigned int address)
{
    PpiBytes pdu;
    appendHeader(pdu, pduReference, kOneItemBlockSize, 0);
    appendOneItemBlock(pdu, kReadVariable, transportSize, count, prefix, address);
    return pdu;
}

unsigned char transportSizeOfObject(const QByteArray &prefix)
{
    if (prefix == "C")
        return kCounter;
    return prefix == "T" ? kTimer : kHighSpeedCounter;
}

PpiBytes packReadMemoryPDU(unsigned short &pduReference, const QByteArray &prefix, unsigned int byteAddress,
                           unsigned int byteCount)
{
    switch (S7_200_PPIElementSize(prefix)) {
    case 4:
        return S7_200_PPIPackLayer7ReadDWordsReqPDU(
            pduReference, prefix, byteAddress,
            static_cast<unsigned short>(NumOfBytesToNumOfDWords(byteCount)));
    case 2:
        return S7_200_PPIPackLayer7ReadWordsReqPDU(
            pduReference, prefix, byteAddress,
            static_cast<unsigned short>(NumOfBytesToNumOfWords(byteCount)));
    default:
        return S7_200_PPIPackLayer7ReadBytesReqPDU(pduReference, prefix, byteAddress,
                                                   static_cast<unsigned short>(byteCount));
    }
}

PpiBytes packWriteItemPDU(unsigned short &pduReference, const QByteArray &prefix, unsigned int address,
                          unsigned char transportSize, int count, const PpiBytes &payload)
{
    PpiBytes pdu;
    appendHeader(pdu, pduReference, kOneItemBlockSize, kDataHeadSize + payload.size());
    appendOneItemBlock(pdu, kWriteVariable, transportSize, static_cast<unsigned short>(count), prefix,
                       address);
    pdu.append(S7_200_PPIPackLayer7WriteByteWordDWordReqDataBlock(payload));
    return pdu;
}

PpiBytes packWriteMemoryPDU(unsigned short &pduReference, const QByteArray &prefix, unsigned int byteAddress,
                            const QByteArray &data)
{
    switch (S7_200_PPIElementSize(prefix)) {
    case 4: {
        const PpiBytes payload = toBigEndianULongArray(data);
        return packWriteItemPDU(pduReference, prefix, byteAddress, kDWord, payload.size() / 4, payload);
    }
    case 2: {
        const PpiBytes payload = toBigEndianUShortArray(data);
        return packWriteItemPDU(pduReference, prefix, byteAddress, kWord, payload.size() / 2, payload);
    }
    default:
        return packWriteItemPDU(pduReference, prefix, byteAddress, kByte, int(data.size()), data);
    }
}

// The values most significant byte first, each behind its record's leading zero bytes.
PpiBytes packObjectValues(const QByteArray &values, int recordSize)
{
    PpiBytes payload;
    for (int i = 0; i < values.size(); i += 2) {
        const char high = i + 1 < values.size() ? values.at(i + 1) : '\0';
        const unsigned char record[] = {0, 0, 0, static_cast<unsigned char>(high),
                                        static_cast<unsigned char>(values.at(i))};
        payload.append(record + int(sizeof record) - recordSize, recordSize);
    }
    return payload;
}

PpiBytes packBitItems(const QByteArray &prefix, unsigned int byteAddress, unsigned int bitNumber,
                      unsigned char count)
{
    const unsigned char head[] = {kWriteVariable, count};
    PpiBytes block(head);
    for (int i = 0; i < count; ++i) {
        appendItem(block, kBit, 1, prefix, byteAddress * 8 + bitNumber);
        if (bitNumber < 7) {
            ++bitNumber;
        } else {
            bitNumber = 0;
            ++byteAddress;
        }
    }
    return block;
}

PpiBytes packBitValues(const QByteArray &values)
{
    PpiBytes data;
    for (int i = 0; i < values.size(); ++i) {
        const unsigned char item[] = {0, kBitData, 0, 1, static_cast<unsigned char>(values.at(i)), 0};
        const bool last = i + 1 == values.size();
        data.append(item, last ? kBitItemSize : kBitItemSize + 1);
    }
    return data;
}

} // namespace

PpiBytes S7_200_PPIPackLayer7ReadReqHeader(unsigned short &pduReference, unsigned short parameterLength)
{
    PpiBytes header;
    appendHeader(header, pduReference, parameterLength, 0);
    return header;
}

PpiBytes S7_200_PPIPackLayer7ReadReqParamBlock(unsigned char transportSize, unsigned short count,
                                               const QByteArray &prefix, unsigned int address)
{
    PpiBytes block;
    appendOneItemBlock(block, kReadVariable, transportSize, count, prefix, address);
    return block;
}

PpiBytes S7_200_PPIPackLayer7ReadBytesReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                             unsigned int byteAddress, unsigned short count)
{
    return packReadPDU(pduReference, kByte, count, prefix, byteAddress);
}

PpiBytes S7_200_PPIPackLayer7ReadWordsReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                             unsigned int byteAddress, unsigned short count)
{
    return packReadPDU(pduReference, kWord, count, prefix, byteAddress);
}

PpiBytes S7_200_PPIPackLayer7ReadDWordsReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                              unsigned int byteAddress, unsigned short count)
{
    return packReadPDU(pduReference, kDWord, count, prefix, byteAddress);
}

PpiBytes S7_200_PPIPackLayer7ReadObjectsReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                               unsigned int objectNumber, unsigned short count)
{
    return packReadPDU(pduReference, transportSizeOfObject(prefix), count, prefix, objectNumber);
}

PpiBytes S7_200_PPIPackReadBytesReq(unsigned short &pduReference, unsigned char destination,
                                    unsigned char source, const QByteArray &prefix, unsigned int byteAddress,
                                    unsigned short byteCount)
{
    return S7_200_PPIPackReadMemoryReq(pduReference, destination, source, prefix, byteAddress, byteCount);
}

PpiBytes S7_200_PPIPackReadMemoryReq(unsigned short &pduReference, unsigned char destination,
                                     unsigned char source, const QByteArray &prefix, unsigned int byteAddress,
                                     unsigned int byteCount)
{
    return S7_200_PPIPackLayer2SD2Request(destination, source,
                                          packReadMemoryPDU(pduReference, prefix, byteAddress, byteCount));
}

PpiBytes S7_200_PPIPackReadObjectsReq(unsigned short &pduReference, unsigned char destination,
                                      unsigned char source, const QByteArray &prefix,
                                      unsigned int objectNumber, unsigned short count)
{
    return S7_200_PPIPackLayer2SD2Request(
        destination, source,
        S7_200_PPIPackLayer7ReadObjectsReqPDU(pduReference, prefix, objectNumber, count));
}

PpiBytes S7_200_PPIPackLayer7WriteReqHeader(unsigned short &pduReference, unsigned short parameterLength,
                                            unsigned short dataLength)
{
    PpiBytes header;
    appendHeader(header, pduReference, parameterLength, dataLength);
    return header;
}

PpiBytes S7_200_PPIPackLayer7WriteByteWordDWordReqParamBlock(const QByteArray &prefix, unsigned int address,
                                                             unsigned char transportSize,
                                                             unsigned short count)
{
    PpiBytes block;
    appendOneItemBlock(block, kWriteVariable, transportSize, count, prefix, address);
    return block;
}

PpiBytes S7_200_PPIPackLayer7WriteByteWordDWordReqDataBlock(const PpiBytes &payload)
{
    const unsigned int bits = static_cast<unsigned int>(payload.size()) * 8;
    const unsigned char head[kDataHeadSize] = {0, kOtherData, ppiByte(bits, 1), ppiByte(bits, 0)};
    PpiBytes data(head);
    data.append(payload);
    return data;
}

PpiBytes S7_200_PPIPackWriteMemoryReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                      const QByteArray &prefix, unsigned int byteAddress,
                                      const QByteArray &data)
{
    return S7_200_PPIPackLayer2SD2Request(da, sa,
                                          packWriteMemoryPDU(pduReference, prefix, byteAddress, data));
}

PpiBytes S7_200_PPIPackWriteTimersReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                      unsigned int timerNumber, const QByteArray &values)
{
    return S7_200_PPIPackLayer2SD2Request(da, sa,
                                          packWriteItemPDU(pduReference, "T", timerNumber, kTimer,
                                                           int(values.size()) / 2,
                                                           packObjectValues(values, kTimerRecordSize)));
}

PpiBytes S7_200_PPIPackLayer7WriteCountersReqPDU(unsigned short &pduReference, unsigned int counterNumber,
                                                 const QByteArray &values)
{
    return packWriteItemPDU(pduReference, "C", counterNumber, kCounter, int(values.size()) / 2,
                            packObjectValues(values, kCounterRecordSize));
}

PpiBytes S7_200_PPIPackWriteCountersReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                        unsigned int counterNumber, const QByteArray &values)
{
    return S7_200_PPIPackLayer2SD2Request(
        da, sa, S7_200_PPIPackLayer7WriteCountersReqPDU(pduReference, counterNumber, values));
}

PpiBytes S7_200_PPIPackWriteBitsReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                    const QByteArray &prefix, unsigned int byteAddress,
                                    unsigned int bitNumber, const QByteArray &values)
{
    const PpiBytes block =
        packBitItems(prefix, byteAddress, bitNumber, static_cast<unsigned char>(values.size()));
    const PpiBytes data = packBitValues(values);
    PpiBytes pdu;
    appendHeader(pdu, pduReference, block.size(), data.size());
    pdu.append(block).append(data);
    return S7_200_PPIPackLayer2SD2Request(da, sa, pdu);
}

QByteArray DriverS7_200_PPIGetSafeData(const CommunicatorCommand &command, const QByteArray &data)
{
    if (!isWordCommand(command) && !isDoubleWordCommand(command))
        return data;
    QByteArray fitted = data;
    if (!resizeWithZeros(fitted, qint64(command.count) * (isWordCommand(command) ? 2 : 4)))
        throw std::bad_alloc();
    return fitted;
}
