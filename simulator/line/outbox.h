// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What waits to go out over the line, and when. What has the same time goes out in the order in which it
// was posted.

#ifndef SIMULATOR_LINE_OUTBOX_H
#define SIMULATOR_LINE_OUTBOX_H

#include "simulator/protocol/bytes.h"
#include "simulator/protocol/clock.h"

#include <cstddef>
#include <functional>
#include <list>
#include <optional>

namespace sim {

class Outbox
{
public:
    // Told of each piece as a whole when its first byte goes out.
    using Listener = std::function<void(Time, const Bytes &)>;

    // The first byte is due perByte after start, each other one perByte after the one before it.
    void post(const Bytes &bytes, Time start, Time perByte);

    // All bytes that are due.
    Bytes take(Time now, const Listener &listener);

    // When the next byte is due; nothing when none waits.
    std::optional<Time> nextDue() const;

private:
    struct Piece
    {
        Bytes bytes;
        Time start;
        Time perByte;
        size_t taken = 0;

        bool isDone() const { return taken == bytes.size(); }
        Time due() const { return start + perByte * static_cast<Time::rep>(taken + 1); }
    };

    std::list<Piece> pieces; // by their start
};

} // namespace sim

#endif
