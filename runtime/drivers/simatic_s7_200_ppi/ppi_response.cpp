// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "ppi_response.h"

#include "ppi_address.h"
#include "ppi_block.h"
#include "tools/bits.h"
#include "tools/byte_order.h"
#include "tools/pack.h"
#include "tools/sizes.h"

namespace {

const unsigned char kProtocol = 0x32;
const unsigned char kAcknowledge = 0x02;
const unsigned char kAcknowledgeWithData = 0x03;
const unsigned short kAllowedParameterLength = 0x0002; // and 0: no other bit may be set
const unsigned char kReadVariable = 0x04;
const unsigned char kWriteVariable = 0x05;

const int kTimerStatusBit = 1;
const int kTimerSize = 5;
const int kCounterStatusBit = 4;
const int kCounterSize = 3;
const int kHighSpeedCounterSize = 5;

struct ItemHead
{
    unsigned char function;
    unsigned char itemCount;
    unsigned char returnCode;
    unsigned char transportSize;
    unsigned short length;

    bool isSuccess() const { return function == kReadVariable && itemCount == 1 && returnCode == kSuccess; }
    bool isMemory() const { return isSuccess() && transportSize == kLengthInBits; }
    bool isObjects() const { return isSuccess() && transportSize == kLengthInBytes; }
};

ItemHead unpackItemHead(const unsigned char *parameters)
{
    ItemHead head = {0, 0, 0, 0, 0};
    DataUnpack(parameters, "CCCCn", &head.function, &head.itemCount, &head.returnCode, &head.transportSize,
               &head.length);
    return head;
}

unsigned char statusBit(unsigned char status, int bit)
{
    return static_cast<unsigned char>((status >> bit) & 1);
}

S7_200_PPI_Timer unpackTimer(const unsigned char *record)
{
    unsigned char status = 0;
    unsigned int value = 0;
    DataUnpack(record, "CN", &status, &value);
    const S7_200_PPI_Timer timer = {static_cast<unsigned short>(value), statusBit(status, kTimerStatusBit)};
    return timer;
}

S7_200_PPI_Timer unpackCounter(const unsigned char *record)
{
    unsigned char status = 0;
    unsigned short value = 0;
    DataUnpack(record, "Cn", &status, &value);
    const S7_200_PPI_Timer counter = {value, statusBit(status, kCounterStatusBit)};
    return counter;
}

// Every record that begins inside the data counts, the last one even when it is cut short.
bool unpackRecords(const unsigned char *parameters, int recordSize,
                   S7_200_PPI_Timer (*unpackRecord)(const unsigned char *),
                   std::vector<S7_200_PPI_Timer> &records, unsigned char &returnCode)
{
    const ItemHead head = unpackItemHead(parameters);
    returnCode = head.returnCode;
    if (!head.isObjects())
        return false;
    for (int offset = 0; offset < head.length; offset += recordSize)
        records.push_back(unpackRecord(parameters + kReadItemHeadSize + offset));
    return true;
}

} // namespace

QString S7_200_PPIReadRspErrorCodeToStr(unsigned char code)
{
    switch (code) {
    case 0x01:
        return QLatin1String("Hardware fault");
    case 0x03:
        return QLatin1String("Illegal object access");
    case 0x05:
        return QLatin1String("Invalid address (incorrect variable address)");
    case 0x06:
        return QLatin1String("Data type is not supported");
    case 0x0A:
        return QLatin1String("Object does not exist or length error");
    case kSuccess:
        return QString();
    default:
        return QLatin1String("unknow error");
    }
}

int S7_200_PPILayer2UnpackSD2ReadWriteRspHeader(const unsigned char *header, unsigned short expectedReference,
                                                unsigned short &parameterLength, unsigned short &dataLength,
                                                unsigned char &errorClass, unsigned char &errorCode)
{
    unsigned char protocol = 0;
    unsigned char messageType = 0;
    unsigned short reserved = 0;
    unsigned short reference = 0;
    const int size = DataUnpack(header, "CCnnnnCC", &protocol, &messageType, &reserved, &reference,
                                &parameterLength, &dataLength, &errorClass, &errorCode);
    const bool acknowledges = messageType == kAcknowledge || messageType == kAcknowledgeWithData;
    if (protocol != kProtocol || !acknowledges || reserved != 0)
        return -1;
    if ((parameterLength & ~kAllowedParameterLength) != 0 || reference != expectedReference)
        return -1;
    return size;
}

