// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/line/simulator.h"

#include <algorithm>

namespace sim {

namespace {

using namespace std::chrono_literals;

// A frame's bytes follow each other at once. At 9600 baud this is the time of some 170 characters, enough
// for any serial adapter's buffering and well below a master's reply time-out.
constexpr Time kSilence = 200ms;

constexpr unsigned kBitsPerByte = 11; // start, 8 data bits, parity, stop

} // namespace

Simulator::Simulator(Time start) : m_start(start), m_now(start), m_lineFree(start), m_silenceAfter(start) {}

Station &Simulator::addStation(uint8_t address, const Memory &memory)
{
    m_stations.erase(address);
    return m_stations.try_emplace(address, address, memory).first->second;
}

Station *Simulator::station(uint8_t address)
{
    const auto found = m_stations.find(address);
    return found == m_stations.end() ? nullptr : &found->second;
}

void Simulator::setPace(unsigned baudRate)
{
    m_byteTime = baudRate == 0 ? Time::zero() : Time(kBitsPerByte * Time(1s)) / baudRate;
}

Bytes Simulator::feed(const uint8_t *data, size_t size)
{
    m_silenceAfter = m_now + kSilence;
    m_lineFree = std::max(m_now, m_lineFree) + m_byteTime * static_cast<Time::rep>(size);
    storeLiveValues();
    Bytes sent;
    for (size_t i = 0; i < size; ++i) {
        m_reader.push(data[i]);
        while (const std::optional<Frame> frame = m_reader.next()) {
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
    m_now = std::max(m_now, now);
    storeLiveValues();
    if (m_reader.hasBegun() && m_now >= m_silenceAfter) {
        m_reader.abandon();
        tellSkipped();
    }
    return takeDue();
}

std::optional<Time> Simulator::nextDue() const
{
    const std::optional<Time> due = m_outbox.nextDue();
    if (!m_reader.hasBegun())
        return due;
    return due ? std::min(*due, m_silenceAfter) : m_silenceAfter;
}

void Simulator::take(const Frame &frame)
{
    tellSkipped();
    tell(m_now, Traffic::Received, frame.wire);
    if (Station *addressed = station(frame.destination))
        send(addressed->handle(frame, m_plan));
    else if (m_plan.isPermanent(FaultKind::Echo)) // an adapter hears itself, whoever it speaks to
        m_outbox.post(frame.wire, m_now, Time::zero());
}

// A late reply leaves the line free until it begins: what the master sends meanwhile is answered at once.
void Simulator::send(const Reply &reply)
{
    m_outbox.post(reply.echo, m_now, Time::zero());
    const Time start = m_lineFree + m_turnaround;
    m_outbox.post(reply.bytes, start + reply.late, m_byteTime);
    if (!reply.bytes.empty() && reply.late == Time::zero())
        m_lineFree = start + m_byteTime * static_cast<Time::rep>(reply.bytes.size());
}

void Simulator::storeLiveValues()
{
    for (auto &station : m_stations)
        station.second.storeLiveValues(m_now, m_start);
}

Bytes Simulator::takeDue()
{
    return m_outbox.take(m_now, [this](Time time, const Bytes &bytes) { tell(time, Traffic::Sent, bytes); });
}

void Simulator::tellSkipped()
{
    const Bytes skipped = m_reader.takeSkipped();
    if (!skipped.empty())
        tell(m_now, Traffic::Skipped, skipped);
}

void Simulator::tell(Time time, Traffic traffic, const Bytes &bytes) const
{
    if (m_listener)
        m_listener(time, traffic, bytes);
}

} // namespace sim
