// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "model_answer.h"

#include <QStringList>

namespace {

int unsignedAt(const QByteArray &bytes, int place)
{
    return static_cast<unsigned char>(bytes.at(place));
}

int recordSize(const ModelAddress &address)
{
    return address.prefix == "C" ? 3 : 5;
}

int statusBit(const ModelAddress &address)
{
    return address.prefix == "C" ? 0x10 : 0x02;
}

// A number below 0 is as many as no answer holds.
qint64 bytesForBits(int bits)
{
    return (qint64(quint32(bits)) + 7) / 8;
}

} // namespace

const char *modelFaultOfAcknowledgement(int first, qint64 received)
{
    if (received <= 0)
        return "plc no response";
    return first == 0xe5 ? nullptr : "invalid response";
}

const char *modelReasonOfRefusal(const QByteArray &refusal, qint64 received, int station)
{
    if (received != 6)
        return "first NAK packet loss";
    const int function = unsignedAt(refusal, 3);
    const int sum = unsignedAt(refusal, 1) + unsignedAt(refusal, 2) + function;
    const bool isOurs = unsignedAt(refusal, 1) == 0 && unsignedAt(refusal, 2) == station;
    if (!isOurs || sum != unsignedAt(refusal, 4) || refusal.at(5) != '\x16')
        return "invalid response9";
    return function == 2 ? "no resource" : function == 3 ? "no service actived" : "unknown error";
}

const char *ModelAnswer::faultOfHead(qint64 received, int station) const
{
    if (received < kHead)
        return "packet length < minimum second response";
    const bool isFramed = at(0) == 0x68 && at(3) == 0x68 && at(1) != 0 && at(1) == at(2);
    const bool isOurs = at(4) == 0 && at(5) == station && at(6) == 8;
    return isFramed && isOurs ? nullptr : "invalid response";
}

const char *ModelAnswer::faultOfRest(qint64 received) const
{
    const int end = at(endOfPdu() + 1);
    if (received < owedBehindHead() || end <= 0x14)
        return "packet loss";
    if (end != 0x16)
        return "invalid response";
    int sum = 0;
    for (int i = 4; i < endOfPdu(); ++i)
        sum += at(i);
    return sum % 256 == at(endOfPdu()) ? nullptr : "checksum error";
}

bool ModelAnswer::answers(int reference) const
{
    const bool isAcknowledge = at(8) == 2 || at(8) == 3;
    const bool parametersFit = word(13) == 0 || word(13) == 2;
    return at(7) == 0x32 && isAcknowledge && word(9) == 0 && word(11) == reference && parametersFit;
}

bool ModelAnswer::isGoodRead(int transportSize) const
{
    return function() == 4 && itemCount() == 1 && returnCode() == 0xff && at(kItem + 3) == transportSize;
}

bool ModelAnswer::isLongerThanFrame(int transportSize, int width) const
{
    const int size = transportSize == 4 ? length() / 8 / width * width : length();
    return isGoodRead(transportSize) && kData + size > endOfPdu();
}

int ModelAnswer::endOfRecords() const
{
    return isGoodRead(9) && !isLongerThanFrame(9) ? kData + length() : kData;
}

QByteArray ModelAnswer::reversed(int place, int size) const
{
    QByteArray result;
    for (int i = place + size - 1; i >= place; --i)
        result += buffer.at(i);
    return result;
}

QByteArray ModelAnswer::memory(int width) const
{
    QByteArray result;
    if (!isGoodRead(4))
        return result;
    const int elements = length() / 8 / width;
    for (int i = 0; i < elements; ++i)
        result += reversed(kData + i * width, width);
    return result;
}

QByteArray ModelAnswer::values(const ModelAddress &address) const
{
    const int size = recordSize(address);
    const int valueSize = address.isHighSpeedCounter() ? 4 : 2;
    QByteArray result;
    for (int place = kData; place < endOfRecords(); place += size)
        result += reversed(place + size - valueSize, valueSize);
    return result;
}

QByteArray ModelAnswer::statuses(const ModelAddress &address) const
{
    QByteArray result;
    for (int place = kData; place < endOfRecords(); place += recordSize(address))
        result += at(place) & statusBit(address) ? '\1' : '\0';
    return result;
}

bool ModelAnswer::bits(quint32 first, int count, QByteArray &result) const
{
    const int size = length() / 8;
    const qint64 behindLast = qint64(first) + count;
    if (!isGoodRead(4) || isLongerThanFrame(4) || size != bytesForBits(count))
        return false;
    if (count > 0 && behindLast > qint64(size) * 8)
        return false;
    for (qint64 i = first; i < behindLast; ++i)
        result += char(at(kData + int(i / 8)) >> (i % 8) & 1);
    return true;
}

QByteArray ModelAnswer::returnCodes() const
{
    QByteArray codes;
    if (function() != 5)
        return codes;
    for (int i = 0; i < itemCount(); ++i)
        codes += kItem + 2 + i < endOfPdu() ? buffer.at(kItem + 2 + i) : '\0';
    return codes;
}

QString modelTextOfCode(int code)
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
    case 0x0a:
        return QLatin1String("Object does not exist or length error");
    case 0xff:
        return QString();
    default:
        return QLatin1String("unknow error");
    }
}

QString modelTextOfCodes(const QByteArray &codes)
{
    QStringList texts;
    for (int i = 0; i < int(codes.size()); ++i)
        texts += modelTextOfCode(unsignedAt(codes, i));
    return texts.join(QLatin1String(","));
}
