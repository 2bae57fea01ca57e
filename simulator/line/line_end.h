// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The controllers' end of a line: makes frames of the bytes that come, sends what is due, and tells a
// listener of both in the order in which they happen.

#ifndef SIMULATOR_LINE_LINE_END_H
#define SIMULATOR_LINE_LINE_END_H

#include "simulator/line/controllers.h"
#include "simulator/line/outbox.h"
#include "simulator/protocol/bytes.h"
#include "simulator/protocol/clock.h"
#include "simulator/protocol/layer2.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

namespace sim {

class LineEnd
{
public:
    void setListener(Listener listener_) { listener = std::move(listener_); }

    // Takes bytes that come now and hands each whole frame on, which may be answered with post(). Returns
    // what goes out now.
    using Take = std::function<void(const Frame &)>;
    Bytes feed(Time now, const uint8_t *data, size_t size, const Take &take);

    // The first byte is due perByte after start, each other one perByte after the one before it.
    void post(const Bytes &bytes, Time start, Time perByte) { outbox.post(bytes, start, perByte); }

    // Gives up a frame whose rest has not come for long. Returns what has gone out meanwhile.
    Bytes advanceTo(Time now);

    // Tells when advanceTo() will have something to do; nothing when only feed() will.
    std::optional<Time> nextDue() const;

private:
    Bytes takeDue(Time now);
    void tellSkipped(Time now);
    void tell(Time time, Traffic traffic, const Bytes &bytes) const;

    Time silenceAfter{0}; // when a frame that has begun is given up
    FrameReader reader;
    Outbox outbox;
    Listener listener;
};

} // namespace sim

#endif
