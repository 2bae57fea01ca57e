// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// One simulated controller on the line: frames in, replies out, no port and no clock.
//
//    request (SD2) for the station   E5, and the job is done at once
//    poll (SD1) by the same master   the job's answer, once; E5 when there is none for this master
//    any other service               negative frame: service not active
//    anything else                   silence: other stations' frames, answers
//
// A new request takes the place of an answer that was not polled yet.
//
// Simulator puts stations on a line, with time and faults. A test that needs neither may talk to a station
// alone, in bytes.

#ifndef SIMULATOR_CONTROLLER_STATION_H
#define SIMULATOR_CONTROLLER_STATION_H

#include "simulator/controller/live_value.h"
#include "simulator/controller/memory.h"
#include "simulator/faults/fault_plan.h"
#include "simulator/faults/reply.h"
#include "simulator/protocol/bytes.h"
#include "simulator/protocol/clock.h"
#include "simulator/protocol/layer2.h"
#include "simulator/protocol/layer7.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <utility>
#include <vector>

namespace sim {

class Station
{
public:
    explicit Station(uint8_t address, Memory memory = exampleMemory());

    // Returns what the station sends for a frame, whoever it is for. Takes the faults of each request for
    // this station from the plan.
    Reply handle(const Frame &frame, FaultPlan &plan);

    // Takes what came from the line, in pieces of any size; returns what the station sends. Damaged frames
    // and noise are skipped.
    Bytes receive(const uint8_t *data, size_t size);
    Bytes receive(const Bytes &data) { return receive(data.data(), data.size()); }

    uint8_t address() const { return ownAddress; }
    Memory &memory() { return ownMemory; }
    const Memory &memory() const { return ownMemory; }

    // The value changes by itself from now on. Where two values have the same place, the later one stays.
    void addLiveValue(LiveValue value) { liveValues.push_back(std::move(value)); }
    void storeLiveValues(Time now, Time start);

private:
    Reply takeRequest(const Frame &frame, FaultPlan &plan);
    Reply answerPoll(const Frame &frame);
    Bytes answerFrame(const Frame &request, const Faults &faults);
    Bytes doJob(const Job &job, const Faults &faults);
    Bytes writeItems(const Job &job, const Faults &faults);

    const uint8_t ownAddress;
    Memory ownMemory;
    std::vector<LiveValue> liveValues;
    uint8_t master = 0;     // who sent the last request
    bool isEchoing = false; // whether a fault of the last request has the line echo
    std::deque<Reply> owed; // what this master's next polls get
    FrameReader reader;     // for receive()
};

} // namespace sim

#endif
