// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Bits of values and arrays against arrays of one bit each.
//
//    input := { operation(1) number(2) count(2) bits source }      bits and source: a byte that counts the
//    following

#include "fuzzing.h"

#include "tools/bits.h"

#include <vector>

using fuzz::at;
using fuzz::require;

namespace {

bool bitOf(const QByteArray &bits, int i)
{
    return i >= 0 && i / 8 < bits.size() && (at(bits, i / 8) >> (i % 8) & 1) != 0;
}

template <typename Value> void useValue(unsigned number, unsigned short n)
{
    const Value value = Value(number);
    const unsigned mask = n < sizeof(Value) * 8 ? 1u << n : 0;
    require(setBit(value, n) == Value(value | mask), "a bit of a value is set");
    require(clearBit(value, n) == Value(value & ~mask), "a bit of a value is cleared");
    require(getBit(value, n) == ((value & mask) != 0), "a bit of a value is told");
}

void setOne(QByteArray bits, int i, bool on)
{
    const QByteArray before = bits;
    setBit(bits, i, on);
    require(bits.size() == std::max(before.size(), decltype(bits.size())(i < 0 ? 0 : i / 8 + 1)),
            "an array grows to the bit");
    for (int k = 0; k < int(bits.size()) * 8; ++k)
        require(bitOf(bits, k) == (k == i ? on : bitOf(before, k)), "one bit is set and no other");
    require(getBit(bits, i) == (i >= 0 && on), "the bit that was set is told");
    if (i < int(bits.size()) * 8 && !bits.isEmpty()) {
        auto *bytes = reinterpret_cast<unsigned char *>(bits.data());
        setBit(bytes, i, !on);
        require(getBit(bytes, i) == (i >= 0 && !on), "a bit behind a pointer is set and told");
        setBit(bytes, i, on);
    }
    require(getBitData(bits) == bitOf(bits, 0), "bit 0 is the first");
}

void clearBits(QByteArray bits, int kept)
{
    const QByteArray before = bits;
    clearUnnecessaryBits(bits, kept);
    for (int k = 0; k < int(bits.size()) * 8; ++k) {
        const bool isCleared = kept > 0 && k / 8 == kept / 8 && k % 8 >= kept % 8 && kept % 8 != 0;
        require(bitOf(bits, k) == (!isCleared && bitOf(before, k)), "the rest of the last byte is cleared");
    }
}

void expand(const QByteArray &bits, unsigned short start, int count)
{
    const QByteArray bytes = ExpandBitsToBytes(bits, start, count);
    require(bytes.size() == std::max(count, 0), "there is a byte for each bit");
    for (int i = 0; i < count; ++i)
        require(at(bytes, i) == (bitOf(bits, start + i) ? 1 : 0), "each byte is its bit");
}

void copy(QByteArray bits, QByteArray source, int start, int count)
{
    const QByteArray before = bits;
    CopyBits(bits, source, start, count);
    const int end = std::max(start + count, 0);
    const bool isNothing = count < 1 || end == 0;
    for (int k = 0; k < std::max(int(bits.size()), int(before.size())) * 8; ++k) {
        const bool isCopied = !isNothing && k >= start && k < end;
        require(bitOf(bits, k) == (isCopied ? bitOf(source, k - start) : bitOf(before, k)),
                "bits are copied");
    }
    require(bits.size() * 8 >= (isNothing ? 0 : end), "an array grows to the last bit");
}

void shift(QByteArray bits, int n)
{
    const QByteArray before = bits;
    RightShiftNBits(bits, n);
    const int size = int(bits.size());
    if (n < 1 || n / 8 >= size) {
        require(bits == before, "a shift of nothing or of everything changes nothing");
        return;
    }
    for (int k = 0; k < (size - n / 8) * 8; ++k)
        require(bitOf(bits, k) == bitOf(before, k + n), "the number is shifted");
    require(bits.mid(size - n / 8) == before.left(n / 8), "whole bytes stand behind the others");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::Input input(data, size);
    while (!input.isAtEnd()) {
        const int operation = input.within(0, 5);
        const int number = input.word() % 2200 - 100;
        const int count = input.word() % 2200 - 100;
        const QByteArray bits = input.counted();
        switch (operation) {
        case 0:
            useValue<unsigned char>(unsigned(count), static_cast<unsigned short>(number));
            useValue<unsigned short>(unsigned(count), static_cast<unsigned short>(number));
            useValue<unsigned>(unsigned(count) * 0x10001u, static_cast<unsigned short>(number));
            break;
        case 1:
            setOne(bits, number, count & 1);
            break;
        case 2:
            clearBits(bits, number);
            break;
        case 3:
            expand(bits, static_cast<unsigned short>(number), count);
            break;
        case 4:
            copy(bits, input.counted(), number, count);
            break;
        default:
            shift(bits, number);
        }
    }
    return 0;
}
