// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "bytes.h"

#include <QtEndian>

#include <algorithm>

namespace {

unsigned int littleEndianValue(const QByteArray &bytes, int width)
{
    const int known = std::min(static_cast<int>(bytes.size()), width);
    unsigned int value = 0;
    for (int i = 0; i < known; ++i)
        value |= static_cast<unsigned int>(static_cast<unsigned char>(bytes.at(i))) << (8 * i);
    return value;
}

template <typename Value> QByteArray littleEndianBytes(Value value)
{
    unsigned char bytes[sizeof value];
    qToLittleEndian(value, bytes);
    return QByteArray(reinterpret_cast<const char *>(bytes), static_cast<int>(sizeof bytes));
}

} // namespace

unsigned int QByteArrayToInt(const QByteArray &bytes)
{
    return littleEndianValue(bytes, 4);
}

unsigned short QByteArrayToWord(const QByteArray &bytes)
{
    return static_cast<unsigned short>(littleEndianValue(bytes, 2));
}

short QByteArrayToShort(const QByteArray &bytes)
{
    return static_cast<short>(QByteArrayToWord(bytes));
}

QByteArray wordToByteArray(unsigned short value)
{
    return littleEndianBytes<quint16>(value);
}

QByteArray shortToByteArray(short value)
{
    return littleEndianBytes<quint16>(static_cast<quint16>(value));
}

QByteArray intToByteArray(int value)
{
    return littleEndianBytes<quint32>(static_cast<quint32>(value));
}

QByteArray reverseArray(const QByteArray &bytes)
{
    QByteArray reversed = bytes;
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

// Not std::rotate: some compilers leave a visible copy of it in the library.
template <typename Element> void RotateArray(Element *data, int n, int m)
{
    if (n < 1 || m < 1)
        return;
    std::reverse(data, data + n);
    std::reverse(data + n, data + n + m);
    std::reverse(data, data + n + m);
}

template Q_DECL_EXPORT void RotateArray<unsigned char>(unsigned char *data, int n, int m);
