// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Misbehaviour on request: what the station does wrong, and with which request.

#ifndef SIMULATOR_FAULT_H
#define SIMULATOR_FAULT_H

#include "simulator/bytes.h"

#include <optional>
#include <string>

namespace sim {

enum class FaultKind {
    None,
    // instead of the acknowledgement; the job is not done
    NoResource,
    NotActive,
    Silent,
    WrongAcknowledgement,
    // in the answer's place or its frame
    NoAnswer,
    NotReady,
    Truncated,
    BadCheckSum,
    BadEnd,
    WrongSource,
    // in the answer's PDU; the last three leave the job undone
    StaleReference,
    ErrorClass,
    HardwareFault,
    IgnoreWrites,
};

struct Fault
{
    FaultKind kind = FaultKind::None;
    unsigned request = 0; // counted from 1; 0: every request
};

struct FaultName
{
    FaultKind kind;
    const char *name;
    const char *meaning;
};

// Every kind but None.
const std::vector<FaultName> &faultNames();

// "silent" or "silent@3". Nothing when the text is neither.
std::optional<Fault> parseFault(const std::string &text);

// What goes out instead of the acknowledgement; nothing when the fault leaves that alone.
std::optional<Bytes> insteadOfAcknowledgement(FaultKind kind, uint8_t master, uint8_t station);

// The answer's frame as the fault leaves it.
Bytes damagedFrame(FaultKind kind, Bytes frame);

} // namespace sim

#endif
