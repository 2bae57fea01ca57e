// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "sizes.h"

#include "array_size.h"

#include <algorithm>

namespace {

// Units of 2 to the power of shift.
unsigned int wholeUnits(quint64 amount, unsigned int shift)
{
    const quint64 remainder = amount & ((1u << shift) - 1);
    return static_cast<unsigned int>((amount >> shift) + (remainder != 0 ? 1 : 0));
}

qint64 dataLength(const CommunicatorCommand &command)
{
    const qint64 count = std::max(command.count, 0);
    switch (command.dataType) {
    case kBits:
    case kBitBlock:
        return (count + 7) / 8;
    case kBytes:
    case kBlock:
        return count;
    case kWords:
        return count * 2;
    case kDoubleWords:
        return count * 4;
    case kQuadWords:
        return count * 8;
    default:
        return 0;
    }
}

QByteArray filled(const QByteArray &data, int missing)
{
    QByteArray whole = data;
    if (missing > 0)
        resizeWithZeros(whole, qint64(data.size()) + missing);
    return whole;
}

int sizeModulo(const QByteArray &data, int unit)
{
    return static_cast<int>(data.size() % unit);
}

} // namespace

unsigned int NumOfBitsToNumOfBytes(unsigned int start, unsigned int count)
{
    return wholeUnits(quint64(start) + count, 3);
}

unsigned int NumOfBitsToNumOfWords(unsigned int start, unsigned int count)
{
    return wholeUnits(quint64(start) + count, 4);
}

unsigned int NumOfBitsToNumOfDWords(unsigned int start, unsigned int count)
{
    return wholeUnits(quint64(start) + count, 5);
}

unsigned int NumOfBytesToNumOfWords(unsigned int n)
{
    return wholeUnits(n, 1);
}

unsigned int NumOfBytesToNumOfDWords(unsigned int n)
{
    return wholeUnits(n, 2);
}

unsigned int NumOfBytesToNumOfQuadWords(unsigned int n)
{
    return wholeUnits(n, 3);
}

void FitBitArray(QByteArray &bits, int nbits)
{
    resizeWithZeros(bits, (qint64(nbits) + 7) / 8);
}

int GetSafeDataLen(const CommunicatorCommand &command)
{
    return static_cast<int>(std::min<qint64>(dataLength(command), INT_MAX));
}

QByteArray ToSafeData(const CommunicatorCommand &command, const QByteArray &data)
{
    QByteArray fitted = data;
    const qint64 length = dataLength(command);
    if (length == data.size() || resizeWithZeros(fitted, length))
        return fitted;
    return QByteArray();
}

QByteArray To16bitsData(const QByteArray &data)
{
    return filled(data, sizeModulo(data, 2));
}

QByteArray To32bitsData(const QByteArray &data)
{
    const int past = sizeModulo(data, 4);
    return filled(data, past == 0 ? 0 : 4 - past);
}

QByteArray To64bitsData(const QByteArray &data)
{
    const int past = sizeModulo(data, 8);
    return filled(data, past == 0 ? 0 : 4 - past);
}
