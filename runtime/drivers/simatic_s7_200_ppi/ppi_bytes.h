// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The bytes of a frame or of a part of one. They stand on the stack as long as they are no more than
// the largest frame of the line, so that a panel that polls for years does not wear its heap; longer
// ones, which no controller accepts, move to the heap.
//
// The layers above write their fields as arrays in the order of the wire rather than in the toolkit's
// pack language: its formats are walked at run time, these are a handful of stores.

#ifndef PPI_BYTES_H
#define PPI_BYTES_H

#include <QByteArray>
#include <QtEndian>

#include <climits>
#include <cstring>
#include <new>

class PpiBytes
{
public:
    PpiBytes() : bytes(fixed), used(0), room(sizeof fixed) {}

    // The array as it stands: frame bytes in the order of the wire.
    template <size_t Size>
    explicit PpiBytes(const unsigned char (&fields)[Size]) : bytes(fixed), used(Size), room(sizeof fixed)
    {
        static_assert(Size <= kLargestFrame, "Size");
        memcpy(fixed, fields, Size);
    }

    PpiBytes(const QByteArray &array) : bytes(fixed), used(0), room(sizeof fixed)
    {
        append(reinterpret_cast<const unsigned char *>(array.constData()), int(array.size()));
    }

    PpiBytes(const PpiBytes &other) : bytes(fixed), used(0), room(sizeof fixed)
    {
        append(other.data(), other.size());
    }

    ~PpiBytes()
    {
        if (bytes != fixed)
            delete[] bytes;
    }

    int size() const { return used; }
    const unsigned char *data() const { return bytes; }
    operator QByteArray() const { return QByteArray(reinterpret_cast<const char *>(data()), size()); }

    template <size_t Size> PpiBytes &append(const unsigned char (&fields)[Size])
    {
        return append(fields, int(Size));
    }
    PpiBytes &append(const PpiBytes &other) { return append(other.data(), other.size()); }

    PpiBytes &append(const unsigned char *more, int length)
    {
        if (length > room - used)
            grow(length);
        memcpy(bytes + used, more, static_cast<size_t>(length));
        used += length;
        return *this;
    }

private:
    enum {
        kLargestFrame = 261,        // length byte 255 and the 6 bytes it does not count
        kLargestAtAll = INT_MAX / 4 // far from where sizes overflow; beyond it std::bad_alloc
    };

    PpiBytes &operator=(const PpiBytes &);

    void grow(int length)
    {
        if (length > kLargestAtAll - used)
            throw std::bad_alloc();
        const size_t wanted = static_cast<size_t>(qMax(used + length, used * 2));
        unsigned char *moved = new unsigned char[wanted];
        memcpy(moved, bytes, static_cast<size_t>(used));
        if (bytes != fixed)
            delete[] bytes;
        bytes = moved;
        room = static_cast<int>(wanted);
    }

    unsigned char *bytes;
    int used;
    int room;
    unsigned char fixed[kLargestFrame];
};

// Bytes of a number, the least significant being number 0.
inline unsigned char ppiByte(unsigned int value, int number)
{
    return static_cast<unsigned char>(value >> (8 * number));
}

// A field of two or four bytes, most significant first.
inline unsigned short ppiWord(const unsigned char *field)
{
    return qFromBigEndian<quint16>(field);
}

inline unsigned int ppiDWord(const unsigned char *field)
{
    return qFromBigEndian<quint32>(field);
}

#endif
