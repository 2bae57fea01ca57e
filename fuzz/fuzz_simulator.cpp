// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The simulated controllers on a line that carries anything: they stay whole, and afterwards a good request
// is answered as always.

#include "simulator/simulator.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

using namespace std::chrono_literals;

const sim::Bytes kReadMB0 = {0x68, 0x1b, 0x1b, 0x68, 0x02, 0x00, 0x6c, 0x32, 0x01, 0x00, 0x00,
                             0x00, 0x01, 0x00, 0x0e, 0x00, 0x00, 0x04, 0x01, 0x12, 0x0a, 0x10,
                             0x02, 0x00, 0x01, 0x00, 0x00, 0x83, 0x00, 0x00, 0x00, 0x67, 0x16};
const sim::Bytes kPoll = {0x10, 0x02, 0x00, 0x5c, 0x5e, 0x16};
const size_t kAnswerSize = 28; // head 4, DA SA FC 3, header 12, item 2 + 4 + 1, FCS and end 2

// A frame around bytes, so that they get past the check sum.
sim::Bytes framed(const std::vector<uint8_t> &counted)
{
    sim::Bytes frame = {0x68, uint8_t(counted.size()), uint8_t(counted.size()), 0x68};
    uint8_t sum = 0;
    for (const uint8_t byte : counted) {
        frame.push_back(byte);
        sum = uint8_t(sum + byte);
    }
    frame.push_back(sum);
    frame.push_back(0x16);
    return frame;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider input(data, size);
    sim::Simulator simulator;
    simulator.addStation(2);
    simulator.addStation(3);
    while (input.remaining_bytes() > 0) {
        if (input.ConsumeBool())
            simulator.feed(framed(input.ConsumeBytes<uint8_t>(input.ConsumeIntegralInRange<size_t>(3, 249))));
        else
            simulator.feed(input.ConsumeBytes<uint8_t>(input.ConsumeIntegralInRange<size_t>(1, 40)));
        simulator.feed(kPoll);
        simulator.advance(std::chrono::milliseconds(input.ConsumeIntegral<uint8_t>()));
    }
    simulator.advance(10s);
    if (simulator.feed(kReadMB0) != sim::Bytes{0xe5} || simulator.feed(kPoll).size() != kAnswerSize)
        abort();
    return 0;
}
