// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/replay/replay.h"

#include "simulator/trace/trace.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>

namespace sim {

namespace {

// Where a PDU has its reference: 32 MT 0000 RRRR ...
constexpr size_t kReference = 4;
constexpr size_t kReferenceEnd = 6;
constexpr uint8_t kPduStart = 0x32;

// No master waits so long for an answer, and the slowest speed still leaves a time that can be counted.
constexpr Time kLongestWait = std::chrono::hours(1);

bool hasReference(const Frame &frame)
{
    return frame.pdu.size() >= kReferenceEnd && frame.pdu.front() == kPduStart;
}

unsigned referenceOf(const Frame &frame)
{
    return unsigned(frame.pdu[kReference]) << 8 | frame.pdu[kReference + 1];
}

Bytes withReference(Bytes pdu, unsigned reference)
{
    pdu[kReference] = static_cast<uint8_t>(reference >> 8);
    pdu[kReference + 1] = static_cast<uint8_t>(reference);
    return pdu;
}

bool isSame(const Frame &one, const Frame &other)
{
    if (one.hasPdu != other.hasPdu || one.destination != other.destination || one.source != other.source)
        return false;
    if (hasReference(one) && hasReference(other))
        return withReference(one.pdu, 0) == withReference(other.pdu, 0);
    return one.pdu == other.pdu;
}

// An answer as it was, but with a reference so much further on.
Bytes shifted(const Bytes &recorded, unsigned shift)
{
    const std::optional<Frame> answer = wholeFrame(recorded);
    if (!answer || !hasReference(*answer))
        return recorded;
    return sd2(answer->destination, answer->source, answer->function,
               withReference(answer->pdu, referenceOf(*answer) + shift));
}

} // namespace

Replay::Replay(std::vector<Recorded> recording_, double speed_, Time start)
    : recording(std::move(recording_)), speed(speed_), clock(start)
{
    for (size_t place = 0; place < recording.size(); ++place)
        if (recording[place].isFromMaster)
            if (std::optional<Frame> frame = wholeFrame(recording[place].bytes))
                asked.push_back({place, std::move(*frame)});
}

Bytes Replay::feed(const uint8_t *data, size_t size)
{
    return lineEnd.feed(clock, data, size, [this](const Frame &frame) { take(frame); });
}

Bytes Replay::advanceTo(Time now)
{
    clock = std::max(clock, now);
    return lineEnd.advanceTo(clock);
}

void Replay::take(const Frame &frame)
{
    const std::optional<size_t> index = find(frame);
    if (index == next)
        lastReported.reset();
    else
        report(frame, index);
    if (index)
        answer(*index, frame);
}

// Posts what came behind the frame up to the master's next one.
void Replay::answer(size_t index, const Frame &frame)
{
    const auto &[place, frameThen] = asked[index];
    const Recorded &then = recording[place];
    if (hasReference(frame))
        referenceShift = referenceOf(frame) - referenceOf(frameThen);
    for (size_t i = place + 1; i < recording.size() && !recording[i].isFromMaster; ++i) {
        const Time distance = std::clamp(recording[i].time - then.time, Time::zero(), kLongestWait);
        const Time wait = speed > 0 ? std::chrono::duration_cast<Time>(distance / speed) : Time::zero();
        lineEnd.post(shifted(recording[i].bytes, referenceShift), clock + wait, Time::zero());
    }
    next = index + 1;
    if (next == asked.size()) {
        next = 0;
        say("the recording has come to its end, and begins anew");
    }
}

// Tells a difference; a frame that comes again and again, as a repeated request does, only once.
void Replay::report(const Frame &frame, const std::optional<size_t> &elsewhere)
{
    ++differences;
    const bool isRepeated = lastReported && isSame(*lastReported, frame);
    lastReported = frame;
    if (isRepeated)
        return;
    const Recorded &expected = recording[asked[next].place];
    say(frameWords(frame.wire) + ": at " + expected.place + " of the recording stands " +
        frameWords(expected.bytes) +
        (elsewhere ? "; going on at " + recording[asked[*elsewhere].place].place
                   : "; it is nowhere in the recording, and not answered"));
}

void Replay::say(const std::string &text)
{
    if (tell)
        tell(text);
}

// Where the frame stands in the recording: the nearest place from the expected one on, or else from the
// beginning on.
std::optional<size_t> Replay::find(const Frame &frame) const
{
    const auto isIt = [&](const Asked &one) { return isSame(one.frame, frame); };
    const auto expected = asked.begin() + std::ptrdiff_t(next);
    auto found = std::find_if(expected, asked.end(), isIt);
    if (found == asked.end()) {
        found = std::find_if(asked.begin(), expected, isIt);
        if (found == expected)
            return std::nullopt;
    }
    return size_t(found - asked.begin());
}

} // namespace sim
