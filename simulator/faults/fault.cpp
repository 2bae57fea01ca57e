// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/faults/fault.h"

#include "common/duration.h"
#include "simulator/text/named_entry.h"
#include "simulator/text/number_text.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <stdexcept>
#include <system_error>

namespace sim {

namespace {

// Name, base, smallest, largest, and what holds when it is left out. The longest frame has 261 bytes, of
// which at least one is kept or missing, and whose last one is at position 260. STATION may be any byte, also
// one that is no station. CODE may not be FF, which is success.
const FaultArgument kMilliseconds = {"TIME", 10, 1, 600000, 1000, true};
const FaultArgument kMissing = {"BYTES", 10, 1, 260, 3};
const FaultArgument kKept = {"BYTES", 10, 1, 260, 6};
const FaultArgument kPosition = {"POSITION", 10, 0, 260, std::nullopt};
const FaultArgument kNoise = {"BYTES", 10, 1, 200, 3};
const FaultArgument kStation = {"STATION", 10, 0, 255, std::nullopt};
const FaultArgument kCode = {"CODE", 16, 0x00, 0xFE, 0x05};

[[noreturn]] void refuse(const std::string &text)
{
    throw std::invalid_argument(text);
}

// Gives nothing when the text is no number or one that is out of bounds.
std::optional<unsigned> parseNumberFrom(unsigned smallest, unsigned largest, const std::string &text,
                                        int base = 10)
{
    const std::optional<unsigned> number = parseNumber<unsigned>(text, base);
    return number && *number >= smallest && *number <= largest ? number : std::nullopt;
}

std::string numberText(unsigned number, int base)
{
    char digits[16] = {};
    return {digits, std::to_chars(digits, digits + sizeof digits, number, base).ptr};
}

// Gives nothing when the text is no time or one that is out of bounds.
std::optional<unsigned> parseTimeFrom(unsigned smallest, unsigned largest, const std::string &text)
{
    const auto time = common::parseDuration(text, common::Milliseconds(1));
    return time && time->count() >= smallest && time->count() <= largest
               ? std::optional(unsigned(time->count()))
               : std::nullopt;
}

[[noreturn]] void refuseArgument(const FaultName &kind, const std::string &text)
{
    const FaultArgument &wanted = *kind.argument;
    const std::string beginning = std::string(kind.name) + '=' + wanted.name + ": \"" + text + "\" is not a ";
    if (wanted.isTime)
        refuse(beginning + "time from " + common::durationText(common::Milliseconds(wanted.smallest)) +
               " to " + common::durationText(common::Milliseconds(wanted.largest)) + ", as " +
               common::kDurationExamples);
    refuse(beginning + (wanted.base == 16 ? "hexadecimal " : "") + "number from " +
           numberText(wanted.smallest, wanted.base) + " to " + numberText(wanted.largest, wanted.base));
}

unsigned parseArgument(const FaultName &kind, const std::string &text)
{
    if (!kind.argument)
        refuse(std::string(kind.name) + " takes no argument, it is given \"" + text + '"');
    const FaultArgument &wanted = *kind.argument;
    const auto number = wanted.isTime ? parseTimeFrom(wanted.smallest, wanted.largest, text)
                                      : parseNumberFrom(wanted.smallest, wanted.largest, text, wanted.base);
    if (!number)
        refuseArgument(kind, text);
    return *number;
}

unsigned parseRequest(const std::string &text)
{
    if (const auto number = parseNumberFrom(1, 1000000000, text))
        return *number;
    refuse("@N: \"" + text + "\" is not the number of a request, from 1 on");
}

double parsePercent(const std::string &text)
{
    double percent = 0;
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, percent, std::chars_format::fixed);
    if (result.ec == std::errc() && result.ptr == end && percent > 0 && percent <= 100)
        return percent;
    refuse("%P: \"" + text + "\" is not a percentage above 0, up to 100");
}

} // namespace

const std::vector<FaultName> &faultNames()
{
    static const std::vector<FaultName> names = {
        {FaultKind::NoResource, "no-resource", nullptr, "negative frame, function code 2"},
        {FaultKind::NotActive, "not-active", nullptr, "negative frame, function code 3"},
        {FaultKind::Silent, "silent", nullptr, "no acknowledgement"},
        {FaultKind::WrongAcknowledgement, "wrong-ack", nullptr, "byte 00 as acknowledgement"},
        {FaultKind::LateAcknowledgement, "late-ack", &kMilliseconds, "the acknowledgement comes TIME later"},
        {FaultKind::NoiseBeforeAcknowledgement, "noise-ack", &kNoise,
         "random bytes in front of the acknowledgement"},
        {FaultKind::NoAnswer, "no-answer", nullptr, "acknowledged, but the poll stays unanswered"},
        {FaultKind::NotReady, "not-ready", nullptr, "the first poll gets E5, the second one the answer"},
        {FaultKind::Late, "late", &kMilliseconds, "the answer comes TIME later"},
        {FaultKind::Truncated, "truncated", &kMissing, "the answer ends BYTES early"},
        {FaultKind::Short, "short", &kKept, "only the answer's first BYTES come"},
        {FaultKind::Corrupt, "corrupt", &kPosition,
         "the answer's byte at POSITION, from 0, is inverted (default any byte)"},
        {FaultKind::Noise, "noise", &kNoise, "random bytes in front of the answer"},
        {FaultKind::NoiseInside, "noise-inside", &kNoise, "random bytes somewhere within the answer"},
        {FaultKind::BadCheckSum, "bad-checksum", nullptr, "the answer's check sum is wrong"},
        {FaultKind::BadEnd, "bad-end", nullptr, "the answer ends with 17"},
        {FaultKind::WrongSource, "wrong-source", &kStation,
         "the answer comes from STATION (default the next one)"},
        {FaultKind::WrongDestination, "wrong-destination", &kStation,
         "the answer goes to STATION (default the one after the master)"},
        {FaultKind::StaleReference, "stale-reference", nullptr, "the answer belongs to the request before"},
        {FaultKind::ErrorClass, "error-class", nullptr, "the answer's header carries an error"},
        {FaultKind::HardwareFault, "hardware-fault", nullptr, "every item is refused with code 01"},
        {FaultKind::ItemRefused, "item-refused", &kCode, "every item is refused with CODE, hexadecimal"},
        {FaultKind::IgnoreWrites, "ignore-writes", nullptr, "writes are answered as done and change nothing"},
        {FaultKind::Echo, "echo", nullptr,
         "the master's own bytes come back first, as a two-wire adapter does it"},
    };
    return names;
}

Fault parseFault(const std::string &text)
{
    const size_t when = std::min(text.find_first_of("@%"), text.size());
    const size_t equals = std::min(text.find('='), when);
    const FaultName &kind = entryNamed(text.substr(0, equals), faultNames(), "kind of fault");
    Fault fault;
    fault.kind = kind.kind;
    if (equals < when)
        fault.argument = parseArgument(kind, text.substr(equals + 1, when - equals - 1));
    else if (kind.argument)
        fault.argument = kind.argument->standard;
    if (when < text.size() && text[when] == '@')
        fault.request = parseRequest(text.substr(when + 1));
    else if (when < text.size())
        fault.percent = parsePercent(text.substr(when + 1));
    return fault;
}

bool isRandom(const Fault &fault)
{
    switch (fault.kind) {
    case FaultKind::NoiseBeforeAcknowledgement:
    case FaultKind::Noise:
    case FaultKind::NoiseInside:
        return true;
    case FaultKind::Corrupt:
        return !fault.argument || fault.percent < 100;
    default:
        return fault.percent < 100;
    }
}

} // namespace sim
