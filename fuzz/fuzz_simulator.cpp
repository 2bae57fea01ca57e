// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The simulated controllers on a line that carries anything: what they send are whole frames and
// acknowledgements, their memory keeps its sizes, and afterwards a good request is answered as always.
//
//    input := pace(1) line      after each frame a poll follows by itself; an odd pace has bytes take their
//    time

#include "mending_mutator.h"

#include "simulator/simulator.h"
#include "simulator/trace/trace.h"

#include <chrono>

using fuzz::require;

namespace {

using namespace std::chrono_literals;

const sim::Bytes kReadMB0 = {0x68, 0x1b, 0x1b, 0x68, 0x02, 0x00, 0x6c, 0x32, 0x01, 0x00, 0x00,
                             0x00, 0x01, 0x00, 0x0e, 0x00, 0x00, 0x04, 0x01, 0x12, 0x0a, 0x10,
                             0x02, 0x00, 0x01, 0x00, 0x00, 0x83, 0x00, 0x00, 0x00, 0x67, 0x16};
const sim::Bytes kPoll = {0x10, 0x02, 0x00, 0x5c, 0x5e, 0x16};
const size_t kAnswerSize = 28; // head 4, DA SA FC 3, header 12, item 2 + 4 + 1, FCS and end 2

// Acknowledgements and frames of the two stations, and nothing else.
void checkSent(const sim::Bytes &sent)
{
    sim::FrameReader reader;
    for (const uint8_t byte : sent) {
        reader.push(byte);
        while (const std::optional<sim::Frame> frame = reader.next())
            require((frame->source == 2 || frame->source == 3) && !sim::isRequest(*frame),
                    "a controller answers");
    }
    reader.abandon();
    for (const uint8_t byte : reader.takeSkipped())
        require(byte == sim::kShortAcknowledgement, "what is no frame is an acknowledgement");
}

void checkMemory(const sim::Memory &memory)
{
    static const sim::Memory fresh;
    require(memory.byteAreas.size() == fresh.byteAreas.size(), "no area comes or goes");
    for (const auto &[code, bytes] : fresh.byteAreas)
        require(memory.bytes(code).size() == bytes.size(), "an area keeps its size");
}

// A station that hears the bytes alone, without a line.
void listenAlone(const uint8_t *data, size_t size)
{
    sim::Station station(2);
    checkSent(station.receive(data, size));
    checkMemory(station.memory());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    sim::Simulator simulator;
    simulator.addStation(2);
    simulator.addStation(3).addLiveValue(sim::LiveValue("VW100", "ramp:0..1000/1s"));
    simulator.setListener([](sim::Time, sim::Traffic traffic, const sim::Bytes &bytes) {
        require(!sim::traceLine(traffic, bytes).empty(), "traffic has words");
    });
    const bool isPaced = size > 0 && (data[0] & 1) != 0;
    simulator.setPace(isPaced ? 9600 : 0);
    sim::Bytes sent; // where bytes take their time, a frame goes out in pieces
    sim::FrameReader reader;
    for (size_t i = 1; i < size; ++i) {
        sim::append(sent, simulator.feed(data + i, 1));
        reader.push(data[i]);
        if (isPaced)
            sim::append(sent, simulator.advance(std::chrono::milliseconds(data[i])));
        if (reader.next())
            sim::append(sent, simulator.feed(kPoll));
    }
    sim::append(sent, simulator.advance(1h));
    checkSent(sent);
    require(!simulator.nextDue(), "the line comes to rest");
    checkMemory(simulator.station(2)->memory());
    simulator.setPace(0);
    require(simulator.feed(kReadMB0) == sim::Bytes{sim::kShortAcknowledgement} &&
                simulator.feed(kPoll).size() == kAnswerSize,
            "a good request is answered");
    listenAlone(data, size);
    return 0;
}
