// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/line/simulator.h"

#include <algorithm>
#include <chrono>

namespace sim {

namespace {

using namespace std::chrono_literals;

constexpr unsigned kBitsPerByte = 11; // start bit, 8 data bits, parity bit, stop bit

} // namespace

Simulator::Simulator(Time start) : startTime(start), clock(start), lineFree(start) {}

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
    lineFree = std::max(clock, lineFree) + byteTime * static_cast<Time::rep>(size);
    storeLiveValues();
    return lineEnd.feed(clock, data, size, [this](const Frame &frame) { take(frame); });
}

Bytes Simulator::advanceTo(Time now)
{
    clock = std::max(clock, now);
    storeLiveValues();
    return lineEnd.advanceTo(clock);
}

void Simulator::take(const Frame &frame)
{
    if (Station *addressed = station(frame.destination))
        send(addressed->handle(frame, plan));
    else if (plan.isPermanent(FaultKind::Echo)) // an adapter hears itself, whoever it speaks to
        lineEnd.post(frame.wire, clock, Time::zero());
}

// A late reply leaves the line free until it begins: what the master sends meanwhile is answered at once.
void Simulator::send(const Reply &reply)
{
    lineEnd.post(reply.echo, clock, Time::zero());
    const Time start = lineFree + turnaround;
    lineEnd.post(reply.bytes, start + reply.late, byteTime);
    if (!reply.bytes.empty() && reply.late == Time::zero())
        lineFree = start + byteTime * static_cast<Time::rep>(reply.bytes.size());
}

void Simulator::storeLiveValues()
{
    for (auto &station : stations)
        station.second.storeLiveValues(clock, startTime);
}

} // namespace sim
