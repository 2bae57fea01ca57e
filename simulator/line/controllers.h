// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Whatever answers at the controllers' end of a line: simulated controllers, or a recording of real ones.

#ifndef SIMULATOR_LINE_CONTROLLERS_H
#define SIMULATOR_LINE_CONTROLLERS_H

#include "simulator/protocol/bytes.h"
#include "simulator/protocol/clock.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

namespace sim {

// What a listener is told of.
enum class Traffic {
    Received, // a whole frame
    Sent,     // a whole reply or echo, damaged by a fault or not, when its first byte goes out
    Skipped,  // received bytes that made no frame
};

using Listener = std::function<void(Time, Traffic, const Bytes &)>;

class Controllers
{
public:
    virtual ~Controllers() = default;

    // Takes what comes from the line now, in pieces of any size. Returns what goes out now.
    virtual Bytes feed(const uint8_t *data, size_t size) = 0;

    // Moves the clock, never backwards. Returns what has gone out meanwhile.
    virtual Bytes advanceTo(Time now) = 0;

    virtual Time now() const = 0;

    // Tells when advanceTo() will have something to do; nothing when only feed() will.
    virtual std::optional<Time> nextDue() const = 0;
};

} // namespace sim

#endif
