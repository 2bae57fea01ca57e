// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "bits.h"

#include "array_size.h"
#include "bytes.h"

#include <QtEndian>

#include <algorithm>
#include <climits>
#include <cstring>

namespace {

template <typename Value> Value bitMask(unsigned short n)
{
    return n < 8 * sizeof(Value) ? static_cast<Value>(1u << n) : Value(0);
}

unsigned char maskInByte(int i)
{
    return static_cast<unsigned char>(1 << (i % 8));
}

unsigned char *writable(QByteArray &bits)
{
    return reinterpret_cast<unsigned char *>(bits.data());
}

bool growToHold(QByteArray &bits, int lastBit)
{
    return lastBit / 8 < bits.size() || resizeWithZeros(bits, qint64(lastBit) / 8 + 1);
}

// Eight bits of a bit array of size bytes, from bit shift, 0 to 7, of byte i on; bits beyond the array are 0.
unsigned char eightBits(const unsigned char *bits, int size, int i, int shift)
{
    const int low = i < size ? bits[i] : 0;
    const int high = i + 1 < size ? bits[i + 1] : 0;
    return static_cast<unsigned char>((high << 8 | low) >> shift);
}

// Makes bit k of eight the byte k, 1 or 0. Of eight copies of the byte, copy k keeps bit k alone; adding 7F
// carries into the top bit of each copy that is not 0, and never into the next one.
void expandEightBits(unsigned char eight, char *bytes)
{
    const quint64 kept = eight * Q_UINT64_C(0x0101010101010101) & Q_UINT64_C(0x8040201008040201);
    const quint64 ones = (kept + Q_UINT64_C(0x7F7F7F7F7F7F7F7F)) >> 7 & Q_UINT64_C(0x0101010101010101);
    qToLittleEndian(ones, reinterpret_cast<unsigned char *>(bytes));
}

// Shifts by fewer than 8 bits.
void shiftRight(unsigned char *data, int size, int n)
{
    for (int i = 0; i < size; ++i) {
        const int above = i + 1 < size ? data[i + 1] : 0;
        data[i] = static_cast<unsigned char>((above << 8 | data[i]) >> n);
    }
}

} // namespace

unsigned char setBit(unsigned char value, unsigned short n)
{
    return static_cast<unsigned char>(value | bitMask<unsigned char>(n));
}

unsigned short setBit(unsigned short value, unsigned short n)
{
    return static_cast<unsigned short>(value | bitMask<unsigned short>(n));
}

unsigned int setBit(unsigned int value, unsigned short n)
{
    return value | bitMask<unsigned int>(n);
}

unsigned char clearBit(unsigned char value, unsigned short n)
{
    return static_cast<unsigned char>(value & ~bitMask<unsigned char>(n));
}

unsigned short clearBit(unsigned short value, unsigned short n)
{
    return static_cast<unsigned short>(value & ~bitMask<unsigned short>(n));
}

unsigned int clearBit(unsigned int value, unsigned short n)
{
    return value & ~bitMask<unsigned int>(n);
}

bool getBit(unsigned char value, unsigned short n)
{
    return (value & bitMask<unsigned char>(n)) != 0;
}

bool getBit(unsigned short value, unsigned short n)
{
    return (value & bitMask<unsigned short>(n)) != 0;
}

bool getBit(unsigned int value, unsigned short n)
{
    return (value & bitMask<unsigned int>(n)) != 0;
}

bool getBit(const QByteArray &bits, int i)
{
    return i / 8 < bits.size() && getBit(reinterpret_cast<const unsigned char *>(bits.constData()), i);
}

bool getBit(const unsigned char *bits, int i)
{
    return i >= 0 && (bits[i / 8] & maskInByte(i)) != 0;
}

void setBit(QByteArray &bits, int i, bool on)
{
    if (i >= 0 && growToHold(bits, i))
        setBit(writable(bits), i, on);
}

void setBit(unsigned char *bits, int i, bool on)
{
    if (i < 0)
        return;
    unsigned char &byte = bits[i / 8];
    byte = static_cast<unsigned char>(on ? byte | maskInByte(i) : byte & ~maskInByte(i));
}

bool getBitData(const QByteArray &bits)
{
    return getBit(bits, 0);
}

void clearUnnecessaryBits(QByteArray &bits, int nbits)
{
    const int last = nbits / 8;
    const int kept = nbits % 8;
    if (kept > 0 && last < bits.size())
        writable(bits)[last] &= static_cast<unsigned char>(maskInByte(kept) - 1);
}

QByteArray ExpandBitsToBytes(const QByteArray &bits, unsigned short start, int count)
{
    QByteArray bytes = arrayWithoutValues(count);
    if (bytes.isEmpty())
        return bytes;
    const unsigned char *source = reinterpret_cast<const unsigned char *>(bits.constData());
    const int size = static_cast<int>(bits.size());
    const int shift = start % 8;
    int i = start / 8;
    char *next = bytes.data();
    for (int left = count; left >= 8; left -= 8, next += 8, ++i)
        expandEightBits(eightBits(source, size, i, shift), next);
    char last[8];
    expandEightBits(eightBits(source, size, i, shift), last);
    std::memcpy(next, last, static_cast<size_t>(count % 8));
    return bytes;
}

void CopyBits(QByteArray &dest, QByteArray &src, int destStart, int count)
{
    const qint64 begin = std::max(destStart, 0);
    const qint64 end = std::min(qint64(destStart) + count, qint64(INT_MAX) + 1);
    if (begin >= end || !growToHold(dest, static_cast<int>(end - 1)))
        return;
    unsigned char *written = writable(dest);
    for (qint64 place = begin; place < end; ++place)
        setBit(written, static_cast<int>(place), getBit(src, static_cast<int>(place - destStart)));
}

void RightShiftNBits(QByteArray &bits, int n)
{
    const int size = static_cast<int>(bits.size());
    const int rotated = n / 8;
    if (n < 1 || rotated >= size)
        return;
    unsigned char *data = writable(bits);
    RotateArray(data, rotated, size - rotated);
    shiftRight(data, size - rotated, n % 8);
}
