// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The memory areas of the simulated controller, a larger S7-200: what they are called, how a request
// names them, how large they are and what may be done with them.

#ifndef SIMULATOR_CONTROLLER_AREAS_H
#define SIMULATOR_CONTROLLER_AREAS_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace sim {

enum class AreaKind {
    PlainBytes,  // bits, bytes, words and double words at any byte
    AnalogWords, // whole words at even bytes
    Timers,      // numbered objects
    Counters,
    HighSpeedCounters,
};

// These codes name an area in a request.
constexpr uint8_t kAreaS = 0x04;
constexpr uint8_t kAreaSM = 0x05;
constexpr uint8_t kAreaAI = 0x06;
constexpr uint8_t kAreaAQ = 0x07;
constexpr uint8_t kAreaC = 0x1E;
constexpr uint8_t kAreaT = 0x1F;
constexpr uint8_t kAreaHC = 0x20;
constexpr uint8_t kAreaI = 0x81;
constexpr uint8_t kAreaQ = 0x82;
constexpr uint8_t kAreaM = 0x83;
constexpr uint8_t kAreaV = 0x84;

// How many objects a larger S7-200 has.
constexpr size_t kTimerCount = 256;
constexpr size_t kCounterCount = 256;
constexpr size_t kHighSpeedCounterCount = 6;

struct Area
{
    const char *name;
    uint8_t code;
    AreaKind kind;
    uint32_t size; // in bytes, or in objects where the area holds numbered objects
    uint16_t db;   // the number of the data block, which a request must give
    bool writable; // whether a master may write it

    bool holdsObjects() const { return kind != AreaKind::PlainBytes && kind != AreaKind::AnalogWords; }
};

// Returns all areas, in the order in which a memory file lists them.
const std::array<Area, 11> &areas();

// Returns null when there is no such area.
const Area *findArea(uint8_t code);

} // namespace sim

#endif
