// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/controller/areas.h"

#include <algorithm>

namespace sim {

const std::array<Area, 11> &areas()
{
    // The process images I and Q take writes like any memory; the next cycle of a real controller may
    // overwrite them. The analogue inputs and the high-speed counters belong to the hardware alone.
    //   name, code, kind, size, data block, writable
    static const std::array<Area, 11> table = {{
        {"I", kAreaI, AreaKind::PlainBytes, 16, 0, true},
        {"Q", kAreaQ, AreaKind::PlainBytes, 16, 0, true},
        {"V", kAreaV, AreaKind::PlainBytes, 10240, 1, true},
        {"M", kAreaM, AreaKind::PlainBytes, 32, 0, true},
        {"SM", kAreaSM, AreaKind::PlainBytes, 550, 0, true},
        {"S", kAreaS, AreaKind::PlainBytes, 32, 0, true},
        {"AI", kAreaAI, AreaKind::AnalogWords, 64, 0, false},
        {"AQ", kAreaAQ, AreaKind::AnalogWords, 64, 0, true},
        {"T", kAreaT, AreaKind::Timers, kTimerCount, 0, true},
        {"C", kAreaC, AreaKind::Counters, kCounterCount, 0, true},
        {"HC", kAreaHC, AreaKind::HighSpeedCounters, kHighSpeedCounterCount, 0, false},
    }};
    return table;
}

const Area *findArea(uint8_t code)
{
    const auto found =
        std::find_if(areas().begin(), areas().end(), [code](const Area &a) { return a.code == code; });
    return found == areas().end() ? nullptr : &*found;
}

} // namespace sim
