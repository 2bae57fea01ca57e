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
#include "simulator/line/controllers.h"
#include "simulator/line/line_end.h"
#include "simulator/protocol/bytes.h"
#include "simulator/protocol/clock.h"
#include "simulator/protocol/layer2.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace sim {

class Simulator : public Controllers
{
public:
    // The clock shows start. Live values count from there; only those of the kind "clock" show the time
    // itself.
    explicit Simulator(Time start = Time::zero());

    // The new station takes the place of one that had the same address. The returned one stays where it is
    // until another takes its place.
    Station &addStation(uint8_t address, const Memory &memory = exampleMemory());

    // Returns null when there is no station with this address.
    Station *station(uint8_t address);

    // All faults that concern a request act together, in the order in which they were added; of those that
    // exclude each other the first one acts. The requests for all stations count together.
    void addFault(const Fault &fault) { plan.add(fault); }

    // The seed is for faults with chance in them. Without one every Simulator makes the same choices.
    void setSeed(uint32_t seed) { plan.seed(seed); }

    // Lets every byte, received or sent, take the time of 11 bits at this rate, one after the other as on a
    // two-wire line. At a rate of 0 bytes take no time.
    void setPace(unsigned baudRate);

    // Sets the time between the end of a request and the first byte of the reply.
    void setTurnaround(Time time) { turnaround = time; }

    // The listener is told of the traffic in the order in which it happens, with the time of it.
    void setListener(Listener listener) { lineEnd.setListener(std::move(listener)); }

    // Takes what comes from the line now, in pieces of any size. Returns what goes out now.
    Bytes feed(const uint8_t *data, size_t size) override;
    Bytes feed(const Bytes &data) { return feed(data.data(), data.size()); }

    // Moves the clock, never backwards. Returns what has gone out meanwhile.
    Bytes advance(Time span) { return advanceTo(clock + span); }
    Bytes advanceTo(Time now) override;

    Time now() const override { return clock; }

    // Tells when advanceTo() will have something to do; nothing when only feed() will.
    std::optional<Time> nextDue() const override { return lineEnd.nextDue(); }

private:
    void take(const Frame &frame);
    void send(const Reply &reply);
    void storeLiveValues();

    const Time startTime;
    Time clock;
    Time lineFree; // when all bytes so far have passed the line
    Time byteTime{0};
    Time turnaround{0};
    std::map<uint8_t, Station> stations;
    FaultPlan plan;
    LineEnd lineEnd;
};

} // namespace sim

#endif
