// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// One simulated controller on the line: bytes in, bytes out, no port and no clock.
//
//    request (SD2) for the station   E5, and the job is done at once
//    poll (SD1) by the same master   the job's answer, once; E5 when there is none for this master
//    any other service               negative frame: service not active
//    anything else                   silence: other stations' frames, answers, damaged frames, noise
//
// A new request takes the place of an answer that was not polled yet.

#ifndef SIMULATOR_STATION_H
#define SIMULATOR_STATION_H

#include "simulator/fault.h"
#include "simulator/layer2.h"
#include "simulator/layer7.h"
#include "simulator/memory.h"

#include <deque>
#include <functional>

namespace sim {

enum class Traffic { Received, Sent, Skipped };

class Station
{
public:
    // Told of every whole frame that was received or sent, and of bytes that made no frame.
    using Listener = std::function<void(Traffic, const Bytes &)>;

    explicit Station(uint8_t address, Memory memory = exampleMemory());

    // Takes what came from the line, in pieces of any size; returns what the station sends.
    Bytes receive(const uint8_t *data, size_t size);
    Bytes receive(const Bytes &data) { return receive(data.data(), data.size()); }

    // Tells the station that the line has been silent for so long that a frame which has begun will not
    // be completed.
    void lineFellSilent();

    // When several faults concern one request, the first one added wins.
    void addFault(const Fault &fault) { m_faults.push_back(fault); }
    void setListener(Listener listener) { m_listener = std::move(listener); }

    Memory &memory() { return m_memory; }
    const Memory &memory() const { return m_memory; }

private:
    Bytes handle(const Frame &frame);
    Bytes takeRequest(const Frame &frame);
    Bytes answerPoll(const Frame &frame);
    Bytes answerFrame(const Frame &request, FaultKind fault);
    Bytes doJob(const Job &job, FaultKind fault);
    Bytes writeItems(const Job &job, FaultKind fault);
    FaultKind faultOfRequest(unsigned request) const;
    void tell(Traffic traffic, const Bytes &bytes) const;

    const uint8_t m_address;
    Memory m_memory;
    FrameReader m_reader;
    std::vector<Fault> m_faults;
    Listener m_listener;
    unsigned m_requests = 0;  // so far, this one included
    uint8_t m_master = 0;     // sender of the last request
    std::deque<Bytes> m_owed; // what this master's next polls get
};

} // namespace sim

#endif
