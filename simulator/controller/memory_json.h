// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A controller's memory as JSON that people write and read:
//
//    {
//        "V": { "100": "11223344", "200": "00 ff" },
//        "T": { "37": { "value": 300, "preset": 100, "status": true } },
//        "C": { "5": { "value": 5 } },
//        "HC": { "0": 100000 },
//        "live": { "VW300": "ramp:0..1000/10s", "V310.0": "blink:1s" }
//    }
//
// Areas of bytes (I, Q, V, M, SM, S, AI, AQ) have bytes in hexadecimal from a byte number on, with or without
// blanks between them. T, C and HC have objects by number. What is left out of an object is zero or off, as
// is all memory that the text does not mention. Under live stand values that change by themselves, see
// live_value.h.

#ifndef SIMULATOR_CONTROLLER_MEMORY_JSON_H
#define SIMULATOR_CONTROLLER_MEMORY_JSON_H

#include "simulator/controller/live_value.h"
#include "simulator/controller/memory.h"
#include "simulator/controller/memory_file_error.h"

#include <string>
#include <vector>

namespace sim {

// All that a memory file holds.
struct StoredMemory
{
    Memory memory;
    std::vector<LiveValue> live;
};

// Throws MemoryFileError, which tells the line, when the text is no memory.
StoredMemory parseMemory(const std::string &text);

// Writes only what is not zero. parseMemory(formatMemory(m)) is m again.
std::string formatMemory(const StoredMemory &stored);

} // namespace sim

#endif
