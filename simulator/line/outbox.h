// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The outbox holds what waits to go out over the line, and when it is due. Bytes that are due at the same
// time go out in the order in which they were posted.

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
    // It is told of each piece as a whole when the first byte of it goes out.
    using Listener = std::function<void(Time, const Bytes &)>;

    // The first byte is due perByte after start, each other one perByte after the one before it.
    void post(const Bytes &bytes, Time start, Time perByte);

    // Takes out all bytes that are due.
    Bytes take(Time now, const Listener &listener);

    // Tells when the next byte is due; nothing when none waits.
    std::optional<Time> nextDue() const;

private:
    // What was posted at once. Its bytes leave one by one.
    struct Piece
    {
        Bytes bytes;
        Time start;
        Time perByte;
        size_t taken = 0;

        bool isDone() const { return taken == bytes.size(); }
        Time due() const { return start + perByte * static_cast<Time::rep>(taken + 1); }
    };

    std::list<Piece> pieces; // sorted by their start
};

} // namespace sim

#endif
