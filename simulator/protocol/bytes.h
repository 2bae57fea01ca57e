// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Bytes as they go over the line. The protocol sends a number with its most significant byte first.

#ifndef SIMULATOR_PROTOCOL_BYTES_H
#define SIMULATOR_PROTOCOL_BYTES_H

#include <cstdint>
#include <vector>

namespace sim {

using Bytes = std::vector<uint8_t>;

inline void append(Bytes &bytes, const Bytes &more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

inline void append16(Bytes &bytes, unsigned value)
{
    bytes.push_back(static_cast<uint8_t>(value >> 8));
    bytes.push_back(static_cast<uint8_t>(value));
}

inline void append32(Bytes &bytes, uint32_t value)
{
    append16(bytes, value >> 16);
    append16(bytes, value & 0xFFFF);
}

} // namespace sim

#endif
