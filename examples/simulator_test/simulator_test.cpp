// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The example of docs/simulator.md, which shows this file from the first include on.

#include "simulator/simulator.h"

#include <chrono>
#include <iostream>
#include <utility>

using namespace std::chrono_literals;

// What a driver under test gets in place of its serial port.
class SimulatedPort
{
public:
    explicit SimulatedPort(sim::Simulator &simulator) : line(simulator) {}

    void write(const sim::Bytes &bytes) { sim::append(arrived, line.feed(bytes)); }

    // What is there when the time is up.
    sim::Bytes read(sim::Time timeOut)
    {
        sim::append(arrived, line.advance(timeOut));
        return std::exchange(arrived, {});
    }

private:
    sim::Simulator &line;
    sim::Bytes arrived;
};

int main()
{
    sim::Simulator line;
    sim::Station &station = line.addStation(2);
    station.memory().bytes(sim::kAreaV)[100] = 0x2A;
    line.addFault(sim::parseFault("late=300@2")); // the second request's answer

    // Here your driver would send, receive, and find a byte of 2A in the first answer.
    SimulatedPort port(line);
    const sim::Bytes readVB100 = {0x68, 0x1B, 0x1B, 0x68, 0x02, 0x00, 0x6C, 0x32, 0x01, 0x00, 0x00,
                                  0x00, 0x01, 0x00, 0x0E, 0x00, 0x00, 0x04, 0x01, 0x12, 0x0A, 0x10,
                                  0x02, 0x00, 0x01, 0x00, 0x01, 0x84, 0x00, 0x03, 0x20, 0x8C, 0x16};
    const sim::Bytes poll = {0x10, 0x02, 0x00, 0x5C, 0x5E, 0x16};
    port.write(readVB100);
    const bool acknowledged = port.read(50ms) == sim::Bytes{0xE5};
    port.write(poll);
    const sim::Bytes answer = port.read(50ms);
    const bool answered = answer.size() == 28 && answer[25] == 0x2A;

    port.write(readVB100);
    port.read(50ms);
    port.write(poll);
    const bool late = port.read(299ms).empty() && port.read(1ms) == answer;

    std::cout << (acknowledged && answered && late ? "passed" : "failed") << std::endl;
    return acknowledged && answered && late ? 0 : 1;
}
