// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The memory of the simulated controller. A new one is all zero.

#ifndef SIMULATOR_CONTROLLER_MEMORY_H
#define SIMULATOR_CONTROLLER_MEMORY_H

#include "simulator/controller/areas.h"
#include "simulator/protocol/bytes.h"

#include <array>
#include <cstdint>
#include <map>

namespace sim {

// One timer or counter. Writes over the line set the current value; the preset and the status bit are the
// control program's business and keep what the memory file gave them.
struct TimerOrCounter
{
    uint16_t value = 0;
    uint16_t preset = 0;
    bool status = false;
};

bool operator==(const TimerOrCounter &a, const TimerOrCounter &b);

struct Memory
{
    Memory();

    // The bytes of a byte or analogue area, always exactly as many as the area has.
    Bytes &bytes(uint8_t areaCode) { return byteAreas.at(areaCode); }
    const Bytes &bytes(uint8_t areaCode) const { return byteAreas.at(areaCode); }

    std::map<uint8_t, Bytes> byteAreas;
    std::array<TimerOrCounter, kTimerCount> timers;
    std::array<TimerOrCounter, kCounterCount> counters;
    std::array<uint32_t, kHighSpeedCounterCount> highSpeedCounters;
};

bool operator==(const Memory &a, const Memory &b);

// A controller without a memory file begins with something to look at:
//    VB100 to VB103   11 22 33 44
//    SMB0             01 (SM0.0 is always on)
//    T37              value 300, preset 100, status bit on
//    C5               value 5, preset 10, status bit off
//    HC0              100000
// and zeros everywhere else.
Memory exampleMemory();

} // namespace sim

#endif
