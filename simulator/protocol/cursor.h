// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A cursor reads fields one after the other out of received bytes. A read past the end gives 0, or no bytes,
// and makes the cursor fail for good; so its user reads a whole block first and asks ok() once.

#ifndef SIMULATOR_PROTOCOL_CURSOR_H
#define SIMULATOR_PROTOCOL_CURSOR_H

#include "simulator/protocol/bytes.h"

#include <cstddef>
#include <cstdint>

namespace sim {

class Cursor
{
public:
    // The bytes must outlive the cursor.
    explicit Cursor(const Bytes &bytes) : source(bytes) {}

    uint8_t take8() { return static_cast<uint8_t>(take(1)); }
    uint16_t take16() { return static_cast<uint16_t>(take(2)); }
    uint32_t take24() { return take(3); }
    uint32_t take32() { return take(4); }
    Bytes takeBytes(size_t size);

    bool ok() const { return complete; }
    size_t position() const { return next; }
    size_t left() const { return source.size() - next; }

private:
    uint32_t take(size_t size);
    bool claim(size_t size);

    const Bytes &source;
    size_t next = 0;
    bool complete = true;
};

} // namespace sim

#endif
