// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Whatever comes over the line, the station stays whole: it sends nothing but good frames, and answers a
// good request as always.

#include "conversation.h"
#include "seed.h"

#include "simulator/trace/trace.h"
#include "test_class.h"

#include <QtTest>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

using namespace std::chrono_literals;

namespace {

constexpr int kRounds = 20000;

const QString kReadMB0 = "68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                         "04 01 12 0a 10 02 00 01 00 00 83 00 00 00 67 16";

// Frames that the mutations start from: reads, writes of every kind, several items, a poll.
std::vector<sim::Bytes> goodFrames()
{
    std::vector<sim::Bytes> frames = {frameBytes(kPoll)};
    for (const char *pdu : {
             "320100000001000e0000 0401 120a1002000400018400 0320",
             "320100000001000e0000 0401 120a101f000200001f00 0025",
             "320100000001001a0000 0402 120a10200001000020000000 120a101e000300001e000005",
             "320100000001000e0006 0501 120a1004000100018400 0320 00040010abcd",
             "320100000001000e0009 0501 120a101f000100001f00 0025 00040028000000012c",
             "320100000001001a000b0502 120a10010001000082000007 120a10010001000082000008 "
             "0003000101000003000101",
         })
        frames.push_back(sim::sd2(2, 0, 0x6C, frameBytes(pdu)));
    return frames;
}

class Fuzzer
{
public:
    explicit Fuzzer(unsigned seed) : random(seed), good(goodFrames()) {}

    sim::Bytes next()
    {
        switch (below(3)) {
        case 0:
            return noise(below(300));
        case 1:
            return damaged(anyGoodFrame());
        default:
            return reframed(anyGoodFrame());
        }
    }

private:
    size_t below(size_t bound) { return random() % bound; }
    const sim::Bytes &anyGoodFrame() { return good[below(good.size())]; }

    // Rich in the bytes that mean something to the framing.
    uint8_t anyByte()
    {
        static const sim::Bytes special = {0x10, 0x16, 0x68, 0x02, 0x00, 0x03, 0x5C, 0x6C, 0xE5, 0xFF};
        return below(2) == 0 ? special[below(special.size())] : uint8_t(below(256));
    }

    sim::Bytes noise(size_t size)
    {
        sim::Bytes bytes(size);
        for (uint8_t &byte : bytes)
            byte = anyByte();
        return bytes;
    }

    sim::Bytes damaged(sim::Bytes frame)
    {
        for (size_t count = 1 + below(3); count > 0; --count)
            frame[below(frame.size())] = anyByte();
        frame.resize(frame.size() - below(2));
        return frame;
    }

    // Damage in the PDU only, under a correct check sum, so that it reaches the upper layers.
    sim::Bytes reframed(const sim::Bytes &frame)
    {
        sim::Bytes pdu = frame.size() < 9 ? noise(below(sim::kMaxPduSize + 1))
                                          : sim::Bytes(frame.begin() + 7, frame.end() - 2);
        for (size_t count = below(4); count > 0 && !pdu.empty(); --count)
            pdu[below(pdu.size())] = anyByte();
        return sim::sd2(2, 0, 0x6C, pdu);
    }

    std::mt19937 random;
    std::vector<sim::Bytes> good;
};

// Acknowledgements and frames from 2, and nothing else.
bool consistsOfGoodFrames(const sim::Bytes &sent)
{
    sim::FrameReader reader;
    for (const uint8_t byte : sent) {
        reader.push(byte);
        while (const std::optional<sim::Frame> frame = reader.next()) {
            if (frame->source != 2)
                return false;
        }
    }
    reader.abandon();
    const sim::Bytes rest = reader.takeSkipped();
    return rest == sim::Bytes(rest.size(), sim::kShortAcknowledgement);
}

bool areasKeepTheirSizes(const sim::Memory &memory)
{
    const sim::Memory fresh;
    for (const auto &area : fresh.byteAreas) {
        if (memory.bytes(area.first).size() != area.second.size())
            return false;
    }
    return memory.byteAreas.size() == fresh.byteAreas.size();
}

} // namespace

class TestSimulatorFuzz : public QObject
{
    Q_OBJECT

private slots:
    void startingFramesAreGood();
    void stationSurvivesAnyBytes();
    void everyFaultSurvivesAnyBytes();
};

void TestSimulatorFuzz::startingFramesAreGood()
{
    for (const sim::Bytes &frame : goodFrames()) {
        sim::Station station(2);
        QCOMPARE(hex(station.receive(frame)), plain("e5"));
        const QString answer = say(station, kPoll);
        QVERIFY2(answer == "e5" || answer.mid(14).startsWith("3203"), qPrintable(answer));
    }
}

void TestSimulatorFuzz::stationSurvivesAnyBytes()
{
    Fuzzer fuzzer(chooseSeed());
    sim::Simulator line;
    sim::Station &station = line.addStation(2);
    const sim::Bytes poll = frameBytes(kPoll);
    size_t told = 0;
    line.setListener([&told](sim::Time, sim::Traffic traffic, const sim::Bytes &bytes) {
        told += sim::traceLine(traffic, bytes).size();
    });
    for (int round = 0; round < kRounds; ++round) {
        const sim::Bytes heard = fuzzer.next();
        sim::Bytes sent = line.feed(heard);
        sim::append(sent, line.feed(poll));
        QVERIFY2(consistsOfGoodFrames(sent), qPrintable(hex(heard) + " gave " + hex(sent)));
    }
    QVERIFY(told > 0);
    QVERIFY(areasKeepTheirSizes(station.memory()));

    line.advance(1s);
    station.memory() = sim::Memory();
    QCOMPARE(say(line, kReadMB0), plain("e5"));
    QCOMPARE(say(line, kPoll),
             plain("68 16 16 68 00 02 08 32 03 00 00 00 01 00 02 00 05 00 00 04 01 ff 04 00 08 00 57 16"));
}

// All faults at once, every one of them now and then, and pieces of time between the bytes.
void TestSimulatorFuzz::everyFaultSurvivesAnyBytes()
{
    const unsigned seed = chooseSeed();
    Fuzzer fuzzer(seed);
    sim::Simulator line;
    line.addStation(2);
    line.addStation(3);
    line.setSeed(seed);
    line.setPace(187500);
    for (const sim::FaultName &name : sim::faultNames())
        line.addFault(sim::parseFault(std::string(name.name) + "%20"));
    size_t heard = 0;
    for (int round = 0; round < kRounds / 4; ++round) {
        heard += line.feed(fuzzer.next()).size() + line.advance(5ms).size();
        heard += line.feed(frameBytes(kPoll)).size() + line.advance(20ms).size();
    }
    QVERIFY(heard > 1000);
    line.advance(1h);
    QVERIFY(!line.nextDue());
    QVERIFY(areasKeepTheirSizes(line.station(2)->memory()));
}

TEST_CLASS(TestSimulatorFuzz)
#include "test_fuzz.moc"
