// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Misbehaviour on request: what goes wrong, and with which requests.

#ifndef SIMULATOR_FAULTS_FAULT_H
#define SIMULATOR_FAULTS_FAULT_H

#include <optional>
#include <string>
#include <vector>

namespace sim {

enum class FaultKind {
    // instead of the acknowledgement; the job is not done
    NoResource,
    NotActive,
    Silent,
    WrongAcknowledgement,
    // with the acknowledgement
    LateAcknowledgement,
    NoiseBeforeAcknowledgement,
    // in the answer's place
    NoAnswer,
    NotReady,
    Late,
    // in the answer's frame
    Truncated,
    Short,
    Corrupt,
    Noise,
    NoiseInside,
    BadCheckSum,
    BadEnd,
    WrongSource,
    WrongDestination,
    // in the answer's PDU; all but the first leave the job undone
    StaleReference,
    ErrorClass,
    HardwareFault,
    ItemRefused,
    IgnoreWrites,
    // on the line
    Echo,
};

struct Fault
{
    FaultKind kind = FaultKind::Silent;
    std::optional<unsigned> argument; // nothing: the kind takes none, or makes its own choice
    unsigned request = 0;             // only the one with this number, counted from 1; 0: every request
    double percent = 100;             // of those, so many at random
};

// What stands behind "=".
struct FaultArgument
{
    const char *name;
    int base; // of the number's digits
    unsigned smallest;
    unsigned largest;
    std::optional<unsigned> standard; // when it is left out; nothing: the kind makes its own choice
};

struct FaultName
{
    FaultKind kind;
    const char *name;
    const FaultArgument *argument; // null: it takes none
    const char *meaning;
};

// Every kind, in the order in which they are declared.
const std::vector<FaultName> &faultNames();

// KIND[=ARGUMENT][@N|%P], such as "late=300@2". Throws std::invalid_argument with a text for the user.
Fault parseFault(const std::string &text);

// Whether chance decides when it happens or what it does.
bool isRandom(const Fault &fault);

} // namespace sim

#endif
