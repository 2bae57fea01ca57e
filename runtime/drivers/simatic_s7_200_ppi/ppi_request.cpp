// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "ppi_request.h"

#include "ppi_address.h"
#include "ppi_block.h"
#include "ppi_layer2.h"
#include "ppi_static.h"
#include "tools/array_size.h"
#include "tools/byte_order.h"
#include "tools/pack.h"
#include "tools/sizes.h"

#include <QtEndian>

#include <new>

namespace {

const unsigned char kProtocol = 0x32;
const unsigned char kJob = 0x01;
const unsigned char kReadVariable = 0x04;
const unsigned char kWriteVariable = 0x05;
const unsigned char kVariableSpecification = 0x12;
const unsigned char kAddressLength = 0x0A; // of what follows it in the item
const unsigned char kAnyPointer = 0x10;

const unsigned char kBitElement = 0x01;
const unsigned char kByteElement = 0x02;
const unsigned char kWordElement = 0x04;
const unsigned char kDWordElement = 0x06;
const unsigned char kCounterElement = 0x1E;
const unsigned char kTimerElement = 0x1F;
const unsigned char kHighSpeedCounterElement = 0x20;

// Transport sizes of the data: their length is counted in bits.
const unsigned char kBitData = 0x03;
const unsigned char kOtherData = 0x04;

unsigned char areaCode(const QByteArray &prefix)
{
    return g_s7_200_ppi_area_table.value(prefix, 0);
}

// The low 24 bits of an address, most significant byte first.
class AddressField
{
public:
    explicit AddressField(unsigned int address) { qToBigEndian(quint32(address), bytes); }
    const unsigned char *low24Bits() const { return bytes + 1; }

private:
    unsigned char bytes[4];
};

QByteArray packHeader(unsigned short &pduReference, qint64 parameterLength, qint64 dataLength)
{
    pduReference = static_cast<unsigned short>(pduReference + 1); // 0 follows 65535
    return wholeBlock(ByteArrayPack("CCnnnn", kProtocol, kJob, 0, pduReference,
                                    static_cast<int>(parameterLength), static_cast<int>(dataLength)));
}

QByteArray packOneItemBlock(unsigned char function, unsigned char transportSize, unsigned short count,
                            const QByteArray &prefix, unsigned int address)
{
    const AddressField field(S7_200_PPIWireAddress(prefix, address));
    return wholeBlock(ByteArrayPack("CCCCCCnnC3C", function, 1, kVariableSpecification, kAddressLength,
                                    kAnyPointer, transportSize, count, S7_200_PPIDBNumber(prefix),
                                    areaCode(prefix), field.low24Bits()));
}

QByteArray packBitItem(const QByteArray &prefix, unsigned int bitAddress)
{
    const AddressField field(bitAddress);
    return wholeBlock(ByteArrayPack("CCCCnnC3C", kVariableSpecification, kAddressLength, kAnyPointer,
                                    kBitElement, 1, S7_200_PPIDBNumber(prefix), areaCode(prefix),
                                    field.low24Bits()));
}

QByteArray packReadPDU(unsigned short &pduReference, unsigned char transportSize, unsigned short count,
                       const QByteArray &prefix, unsigned int address)
{
    const QByteArray block = S7_200_PPIPackLayer7ReadReqParamBlock(transportSize, count, prefix, address);
    QByteArray pdu =
        S7_200_PPIPackLayer7ReadReqHeader(pduReference, static_cast<unsigned short>(block.size()));
    pdu += block;
    return pdu;
}

unsigned char transportSizeOfObject(const QByteArray &prefix)
{
    if (prefix == "C")
        return kCounterElement;
    return prefix == "T" ? kTimerElement : kHighSpeedCounterElement;
}

QByteArray packReadMemoryPDU(unsigned short &pduReference, const QByteArray &prefix, unsigned int byteAddress,
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

QByteArray packWriteItemPDU(unsigned short &pduReference, const QByteArray &prefix, unsigned int address,
                            unsigned char transportSize, qint64 count, const QByteArray &payload)
{
    const QByteArray block = S7_200_PPIPackLayer7WriteByteWordDWordReqParamBlock(
        prefix, address, transportSize, static_cast<unsigned short>(count));
    const QByteArray data = S7_200_PPIPackLayer7WriteByteWordDWordReqDataBlock(payload);
    QByteArray pdu = packHeader(pduReference, block.size(), data.size());
    pdu += block;
    pdu += data;
    return pdu;
}

QByteArray packWriteMemoryPDU(unsigned short &pduReference, const QByteArray &prefix,
                              unsigned int byteAddress, const QByteArray &data)
{
    const qint64 size = data.size();
    switch (S7_200_PPIElementSize(prefix)) {
    case 4: {
        const qint64 count = (size + 3) / 4;
        return packWriteItemPDU(pduReference, prefix, byteAddress, kDWordElement, count,
                                wholeArray(toBigEndianULongArray(data), count * 4));
    }
    case 2: {
        const qint64 count = (size + 1) / 2;
        return packWriteItemPDU(pduReference, prefix, byteAddress, kWordElement, count,
                                wholeArray(toBigEndianUShortArray(data), count * 2));
    }
    default:
        return packWriteItemPDU(pduReference, prefix, byteAddress, kByteElement, size, data);
    }
}

// A record for each value, most significant byte first behind its zero bytes. format packs one record of
// the two bytes.
QByteArray packObjectValues(const QByteArray &values, const char *format)
{
    QByteArray payload;
    for (int i = 0; i < values.size(); i += 2) {
        const char high = i + 1 < values.size() ? values.at(i + 1) : '\0';
        unsigned char record[8];
        const int size = DataPack(record, format, high, values.at(i));
        payload.append(reinterpret_cast<const char *>(record), size);
    }
    return payload;
}

QByteArray packBitItems(const QByteArray &prefix, unsigned int byteAddress, unsigned int bitNumber,
                        unsigned char count)
{
    QByteArray block = wholeBlock(ByteArrayPack("CC", kWriteVariable, count));
    for (int i = 0; i < count; ++i) {
        block += packBitItem(prefix, byteAddress * 8 + bitNumber);
        ++bitNumber;
        if (bitNumber > 7) {
            bitNumber = 0;
            ++byteAddress;
        }
    }
    return block;
}

QByteArray packBitValues(const QByteArray &values)
{
    QByteArray data;
    for (int i = 0; i < values.size(); ++i) {
        const bool last = i + 1 == values.size();
        data += wholeBlock(ByteArrayPack(last ? "xCnC" : "xCnCx", kBitData, 1, values.at(i)));
    }
    return data;
}

} // namespace

QByteArray S7_200_PPIPackLayer7ReadReqHeader(unsigned short &pduReference, unsigned short parameterLength)
{
    return packHeader(pduReference, parameterLength, 0);
}

QByteArray S7_200_PPIPackLayer7ReadReqParamBlock(unsigned char transportSize, unsigned short count,
                                                 const QByteArray &prefix, unsigned int address)
{
    return packOneItemBlock(kReadVariable, transportSize, count, prefix, address);
}

QByteArray S7_200_PPIPackLayer7ReadBytesReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                               unsigned int byteAddress, unsigned short count)
{
    return packReadPDU(pduReference, kByteElement, count, prefix, byteAddress);
}

