// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Replies: what a station sends for one frame, and what faults make of it.

#ifndef SIMULATOR_FAULTS_REPLY_H
#define SIMULATOR_FAULTS_REPLY_H

#include "simulator/faults/fault_plan.h"
#include "simulator/protocol/bytes.h"
#include "simulator/protocol/clock.h"

#include <cstdint>
#include <optional>

namespace sim {

struct Reply
{
    Bytes echo;   // the master's own bytes, which come back at once, before anything else
    Bytes bytes;  // none when the station stays silent
    Time late{0}; // beyond the time that the line takes
};

// Builds the acknowledgement of a request that is taken.
Reply acknowledgement(const Faults &faults, Random &random);

// Builds what goes out instead of it when a fault keeps the station from taking the request, which may be no
// bytes; nothing when no fault does that.
std::optional<Bytes> insteadOfAcknowledgement(const Faults &faults, uint8_t master, uint8_t station);

// Builds the answer to a poll: the frame as the faults leave it, or silence.
Reply answer(Bytes frame, const Faults &faults, Random &random);

} // namespace sim

#endif
