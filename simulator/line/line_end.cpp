// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/line/line_end.h"

#include <algorithm>
#include <chrono>

namespace sim {

namespace {

using namespace std::chrono_literals;

// A frame's bytes follow each other at once. At 9600 baud this is the time of some 170 characters, enough
// for any serial adapter's buffering and well below a master's reply time-out.
constexpr Time kSilence = 200ms;

} // namespace

Bytes LineEnd::feed(Time now, const uint8_t *data, size_t size, const Take &take)
{
    silenceAfter = now + kSilence;
    Bytes sent;
    for (size_t i = 0; i < size; ++i) {
        reader.push(data[i]);
        while (const std::optional<Frame> frame = reader.next()) {
            tellSkipped(now);
            tell(now, Traffic::Received, frame->wire);
            take(*frame);
            append(sent, takeDue(now));
        }
    }
    tellSkipped(now);
    append(sent, takeDue(now));
    return sent;
}

Bytes LineEnd::advanceTo(Time now)
{
    if (reader.hasBegun() && now >= silenceAfter) {
        reader.abandon();
        tellSkipped(now);
    }
    return takeDue(now);
}

std::optional<Time> LineEnd::nextDue() const
{
    const std::optional<Time> due = outbox.nextDue();
    if (!reader.hasBegun())
        return due;
    return due ? std::min(*due, silenceAfter) : silenceAfter;
}

Bytes LineEnd::takeDue(Time now)
{
    return outbox.take(now, [this](Time time, const Bytes &bytes) { tell(time, Traffic::Sent, bytes); });
}

void LineEnd::tellSkipped(Time now)
{
    const Bytes skipped = reader.takeSkipped();
    if (!skipped.empty())
        tell(now, Traffic::Skipped, skipped);
}

void LineEnd::tell(Time time, Traffic traffic, const Bytes &bytes) const
{
    if (listener)
        listener(time, traffic, bytes);
}

} // namespace sim
