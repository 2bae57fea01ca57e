// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a station sends for one frame, faults included.

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
    Bytes echo;   // comes back at once, before anything else
    Bytes bytes;  // empty: silence
    Time late{0}; // beyond the time that the line takes
};

// The acknowledgement of a request that is taken.
Reply acknowledgement(const Faults &faults, Random &random);

// What goes out instead of it, the request not being taken; nothing when no fault does that.
std::optional<Bytes> insteadOfAcknowledgement(const Faults &faults, uint8_t master, uint8_t station);

// The answer to a poll: a frame, as the faults leave it, or silence.
Reply answer(Bytes frame, const Faults &faults, Random &random);

} // namespace sim

#endif
