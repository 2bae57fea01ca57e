// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The item of a memory read, as bytes, words, double words and bits: no byte is read that the frame does not
// hold, and what comes out is what stands in it.
//
//    input := prefix(1) firstBit(1) count(2) item      04 01 CODE TS LLLL data

#include "fuzzing.h"

#include "simatic_s7_200_ppi/ppi_response.h"

using fuzz::at;
using fuzz::require;
using fuzz::wordAt;

namespace {

struct Prefix
{
    const char *letters;
    int elementSize;
};
const Prefix kPrefixes[] = {{"VB", 1}, {"VW", 2}, {"VD", 4}, {"V", 1}, {"AIW", 2}, {"", 1}};

bool isGood(const QByteArray &item)
{
    return at(item, 0) == 4 && at(item, 1) == 1 && at(item, 2) == 0xff && at(item, 3) == 4;
}

void readElements(const QByteArray &item, const Prefix &prefix)
{
    const fuzz::ExactBytes exact(item);
    const int held = int(item.size()) - kReadItemHeadSize;
    const int elements = wordAt(item, 4) / 8 / prefix.elementSize;
    const bool fits = S7_200_PPIRspItemFits(exact.data(), kLengthInBits, prefix.elementSize, held);
    require(fits == (!isGood(item) || elements * prefix.elementSize <= held),
            "an item fits that the frame holds");
    if (!fits)
        return;
    unsigned char code = 0;
    const QByteArray values = S7_200_PPIGetRspBytes(exact.data(), prefix.letters, code);
    require(code == at(item, 2), "the return code is the item's");
    QByteArray expected;
    for (int i = 0; isGood(item) && i < elements; ++i)
        for (int j = prefix.elementSize - 1; j >= 0; --j)
            expected += item.at(kReadItemHeadSize + i * prefix.elementSize + j);
    require(values == expected, "whole elements come least significant byte first");
}

void readBits(const QByteArray &item, unsigned firstBit, int count)
{
    const fuzz::ExactBytes exact(item);
    const int held = int(item.size()) - kReadItemHeadSize;
    if (!S7_200_PPIRspItemFits(exact.data(), kLengthInBits, 1, held))
        return;
    QByteArray bits("untouched");
    const bool isRead = S7_200_PPIGetRspBits(exact.data(), firstBit, count, bits);
    const int size = wordAt(item, 4) / 8;
    const bool isRight =
        isGood(item) && size == (count + 7) / 8 && (count == 0 || int(firstBit) + count <= size * 8);
    require(isRead == isRight, "bits are taken when the data are as many bytes as they need");
    require(isRead || bits == "untouched", "refused bits leave the array as it was");
    require(!isRead || bits.size() == count, "there is a byte for each bit");
    for (int i = 0; isRead && i < count; ++i) {
        const int place = int(firstBit) + i;
        const int bit = at(item, kReadItemHeadSize + place / 8) >> (place % 8) & 1;
        require(at(bits, i) == bit, "each bit is that of its byte");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::Input input(data, size);
    const Prefix &prefix = input.oneOf(kPrefixes);
    const unsigned firstBit = input.byte();
    const int count = input.word();
    QByteArray item = input.rest();
    while (item.size() < kReadItemHeadSize)
        item += '\0';
    readElements(item, prefix);
    readBits(item, firstBit, count);
    return 0;
}