bool S7_200_PPIRspItemFits(const unsigned char *parameters, PpiLayer7 transportSize, int elementSize,
                           int held)
{
    const ItemHead head = unpackItemHead(parameters);
    if (!head.isSuccess() || head.transportSize != transportSize)
        return true;
    const int wholeBytes = transportSize == kLengthInBits ? head.length / 8 : head.length;
    return wholeBytes - wholeBytes % elementSize <= held;
}

QByteArray S7_200_PPIGetRspBytes(const unsigned char *parameters, const QByteArray &prefix,
                                 unsigned char &returnCode)
{
    const ItemHead head = unpackItemHead(parameters);
    returnCode = head.returnCode;
    if (!head.isMemory())
        return QByteArray();
    const unsigned char *data = parameters + kReadItemHeadSize;
    switch (S7_200_PPIElementSize(prefix)) {
    case 4:
        return wholeArray(fromBigEndianULongArray(data, head.length / 32), qint64(head.length) / 32 * 4);
    case 2:
        return wholeArray(fromBigEndianUShortArray(data, head.length / 16), qint64(head.length) / 16 * 2);
    default:
        return QByteArray(reinterpret_cast<const char *>(data), head.length / 8);
    }
}

bool S7_200_PPIGetRspBits(const unsigned char *parameters, unsigned int firstBit, int count, QByteArray &bits)
{
    const ItemHead head = unpackItemHead(parameters);
    const unsigned int size = head.length / 8u;
    if (!head.isMemory() || size != NumOfBitsToNumOfBytes(0, static_cast<unsigned int>(count)))
        return false;
    if (count > 0 && qint64(firstBit) + count > qint64(size) * 8)
        return false;
    const QByteArray data = QByteArray::fromRawData(
        reinterpret_cast<const char *>(parameters) + kReadItemHeadSize, static_cast<int>(size));
    bits = wholeArray(ExpandBitsToBytes(data, static_cast<unsigned short>(firstBit), count), count);
    return true;
}

QByteArray S7_200_PPIGetRspHSC(const unsigned char *parameters, unsigned char &returnCode)
{
    const ItemHead head = unpackItemHead(parameters);
    returnCode = head.returnCode;
    if (!head.isObjects())
        return QByteArray();
    QByteArray values((head.length + kHighSpeedCounterSize - 1) / kHighSpeedCounterSize * 4, '\0');
    unsigned char *next = reinterpret_cast<unsigned char *>(values.data());
    for (int offset = 0; offset < head.length; offset += kHighSpeedCounterSize) {
        unsigned int value = 0;
        DataUnpack(parameters + kReadItemHeadSize + offset, "xN", &value);
        next += DataPack(next, "V", value);
    }
    return values;
}

bool S7_200_PPIGetRspTimers(const unsigned char *parameters, std::vector<S7_200_PPI_Timer> &timers,
                            unsigned char &returnCode)
{
    return unpackRecords(parameters, kTimerSize, unpackTimer, timers, returnCode);
}

bool S7_200_PPIGetRspCounters(const unsigned char *parameters, std::vector<S7_200_PPI_Timer> &counters,
                              unsigned char &returnCode)
{
    return unpackRecords(parameters, kCounterSize, unpackCounter, counters, returnCode);
}

bool S7_200_PPICheckWriteRspParamData(const unsigned char *parameters, unsigned char &returnCode)
{
    unsigned char function = 0;
    unsigned char itemCount = 0;
    DataUnpack(parameters, "CCC", &function, &itemCount, &returnCode);
    return function == kWriteVariable && itemCount == 1 && returnCode == kSuccess;
}

QByteArray S7_200_PPIGetWriteRspCodes(const unsigned char *parameters, int held)
{
    unsigned char function = 0;
    unsigned char itemCount = 0;
    const int codesOffset = DataUnpack(parameters, "CC", &function, &itemCount);
    if (function != kWriteVariable)
        return QByteArray();
    const int codesHeld = qBound(0, held - codesOffset, int(itemCount));
    QByteArray codes(reinterpret_cast<const char *>(parameters) + codesOffset, codesHeld);
    codes.append(QByteArray(itemCount - codesHeld, '\0'));
    return codes;
}

QString S7_200_PPIWriteRspCodesToStr(const QByteArray &codes)
{
    QString text;
    for (int i = 0; i < codes.size(); ++i) {
        if (i > 0)
            text += QLatin1Char(',');
        text += S7_200_PPIReadRspErrorCodeToStr(static_cast<unsigned char>(codes.at(i)));
    }
    return text;
}
