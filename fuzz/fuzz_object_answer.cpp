// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The item of a read of timers, counters or high-speed counters: no more than 4 bytes are read beyond what
// the frame holds, for an object cut short, and each record is what stands there.
//
//    input := item      04 01 CODE TS LLLL records

#include "fuzzing.h"

#include "simatic_s7_200_ppi/ppi_response.h"

#include <vector>

using fuzz::at;
using fuzz::require;
using fuzz::wordAt;

namespace {

using Records = std::vector<S7_200_PPI_Timer>;
using Decoder = bool (*)(const unsigned char *, Records &, unsigned char &);

bool isGood(const QByteArray &item)
{
    return at(item, 0) == 4 && at(item, 1) == 1 && at(item, 2) == 0xff && at(item, 3) == 9;
}

void readRecords(const QByteArray &item, Decoder decode, int size, int statusBit)
{
    const S7_200_PPI_Timer earlier = {0x1234, 1};
    Records records(1, earlier);
    unsigned char code = 0;
    const bool isDecoded = decode(fuzz::ExactBytes(item).data(), records, code);
    require(isDecoded == isGood(item) && code == at(item, 2), "an item without an error is decoded");
    const int count = isGood(item) ? (wordAt(item, 4) + size - 1) / size : 0;
    require(int(records.size()) == count + 1 && records[0].value == earlier.value, "records are appended");
    for (int i = 0; i < count; ++i) {
        const int place = kReadItemHeadSize + i * size;
        require(records[size_t(i) + 1].status == (at(item, place) >> statusBit & 1), "the status is its bit");
        require(records[size_t(i) + 1].value == wordAt(item, place + size - 2),
                "the value is the low 16 bits");
    }
}

void readFastCounters(const QByteArray &item)
{
    unsigned char code = 0;
    const QByteArray values = S7_200_PPIGetRspHSC(fuzz::ExactBytes(item).data(), code);
    const int count = isGood(item) ? (wordAt(item, 4) + 4) / 5 : 0;
    require(code == at(item, 2) && values.size() == count * 4, "there are 4 bytes for each counter");
    for (int i = 0; i < count; ++i)
        for (int j = 0; j < 4; ++j)
            require(at(values, i * 4 + j) == at(item, kReadItemHeadSize + i * 5 + 4 - j),
                    "a counter's bytes come least significant first");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray item = fuzz::arrayOf(data, size);
    while (item.size() < kReadItemHeadSize)
        item += '\0';
    const int held = int(item.size()) - kReadItemHeadSize;
    const bool fits = S7_200_PPIRspItemFits(fuzz::ExactBytes(item).data(), kLengthInBytes, 1, held);
    require(fits == (!isGood(item) || wordAt(item, 4) <= held), "an item fits that the frame holds");
    if (!fits)
        return 0;
    item = item.left(kReadItemHeadSize + (isGood(item) ? wordAt(item, 4) : 0));
    item.append(QByteArray(4, '\x5a'));
    readRecords(item, S7_200_PPIGetRspTimers, 5, 1);
    readRecords(item, S7_200_PPIGetRspCounters, 3, 4);
    readFastCounters(item);
    return 0;
}
