// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A line with simulated controllers on it: bytes in, bytes out, and a clock that only its user moves. It
// opens no port, never sleeps and starts no thread. Tests meet it through simulator/simulator.h, the program
// s7ppi-sim puts it on a real line with Server.
//
// Without faults that need time, without a pace and without a turnaround time, everything goes out at once,
// and the clock may stand still.

#ifndef SIMULATOR_LINE_SIMULATOR_H
#define SIMULATOR_LINE_SIMULATOR_H

#include "simulator/controller/memory.h"
#include "simulator/controller/station.h"
#include "simulator/faults/fault.h"
#include "simulator/faults/fault_plan.h"
#include "simulator/faults/reply.h"
#include "simulator/line/outbox.h"
#include "simulator/protocol/bytes.h"
#include "simulator/protocol/clock.h"
#include "simulator/protocol/layer2.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>

namespace sim {

enum class Traffic {
    Received, // a whole frame
    Sent,     // all that goes out at one time, damaged by a fault or not; told when its first byte goes
    Skipped,  // received bytes that made no frame
};

class Simulator
{
public:
    using Listener = std::function<void(Time, Traffic, const Bytes &)>;

    // start: what the clock shows. Live values count from here; only "clock" shows the time itself.
    explicit Simulator(Time start = Time::zero());

    // The station stays where it is. Takes the place of one that had the same address.
    Station &addStation(uint8_t address, const Memory &memory = exampleMemory());

    // Null when there is none.
    Station *station(uint8_t address);

    // All that concern a request act together, in the order in which they were added; of those that exclude
    // each other the first one acts. Requests for any of the stations count.
    void addFault(const Fault &fault) { plan.add(fault); }

    // For faults with chance in them. Without it every Simulator makes the same choices.
    void setSeed(uint32_t seed) { plan.seed(seed); }

    // Lets every byte, received or sent, take the time of 11 bits at this rate, one after the other as on a
    // two-wire line. 0: bytes take no time.
    void setPace(unsigned baudRate);

    // The time between the end of a request and the reply's first byte.
    void setTurnaround(Time time) { turnaround = time; }

    // Told in the order in which it happens, with the time of it.
    void setListener(Listener listener_) { listener = std::move(listener_); }

    // Takes what comes from the line now, in pieces of any size. Returns what goes out now.
    Bytes feed(const uint8_t *data, size_t size);
    Bytes feed(const Bytes &data) { return feed(data.data(), data.size()); }

    // Moves the clock, never backwards. Returns what has gone out meanwhile.
    Bytes advance(Time span) { return advanceTo(clock + span); }
    Bytes advanceTo(Time now);

    Time now() const { return clock; }

    // When advanceTo() will have something to do; nothing when only feed() will.
    std::optional<Time> nextDue() const;

private:
    void take(const Frame &frame);
    void send(const Reply &reply);
    void storeLiveValues();
    Bytes takeDue();
    void tellSkipped();
    void tell(Time time, Traffic traffic, const Bytes &bytes) const;

    const Time startTime;
    Time clock;
    Time lineFree;     // all bytes so far have passed the line then
    Time silenceAfter; // a frame that has begun by then is given up
    Time byteTime{0};
    Time turnaround{0};
    std::map<uint8_t, Station> stations;
    FaultPlan plan;
    FrameReader reader;
    Outbox outbox;
    Listener listener;
};

} // namespace sim

#endif
