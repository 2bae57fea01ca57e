// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Whatever a user writes as a memory file, a fault or a live value is taken or refused in words.

#include "complaint.h"
#include "seed.h"

#include "simulator/controller/live_value.h"
#include "simulator/controller/memory.h"
#include "simulator/controller/memory_file_error.h"
#include "simulator/controller/memory_json.h"
#include "simulator/faults/fault.h"
#include "test_class.h"

#include <QString>
#include <QtTest>

#include <chrono>
#include <cstddef>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int kRounds = 5000;

const std::string kMemory = R"({
    "I": { "0": "01" }, "V": { "100": "11223344", "200": "00 ff Ab", "10239": "01" }, "AQ": { "6": "0809" },
    "T": { "37": { "value": 300, "status": true, "preset": 500 } },
    "C": { "5": { "value": 7 } }, "HC": { "0": 100000, "5": 4294967295 },
    "live": { "VW300": "ramp:0..1000/10s", "V310.0": "blink:1s", "VD4:f32": "sine:21.5+-2.5/60s" }
})";

// Changes a few places of a text: to other letters, to pieces of the text itself, or to nothing.
class Misspeller
{
public:
    explicit Misspeller(unsigned seed) : random(seed) {}

    std::string misspelt(std::string text)
    {
        for (size_t count = 1 + below(3); count > 0; --count) {
            const size_t place = below(text.size() + 1);
            const std::string piece =
                below(4) == 0 ? text.substr(below(text.size() + 1), below(40)) : letter();
            text.replace(place, below(3), below(5) == 0 ? "" : piece);
        }
        return text;
    }

private:
    size_t below(size_t bound) { return random() % bound; }

    std::string letter()
    {
        static const std::string common = "{}[]:,\"\\ 0123456789-+./eE@%=VWDBT\n\xC2\xB1";
        return std::string(1, below(4) == 0 ? char(below(256)) : common[below(common.size())]);
    }

    std::mt19937 random;
};

// Whether the text was taken.
template <typename Refusal, typename Read> bool isTaken(Read read)
{
    const QString complaint = complaintOf<Refusal>(read);
    if (complaint.isEmpty())
        qFatal("refused without a word");
    return complaint == "none";
}

} // namespace

class TestSimulatorTextFuzz : public QObject
{
    Q_OBJECT

private slots:
    void memoryThatIsTakenIsWrittenAndReadAgain();
    void faultsAreTakenOrRefused();
    void liveValuesAreTakenOrRefused();
    void hugeNamesAreRefused();
};

void TestSimulatorTextFuzz::memoryThatIsTakenIsWrittenAndReadAgain()
{
    Misspeller misspeller(chooseSeed());
    int taken = 0;
    for (int round = 0; round < kRounds; ++round) {
        const std::string text = misspeller.misspelt(kMemory);
        sim::StoredMemory stored;
        if (!isTaken<sim::MemoryFileError>([&] { stored = sim::parseMemory(text); }))
            continue;
        ++taken;
        const std::string written = sim::formatMemory(stored);
        QVERIFY2(sim::parseMemory(written).memory == stored.memory, text.c_str());
        QCOMPARE(sim::formatMemory(sim::parseMemory(written)), written);
    }
    QVERIFY2(taken > kRounds / 100 && taken < kRounds, qPrintable(QString::number(taken)));
}

void TestSimulatorTextFuzz::faultsAreTakenOrRefused()
{
    Misspeller misspeller(chooseSeed());
    int taken = 0;
    for (int round = 0; round < kRounds; ++round) {
        const std::string text = misspeller.misspelt(round % 2 == 0 ? "late=300@12" : "item-refused=0a%12.5");
        taken += isTaken<std::invalid_argument>([&] { sim::parseFault(text); }) ? 1 : 0;
    }
    QVERIFY2(taken > kRounds / 100 && taken < kRounds, qPrintable(QString::number(taken)));
}

// A value that is taken can be stored at any time.
void TestSimulatorTextFuzz::liveValuesAreTakenOrRefused()
{
    const std::vector<std::string> texts = {"VW100=ramp:0..1000/10s", "VD4:f32=sine:500+-400/30s",
                                            "C5=counter:1/s", "V10.3=blink:1s", "VD0=clock"};
    Misspeller misspeller(chooseSeed());
    sim::Memory memory;
    int taken = 0;
    for (int round = 0; round < kRounds; ++round) {
        const std::string text = misspeller.misspelt(texts[size_t(round) % texts.size()]);
        const bool good = isTaken<std::invalid_argument>([&] {
            for (const sim::LiveValue &value : sim::parseLiveValues(text))
                value.store(memory, std::chrono::hours(round * 100), std::chrono::hours(0));
        });
        taken += good ? 1 : 0;
    }
    QVERIFY2(taken > kRounds / 100 && taken < kRounds, qPrintable(QString::number(taken)));
}

void TestSimulatorTextFuzz::hugeNamesAreRefused()
{
    for (const char letter : {'V', '0', '.', ' '}) {
        const std::string huge(300000, letter);
        QVERIFY(!isTaken<std::invalid_argument>([&] { sim::LiveValue(huge, "clock"); }));
        QVERIFY(!isTaken<std::invalid_argument>([&] { sim::LiveValue("VD0", huge); }));
        QVERIFY(!isTaken<std::invalid_argument>([&] { sim::LiveValue("VD0", "ramp:" + huge); }));
        QVERIFY(!isTaken<std::invalid_argument>([&] { sim::parseFault(huge); }));
        QVERIFY(!isTaken<std::invalid_argument>([&] { sim::parseFault("late=" + huge); }));
    }
}

TEST_CLASS(TestSimulatorTextFuzz)
#include "test_text_fuzz.moc"
