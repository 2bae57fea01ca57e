// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/line/simulator.h"

#include <algorithm>
#include <chrono>

namespace sim {

namespace {

using namespace std::chrono_literals;

// A frame's bytes follow each other at once. At 9600 baud this is the time of some 170 characters, enough
// for any serial adapter's buffering and well below a master's reply time-out.
constexpr Time kSilence = 200ms;

constexpr unsigned kBitsPerByte = 11; // start bit, 8 data bits, parity bit, stop bit

} // namespace

Simulator::Simulator(Time start) : startTime(start), clock(start), lineFree(start), silenceAfter(start) {}

Station &Simulator::addStation(uint8_t address, const Memory &memory)
{
    stations.erase(address);
    return stations.try_emplace(address, address, memory).first->second;
}

Station *Simulator::station(uint8_t address)
{
    const auto found = stations.find(address);
    return found == stations.end() ? nullptr : &found->second;
}

void Simulator::setPace(unsigned baudRate)
{
    byteTime = baudRate == 0 ? Time::zero() : Time(kBitsPerByte * Time(1s)) / baudRate;
}

Bytes Simulator::feed(const uint8_t *data, size_t size)
{
    silenceAfter = clock + kSilence;
    lineFree = std::max(clock, lineFree) + byteTime * static_cast<Time::rep>(size);
    storeLiveValues();
    Bytes sent;
    for (size_t i = 0; i < size; ++i) {
        reader.push(data[i]);
        while (const std::optional<Frame> frame = reader.next()) {
            take(*frame);
            append(sent, takeDue());
        }
    }
    tellSkipped();
    append(sent, takeDue());
    return sent;
}

Bytes Simulator::advanceTo(Time now)
{
    clock = std::max(clock, now);
    storeLiveValues();
    if (reader.hasBegun() && clock >= silenceAfter) {
        reader.abandon();
        tellSkipped();
    }
    return takeDue();
}

std::optional<Time> Simulator::nextDue() const
{
    const std::optional<Time> due = outbox.nextDue();
    if (!reader.hasBegun())
        return due;
    return due ? std::min(*due, silenceAfter) : silenceAfter;
}

void Simulator::take(const Frame &frame)
{
    tellSkipped();
    tell(clock, Traffic::Received, frame.wire);
    if (Station *addressed = station(frame.destination))
        send(addressed->handle(frame, plan));
    else if (plan.isPermanent(FaultKind::Echo)) // an adapter hears itself, whoever it speaks to
        outbox.post(frame.wire, clock, Time::zero());
}

// A late reply leaves the line free until it begins: what the master sends meanwhile is answered at once.
void Simulator::send(const Reply &reply)
{
    outbox.post(reply.echo, clock, Time::zero());
    const Time start = lineFree + turnaround;
    outbox.post(reply.bytes, start + reply.late, byteTime);
    if (!reply.bytes.empty() && reply.late == Time::zero())
        lineFree = start + byteTime * static_cast<Time::rep>(reply.bytes.size());
}

void Simulator::storeLiveValues()
{
    for (auto &station : stations)
        station.second.storeLiveValues(clock, startTime);
}

Bytes Simulator::takeDue()
{
    return outbox.take(clock, [this](Time time, const Bytes &bytes) { tell(time, Traffic::Sent, bytes); });
}

void Simulator::tellSkipped()
{
    const Bytes skipped = reader.takeSkipped();
    if (!skipped.empty())
        tell(clock, Traffic::Skipped, skipped);
}

void Simulator::tell(Time time, Traffic traffic, const Bytes &bytes) const
{
    if (listener)
        listener(time, traffic, bytes);
}

} // namespace sim