QByteArray S7_200_PPIPackLayer7ReadWordsReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                               unsigned int byteAddress, unsigned short count)
{
    return packReadPDU(pduReference, kWordElement, count, prefix, byteAddress);
}

QByteArray S7_200_PPIPackLayer7ReadDWordsReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                                unsigned int byteAddress, unsigned short count)
{
    return packReadPDU(pduReference, kDWordElement, count, prefix, byteAddress);
}

QByteArray S7_200_PPIPackLayer7ReadObjectsReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                                 unsigned int objectNumber, unsigned short count)
{
    return packReadPDU(pduReference, transportSizeOfObject(prefix), count, prefix, objectNumber);
}

QByteArray S7_200_PPIPackReadBytesReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                      const QByteArray &prefix, unsigned int byteAddress,
                                      unsigned short byteCount)
{
    return S7_200_PPIPackReadMemoryReq(pduReference, da, sa, prefix, byteAddress, byteCount);
}

QByteArray S7_200_PPIPackReadMemoryReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                       const QByteArray &prefix, unsigned int byteAddress,
                                       unsigned int byteCount)
{
    return S7_200_PPIPackLayer2SD2Request(da, sa,
                                          packReadMemoryPDU(pduReference, prefix, byteAddress, byteCount));
}

