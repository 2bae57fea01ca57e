// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The bytes of a frame or of a part of one. They stand on the stack as long as they are no more than
// the largest frame of the line, so that a panel that polls for years does not wear its heap; longer
// ones, which no controller accepts, move to the heap.

#ifndef PPI_BYTES_H
#define PPI_BYTES_H

#include "tools/pack.h"

#include <QByteArray>
#include <QVarLengthArray>

#include <cstdarg>

class PpiBytes
{
public:
    PpiBytes() {}
    PpiBytes(const QByteArray &array) { append(array.constData(), int(array.size())); }

    int size() const { return int(bytes.size()); }
    const unsigned char *data() const { return bytes.constData(); }
    unsigned char at(int index) const { return bytes[index]; }
    operator QByteArray() const { return QByteArray(reinterpret_cast<const char *>(data()), size()); }

    // Appends what the format packs (see DataPack), at most kPackedAtOnce bytes.
    PpiBytes &pack(const char *format, ...)
    {
        const int before = size();
        bytes.resize(before + kPackedAtOnce);
        va_list arguments;
        va_start(arguments, format);
        const int packed = VDataPack(bytes.data() + before, format, arguments);
        va_end(arguments);
        bytes.resize(before + (packed > 0 ? packed : 0));
        return *this;
    }

    PpiBytes &append(const PpiBytes &other)
    {
        bytes.append(other.data(), other.size());
        return *this;
    }
    PpiBytes &append(const char *text, int length)
    {
        bytes.append(reinterpret_cast<const unsigned char *>(text), length);
        return *this;
    }

private:
    enum {
        kLargestFrame = 261, // length byte 255 and the 6 bytes it does not count
        kPackedAtOnce = 16
    };

    QVarLengthArray<unsigned char, kLargestFrame + kPackedAtOnce> bytes;
};

#endif
