// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Faults: what goes wrong on purpose, and with which requests.

#ifndef SIMULATOR_FAULTS_FAULT_H
#define SIMULATOR_FAULTS_FAULT_H

#include <optional>
#include <string>
#include <vector>

namespace sim {

enum class FaultKind {
    // These come instead of the acknowledgement, and the job is not done.
    NoResource,
    NotActive,
    Silent,
    WrongAcknowledgement,
    // These come with the acknowledgement.
    LateAcknowledgement,
    NoiseBeforeAcknowledgement,
    // These decide what a poll gets, or when it gets the answer.
    NoAnswer,
    NotReady,
    Late,
    // These damage the answer's frame.
    Truncated,
    Short,
    Corrupt,
    Noise,
    NoiseInside,
    BadCheckSum,
    BadEnd,
    WrongSource,
    WrongDestination,
    // These stand in the answer's PDU. All but the first leave the job undone.
    StaleReference,
    ErrorClass,
    HardwareFault,
    ItemRefused,
    IgnoreWrites,
    // An echo comes from the line and not from the controller.
    Echo,
};

// One fault as it was asked for.
struct Fault
{
    FaultKind kind = FaultKind::Silent;
    std::optional<unsigned> argument; // without one the kind takes none, or makes its own choice
    unsigned request = 0; // the number of the one that it concerns, from 1 on; 0 for every request
    double percent = 100; // how many of those it concerns, by chance
};

// What a kind takes behind "=": a number, its name in the help, and its bounds.
struct FaultArgument
{
    const char *name;
    int base; // of the number's digits, 10 or 16
    unsigned smallest;
    unsigned largest;
    std::optional<unsigned> standard; // when it is left out; without one the kind chooses
    bool isTime = false;              // in milliseconds, or with a unit
};

// A kind as users meet it.
struct FaultName
{
    FaultKind kind;
    const char *name;
    const FaultArgument *argument; // null when it takes none
    const char *meaning;
};

// Returns every kind, in the order in which they are declared.
const std::vector<FaultName> &faultNames();

// Reads KIND[=ARGUMENT][@N|%P], such as "late=300@2". Throws std::invalid_argument with a text for the user.
Fault parseFault(const std::string &text);

// Whether chance decides when it happens or what it does.
bool isRandom(const Fault &fault);

} // namespace sim

#endif