QByteArray S7_200_PPIPackReadObjectsReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                        const QByteArray &prefix, unsigned int objectNumber,
                                        unsigned short count)
{
    return S7_200_PPIPackLayer2SD2Request(
        da, sa, S7_200_PPIPackLayer7ReadObjectsReqPDU(pduReference, prefix, objectNumber, count));
}

QByteArray S7_200_PPIPackLayer7WriteReqHeader(unsigned short &pduReference, unsigned short parameterLength,
                                              unsigned short dataLength)
{
    return packHeader(pduReference, parameterLength, dataLength);
}

QByteArray S7_200_PPIPackLayer7WriteByteWordDWordReqParamBlock(const QByteArray &prefix, unsigned int address,
                                                               unsigned char transportSize,
                                                               unsigned short count)
{
    return packOneItemBlock(kWriteVariable, transportSize, count, prefix, address);
}

QByteArray S7_200_PPIPackLayer7WriteByteWordDWordReqDataBlock(const QByteArray &payload)
{
    const int bits = static_cast<int>(qint64(payload.size()) * 8 & 0xFFFF);
    QByteArray data = wholeBlock(ByteArrayPack("xCn", kOtherData, bits));
    data += payload;
    return data;
}

QByteArray S7_200_PPIPackWriteMemoryReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                        const QByteArray &prefix, unsigned int byteAddress,
                                        const QByteArray &data)
{
    return S7_200_PPIPackLayer2SD2Request(da, sa,
                                          packWriteMemoryPDU(pduReference, prefix, byteAddress, data));
}

QByteArray S7_200_PPIPackWriteTimersReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                        unsigned int timerNumber, const QByteArray &values)
{
    const QByteArray payload = packObjectValues(values, "xxxCC");
    return S7_200_PPIPackLayer2SD2Request(
        da, sa, packWriteItemPDU(pduReference, "T", timerNumber, kTimerElement, values.size() / 2, payload));
}

QByteArray S7_200_PPIPackLayer7WriteCountersReqPDU(unsigned short &pduReference, unsigned int counterNumber,
                                                   const QByteArray &values)
{
    const QByteArray payload = packObjectValues(values, "xCC");
    return packWriteItemPDU(pduReference, "C", counterNumber, kCounterElement, values.size() / 2, payload);
}

QByteArray S7_200_PPIPackWriteCountersReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                          unsigned int counterNumber, const QByteArray &values)
{
    return S7_200_PPIPackLayer2SD2Request(
        da, sa, S7_200_PPIPackLayer7WriteCountersReqPDU(pduReference, counterNumber, values));
}

QByteArray S7_200_PPIPackWriteBitsReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                      const QByteArray &prefix, unsigned int byteAddress,
                                      unsigned int bitNumber, const QByteArray &values)
{
    const QByteArray block =
        packBitItems(prefix, byteAddress, bitNumber, static_cast<unsigned char>(values.size()));
    const QByteArray data = packBitValues(values);
    QByteArray pdu = packHeader(pduReference, block.size(), data.size());
    pdu += block;
    pdu += data;
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
