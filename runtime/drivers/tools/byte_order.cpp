// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "byte_order.h"

#include "array_size.h"
#include "sizes.h"

#include <algorithm>

namespace {

template <int kWidth> void reverseElements(QByteArray &bytes)
{
    char *element = bytes.data();
    for (int left = static_cast<int>(bytes.size()); left >= kWidth; left -= kWidth) {
        std::reverse(element, element + kWidth);
        element += kWidth;
    }
}

template <int kWidth> QByteArray fromBigEndian(const unsigned char *data, int count)
{
    QByteArray bytes;
    if (count < 1 || !resizeWithZeros(bytes, qint64(count) * kWidth))
        return QByteArray();
    std::memcpy(bytes.data(), data, static_cast<size_t>(bytes.size()));
    reverseElements<kWidth>(bytes);
    return bytes;
}

} // namespace

bool isBigEndian()
{
    return true;
}

void appendBigEndianUShort(QByteArray &bytes, unsigned short value)
{
    const char wire[] = {static_cast<char>(value >> 8), static_cast<char>(value & 0xFF)};
    bytes.append(wire, 2);
}

QByteArray fromBigEndianUShortArray(const unsigned char *data, int count)
{
    return fromBigEndian<2>(data, count);
}

QByteArray fromBigEndianULongArray(const unsigned char *data, int count)
{
    return fromBigEndian<4>(data, count);
}

QByteArray toBigEndianUShortArray(const QByteArray &bytes)
{
    QByteArray wire = To16bitsData(bytes);
    reverseElements<2>(wire);
    return wire;
}

QByteArray toBigEndianULongArray(const QByteArray &bytes)
{
    QByteArray wire = To32bitsData(bytes);
    reverseElements<4>(wire);
    return wire;
}

void toLittleEndianUShortArray(QByteArray &bytes)
{
    reverseElements<2>(bytes);
}

void toLittleEndianULongArray(QByteArray &bytes)
{
    reverseElements<4>(bytes);
}
