// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "byte_order.h"

#include "array_size.h"
#include "qt_compat.h"

#include <algorithm>

namespace {

template <int kWidth> QByteArray fromBigEndian(const unsigned char *data, int count)
{
    QByteArray bytes = arrayWithoutValues(qint64(count) * kWidth);
    if (!bytes.isEmpty())
        copyReversed<kWidth>(data, count, bytes.data());
    return bytes;
}

template <int kWidth> QByteArray toBigEndian(const QByteArray &bytes)
{
    const int whole = static_cast<int>(bytes.size()) / kWidth;
    const int left = static_cast<int>(bytes.size()) % kWidth;
    QByteArray wire = arrayWithoutValues(qint64(whole + (left > 0 ? 1 : 0)) * kWidth);
    if (wire.isEmpty())
        return wire;
    copyReversed<kWidth>(bytes.constData(), whole, wire.data());
    if (left > 0) {
        char *last = wire.data() + wire.size() - kWidth;
        std::fill_n(last, kWidth - left, '\0');
        std::reverse_copy(bytes.constEnd() - left, bytes.constEnd(), last + kWidth - left);
    }
    return wire;
}

template <int kWidth> void reverseElements(QByteArray &bytes)
{
    char *elements = bytes.data();
    copyReversed<kWidth>(elements, static_cast<int>(bytes.size()) / kWidth, elements);
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
    return toBigEndian<2>(bytes);
}

QByteArray toBigEndianULongArray(const QByteArray &bytes)
{
    return toBigEndian<4>(bytes);
}

void toLittleEndianUShortArray(QByteArray &bytes)
{
    reverseElements<2>(bytes);
}

void toLittleEndianULongArray(QByteArray &bytes)
{
    reverseElements<4>(bytes);
}
