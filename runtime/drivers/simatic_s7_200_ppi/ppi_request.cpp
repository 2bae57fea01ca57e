// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "ppi_request.h"

#include "ppi_address.h"
#include "ppi_layer2.h"
#include "tools/sizes.h"

namespace {

const unsigned char kProtocol = 0x32;
const unsigned char kJob = 0x01;
const unsigned char kReadVariable = 0x04;
const unsigned char kVariableSpecification = 0x12;
const unsigned char kAddressLength = 0x0A; // of what follows it in the item
const unsigned char kAnyPointer = 0x10;

const unsigned char kByte = 0x02;
const unsigned char kWord = 0x04;
const unsigned char kDWord = 0x06;
const unsigned char kCounter = 0x1E;
const unsigned char kTimer = 0x1F;
const unsigned char kHighSpeedCounter = 0x20;

PpiBytes packHeader(unsigned short &pduReference, unsigned short parameterLength, unsigned short dataLength)
{
    ++pduReference;
    PpiBytes header;
    header.pack("CCnnnn", kProtocol, kJob, 0, pduReference, parameterLength, dataLength);
    return header;
}

void packItem(PpiBytes &block, unsigned char transportSize, unsigned short count, const QByteArray &prefix,
              unsigned int wireAddress)
{
    unsigned char address[4];
    DataPack(address, "N", wireAddress);
    block.pack("CCCCnnC3C", kVariableSpecification, kAddressLength, kAnyPointer, transportSize, count,
               S7_200_PPIDBNumber(prefix), S7_200_PPIAreaCode(prefix), address + 1);
}

PpiBytes packOneItemBlock(unsigned char function, unsigned char transportSize, unsigned short count,
                          const QByteArray &prefix, unsigned int address)
{
    PpiBytes block;
    block.pack("CC", function, 1);
    packItem(block, transportSize, count, prefix, S7_200_PPIWireAddress(prefix, address));
    return block;
}

PpiBytes packReadPDU(unsigned short &pduReference, unsigned char transportSize, unsigned short count,
                     const QByteArray &prefix, unsigned int address)
{
    const PpiBytes block = S7_200_PPIPackLayer7ReadReqParamBlock(transportSize, count, prefix, address);
    PpiBytes pdu = S7_200_PPIPackLayer7ReadReqHeader(pduReference, static_cast<unsigned short>(block.size()));
    pdu.append(block);
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

} // namespace

PpiBytes S7_200_PPIPackLayer7ReadReqHeader(unsigned short &pduReference, unsigned short parameterLength)
{
    return packHeader(pduReference, parameterLength, 0);
}

PpiBytes S7_200_PPIPackLayer7ReadReqParamBlock(unsigned char transportSize, unsigned short count,
                                               const QByteArray &prefix, unsigned int address)
{
    return packOneItemBlock(kReadVariable, transportSize, count, prefix, address);
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
                                    unsigned int byteCount)
{
    const PpiBytes pdu = packReadMemoryPDU(pduReference, prefix, byteAddress, byteCount);
    return S7_200_PPIPackLayer2SD2Request(destination, source, pdu);
}

PpiBytes S7_200_PPIPackReadObjectsReq(unsigned short &pduReference, unsigned char destination,
                                      unsigned char source, const QByteArray &prefix,
                                      unsigned int objectNumber, unsigned short count)
{
    const PpiBytes pdu = S7_200_PPIPackLayer7ReadObjectsReqPDU(pduReference, prefix, objectNumber, count);
    return S7_200_PPIPackLayer2SD2Request(destination, source, pdu);
}
