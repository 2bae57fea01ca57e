// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/fault.h"

#include "simulator/layer2.h"

#include <charconv>

namespace sim {

namespace {

constexpr uint8_t kWrongAcknowledgement = 0x00;
constexpr uint8_t kWrongEnd = 0x17;

std::optional<FaultKind> kindOf(const std::string &name)
{
    for (const FaultName &known : faultNames()) {
        if (name == known.name)
            return known.kind;
    }
    return std::nullopt;
}

// The whole text as a number from 1 up.
std::optional<unsigned> parseRequest(const std::string &text)
{
    unsigned number = 0;
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    const bool good = result.ec == std::errc() && result.ptr == end && number > 0;
    return good ? std::optional<unsigned>(number) : std::nullopt;
}

} // namespace

const std::vector<FaultName> &faultNames()
{
    static const std::vector<FaultName> names = {
        {FaultKind::NoResource, "no-resource", "negative frame, function code 2"},
        {FaultKind::NotActive, "not-active", "negative frame, function code 3"},
        {FaultKind::Silent, "silent", "no acknowledgement"},
        {FaultKind::WrongAcknowledgement, "wrong-ack", "byte 00 as acknowledgement"},
        {FaultKind::NoAnswer, "no-answer", "acknowledged, but the poll stays unanswered"},
        {FaultKind::NotReady, "not-ready", "the first poll gets E5, the second one the answer"},
        {FaultKind::Truncated, "truncated", "the answer ends three bytes early"},
        {FaultKind::BadCheckSum, "bad-checksum", "the answer's check sum is wrong"},
        {FaultKind::BadEnd, "bad-end", "the answer ends with 17"},
        {FaultKind::WrongSource, "wrong-source", "the answer comes from the next station number"},
        {FaultKind::StaleReference, "stale-reference", "the answer belongs to the request before"},
        {FaultKind::ErrorClass, "error-class", "the answer's header carries an error"},
        {FaultKind::HardwareFault, "hardware-fault", "every item is refused with code 01"},
        {FaultKind::IgnoreWrites, "ignore-writes", "writes are answered as done and change nothing"},
    };
    return names;
}

std::optional<Fault> parseFault(const std::string &text)
{
    const size_t at = text.find('@');
    const std::optional<FaultKind> kind = kindOf(text.substr(0, at));
    if (!kind)
        return std::nullopt;
    if (at == std::string::npos)
        return Fault{*kind, 0};
    const std::optional<unsigned> request = parseRequest(text.substr(at + 1));
    return request ? std::optional<Fault>(Fault{*kind, *request}) : std::nullopt;
}

std::optional<Bytes> insteadOfAcknowledgement(FaultKind kind, uint8_t master, uint8_t station)
{
    switch (kind) {
    case FaultKind::NoResource:
        return sd1(master, station, kNoResource);
    case FaultKind::NotActive:
        return sd1(master, station, kServiceNotActive);
    case FaultKind::Silent:
        return Bytes();
    case FaultKind::WrongAcknowledgement:
        return Bytes{kWrongAcknowledgement};
    default:
        return std::nullopt;
    }
}

Bytes damagedFrame(FaultKind kind, Bytes frame)
{
    const size_t end = frame.size() - 1;
    if (kind == FaultKind::Truncated)
        frame.resize(frame.size() - 3);
    else if (kind == FaultKind::BadCheckSum)
        frame[end - 1] = static_cast<uint8_t>(frame[end - 1] + 1);
    else if (kind == FaultKind::BadEnd)
        frame[end] = kWrongEnd;
    return frame;
}

} // namespace sim
