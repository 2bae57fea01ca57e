// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/controller/memory.h"

#include <algorithm>

namespace sim {

bool operator==(const TimerOrCounter &a, const TimerOrCounter &b)
{
    return a.value == b.value && a.preset == b.preset && a.status == b.status;
}

Memory::Memory()
{
    for (const Area &area : areas()) {
        if (!area.holdsObjects())
            byteAreas[area.code] = Bytes(area.size);
    }
    highSpeedCounters.fill(0);
}

bool operator==(const Memory &a, const Memory &b)
{
    return a.byteAreas == b.byteAreas && a.timers == b.timers && a.counters == b.counters &&
           a.highSpeedCounters == b.highSpeedCounters;
}

Memory exampleMemory()
{
    Memory memory;
    const Bytes greeting = {0x11, 0x22, 0x33, 0x44};
    std::copy(greeting.begin(), greeting.end(), memory.bytes(kAreaV).begin() + 100);
    memory.bytes(kAreaSM)[0] = 0x01;
    memory.timers[37] = {300, 100, true};
    memory.counters[5] = {5, 10, false};
    memory.highSpeedCounters[0] = 100000;
    return memory;
}

} // namespace sim
