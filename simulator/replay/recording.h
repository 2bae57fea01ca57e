// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What passed on a line, from a trace or a capture, in the order in which it passed.

#ifndef SIMULATOR_REPLAY_RECORDING_H
#define SIMULATOR_REPLAY_RECORDING_H

#include "simulator/protocol/bytes.h"
#include "simulator/protocol/clock.h"
#include "simulator/protocol/layer2.h"
#include "simulator/text/user_error.h"

#include <optional>
#include <string>
#include <vector>

namespace sim {

struct Recorded
{
    std::string place; // in the file, for people: "line 12", "packet 12"
    Time time;         // since the beginning of 1970, UTC
    bool isFromMaster;
    Bytes bytes;
};

struct Recording
{
    std::vector<Recorded> records; // a whole frame of a master is among them
    std::string damage;            // behind which place the file is damaged; empty when it is not
};

class RecordingError : public UserError
{
public:
    using UserError::UserError;
};

// Reads a file of --trace, of either kind. Of a capture that is damaged the part before that counts. Throws
// RecordingError when the file cannot be read, is neither, or has no whole frame of a master in it.
Recording readRecording(const std::string &path);

// The frame that the bytes are; nothing when they are none, or more than one.
std::optional<Frame> wholeFrame(const Bytes &bytes);

} // namespace sim

#endif
