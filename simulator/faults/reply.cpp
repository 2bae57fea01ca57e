// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/faults/reply.h"

#include "simulator/faults/fault.h"
#include "simulator/protocol/layer2.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>

namespace sim {

namespace {

// A station never sends these two in their places.
constexpr uint8_t kWrongAcknowledgement = 0x00;
constexpr uint8_t kWrongEnd = 0x17;

Bytes noise(size_t size, Random &random)
{
    Bytes bytes(size);
    for (uint8_t &byte : bytes)
        byte = static_cast<uint8_t>(random() % 256);
    return bytes;
}

void insertNoise(Bytes &bytes, size_t position, size_t size, Random &random)
{
    const Bytes inserted = noise(size, random);
    bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(position), inserted.begin(), inserted.end());
}

void invertByte(Bytes &bytes, std::optional<unsigned> position, Random &random)
{
    if (bytes.empty())
        return;
    const size_t chosen = position ? *position : random() % bytes.size();
    uint8_t &byte = bytes[std::min(chosen, bytes.size() - 1)];
    byte = static_cast<uint8_t>(~byte);
}

// Changes the byte that has so many others behind it. Faults act together: one before may have cut so much
// off that it is gone, and then nothing happens.
template <typename Change> void changeFromEnd(Bytes &bytes, size_t behind, Change change)
{
    if (bytes.size() > behind)
        change(bytes[bytes.size() - 1 - behind]);
}

// Does nothing for faults of other kinds.
void damage(Bytes &bytes, const Fault &fault, Random &random)
{
    const size_t argument = fault.argument.value_or(0);
    switch (fault.kind) {
    case FaultKind::Truncated:
        return bytes.resize(bytes.size() - std::min(bytes.size(), argument));
    case FaultKind::Short:
        return bytes.resize(std::min(bytes.size(), argument));
    case FaultKind::Corrupt:
        return invertByte(bytes, fault.argument, random);
    case FaultKind::Noise:
        return insertNoise(bytes, 0, argument, random);
    case FaultKind::NoiseInside: // neither in front, which is Noise, nor behind, where the frame stays whole
        return insertNoise(bytes, bytes.size() < 2 ? 0 : 1 + random() % (bytes.size() - 1), argument, random);
    case FaultKind::BadCheckSum:
        return changeFromEnd(bytes, 1, [](uint8_t &byte) { ++byte; });
    case FaultKind::BadEnd:
        return changeFromEnd(bytes, 0, [](uint8_t &byte) { byte = kWrongEnd; });
    default:
        return;
    }
}

Time lateness(const Faults &faults, FaultKind kind)
{
    const Fault *late = faults.find(kind);
    return std::chrono::milliseconds(late ? late->argument.value_or(0) : 0);
}

} // namespace

Reply acknowledgement(const Faults &faults, Random &random)
{
    Reply reply;
    reply.late = lateness(faults, FaultKind::LateAcknowledgement);
    if (const Fault *noisy = faults.find(FaultKind::NoiseBeforeAcknowledgement))
        reply.bytes = noise(noisy->argument.value_or(0), random);
    reply.bytes.push_back(kShortAcknowledgement);
    return reply;
}

std::optional<Bytes> insteadOfAcknowledgement(const Faults &faults, uint8_t master, uint8_t station)
{
    for (const Fault &fault : faults) {
        switch (fault.kind) {
        case FaultKind::NoResource:
            return sd1(master, station, kNoResource);
        case FaultKind::NotActive:
            return sd1(master, station, kServiceNotActive);
        case FaultKind::Silent:
            return Bytes();
        case FaultKind::WrongAcknowledgement:
            return Bytes{kWrongAcknowledgement};
        default:
            break;
        }
    }
    return std::nullopt;
}

Reply answer(Bytes frame, const Faults &faults, Random &random)
{
    Reply reply;
    if (faults.has(FaultKind::NoAnswer))
        return reply;
    reply.bytes = std::move(frame);
    for (const Fault &fault : faults)
        damage(reply.bytes, fault, random);
    reply.late = lateness(faults, FaultKind::Late);
    return reply;
}

} // namespace sim
