// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Faults and live values as the simulator's command line takes them, and a conversation under them: whatever
// goes wrong on purpose, the line comes to rest and the controller stays whole.
//
//    input := fault NL fault NL live value      any number of any of them

#include "fuzzing.h"

#include "simulator/simulator.h"

#include <QList>

#include <chrono>
#include <stdexcept>

using fuzz::require;

namespace {

using namespace std::chrono_literals;

const sim::Bytes kReadT37 = sim::sd2(
    2, 0, 0x6c, {0x32, 1, 0, 0, 0, 1, 0, 14, 0, 0, 4, 1, 0x12, 10, 16, 0x1f, 0, 1, 0, 0, 0x1f, 0, 0, 37});
const sim::Bytes kWriteVB0 = sim::sd2(2, 0, 0x6c, {0x32, 1, 0, 0, 0, 2,    0, 14, 0, 5, 5, 1, 0x12, 10,  16,
                                                   2,    0, 1, 0, 1, 0x84, 0, 0,  0, 0, 4, 0, 8,    0x55});
const sim::Bytes kPoll = {0x10, 0x02, 0x00, 0x5c, 0x5e, 0x16};

const sim::Bytes kForeignPoll = {0x10, 0x09, 0x00, 0x5c, 0x65, 0x16};

template <typename Take> void takeOrRefuse(const Take &take)
{
    try {
        take();
    } catch (const std::invalid_argument &refusal) {
        require(*refusal.what() != '\0', "a refusal says why");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    sim::Simulator simulator;
    sim::Station &station = simulator.addStation(2);
    int lines = 0;
    for (const QByteArray &text : fuzz::arrayOf(data, size).split('\n')) {
        if (++lines > 20)
            return -1; // would only take time
        takeOrRefuse([&] {
            const sim::Fault fault = sim::parseFault(text.toStdString());
            require(fault.percent > 0 && fault.percent <= 100 &&
                        (fault.percent == 100 || sim::isRandom(fault)),
                    "a share is up to 100 percent, and less of it is chance");
            simulator.addFault(fault);
        });
        takeOrRefuse([&] {
            for (const sim::LiveValue &value : sim::parseLiveValues(text.toStdString()))
                station.addLiveValue(value);
        });
    }
    simulator.setPace(9600);
    simulator.setTurnaround(2ms);
    for (int round = 0; round < 4; ++round) {
        for (const sim::Bytes &frame : {kReadT37, kPoll, kWriteVB0, kPoll, kPoll}) {
            simulator.feed(frame);
            simulator.advance(round == 3 ? 100ms : 10s);
        }
    }
    simulator.feed(kForeignPoll);
    simulator.advance(100h);
    require(!simulator.nextDue(), "the line comes to rest");
    const sim::Memory fresh;
    for (const auto &[code, bytes] : fresh.byteAreas)
        require(station.memory().bytes(code).size() == bytes.size(), "an area keeps its size");
    return 0;
}
