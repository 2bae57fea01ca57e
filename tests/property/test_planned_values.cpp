// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The values of items drawn by lot, read together by the driver from a simulated controller with any memory:
// they are those of items that are read one by one, and those that lie in the memory.

#include "lots.h"
#include "planned_items.h"
#include "simulator_port.h"

#include "fake_sleep.h"
#include "log_capture.h"
#include "random.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"
#include "test_class.h"

#include <QtTest>

#include <map>
#include <string>
#include <vector>

using namespace host;

class TestPlannedValues : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { lots::useSeedOfRun(); }
    void init() { FakeSleep::reset(); }
    void valuesThatComeTogetherAreThoseThatComeAlone();
    void partsThatAreReadAloneBringTheSame();
};

namespace {

const std::map<QString, int> kAreaCodes = {{"I", sim::kAreaI},    {"Q", sim::kAreaQ},   {"V", sim::kAreaV},
                                           {"M", sim::kAreaM},    {"SM", sim::kAreaSM}, {"S", sim::kAreaS},
                                           {"AIW", sim::kAreaAI}, {"AQW", sim::kAreaAQ}};

sim::Memory drawnMemory()
{
    Random random(*rc::gen::arbitrary<quint32>());
    sim::Memory memory;
    for (auto &[code, bytes] : memory.byteAreas)
        for (uint8_t &byte : bytes)
            byte = uint8_t(random.below(0x100));
    for (auto &timer : memory.timers)
        timer = {uint16_t(random.below(0x10000)), 0, random.oneIn(2)};
    for (auto &counter : memory.counters)
        counter = {uint16_t(random.below(0x10000)), 0, random.oneIn(2)};
    for (uint32_t &counter : memory.highSpeedCounters)
        counter = uint32_t(random.below(0x10000)) << 16 | uint32_t(random.below(0x10000));
    return memory;
}

QByteArray bigEndian(uint32_t number, int width)
{
    QByteArray bytes;
    for (int i = width; i-- > 0;)
        bytes += char(number >> (8 * i));
    return bytes;
}

template <typename Objects> QByteArray objectsOf(const Objects &objects, const Item &item)
{
    QByteArray all;
    for (int i = item.address.number; i < item.address.number + item.count; ++i) {
        const sim::TimerOrCounter &object = objects[size_t(i)];
        all += item.type == ValueType::Bool ? QByteArray(1, char(object.status)) : bigEndian(object.value, 2);
    }
    return all;
}

QByteArray fastCountersOf(const sim::Memory &memory, const Item &item)
{
    QByteArray all;
    for (int i = item.address.number; i < item.address.number + item.count; ++i)
        all += bigEndian(memory.highSpeedCounters[size_t(i)], 4);
    return all;
}

QByteArray bitsOf(const sim::Bytes &memory, const Item &item)
{
    QByteArray bits;
    for (int i = 0; i < item.count; ++i) {
        const int bit = item.address.bit + i;
        bits += char(memory[size_t(item.address.number + bit / 8)] >> (bit % 8) & 1);
    }
    return bits;
}

// The item's bytes as the memory says, most significant byte first.
QByteArray inMemory(const sim::Memory &memory, const Item &item)
{
    const AddressKind kind = item.address.kind;
    if (kind == AddressKind::Timer)
        return objectsOf(memory.timers, item);
    if (kind == AddressKind::Counter)
        return objectsOf(memory.counters, item);
    if (kind == AddressKind::HighSpeedCounter)
        return fastCountersOf(memory, item);
    QString letters = item.address.prefix;
    if (kind == AddressKind::Memory)
        letters.chop(1);
    const sim::Bytes &bytes = memory.bytes(uint8_t(kAreaCodes.at(letters)));
    if (kind == AddressKind::Bit)
        return bitsOf(bytes, item);
    return QByteArray(reinterpret_cast<const char *>(bytes.data()) + item.address.number, item.size());
}

// Two controllers, each with a memory of its own: the items' one and the usual one.
struct Controllers
{
    const sim::Memory &memoryOf(const Item &item) const
    {
        return item.station ? other.memory() : usual.memory();
    }

    // The places that a request brings.
    QByteArray read(const PlannedRequest &request)
    {
        SimulatorPort port(request.pool.station ? other : usual);
        const QByteArray data = driver.read(&port, request.command);
        if (driver.hasError())
            RC_FAIL(request.command.address.toStdString() + ": " + driver.getLastError().toStdString());
        return placeBytes(request, data);
    }

    LogCapture log;
    sim::Station usual{SimulatorPort::kStation, drawnMemory()};
    sim::Station other{SimulatorPort::kStation, drawnMemory()};
    DriverS7_200_PPI driver;
};

// Puts the bytes of a request where they belong in its items.
void assemble(const PlannedRequest &request, const QByteArray &bytes, const std::vector<Item> &items,
              std::vector<QByteArray> &places)
{
    for (const PlanPart &part : request.parts) {
        const Item &item = items[size_t(part.item)];
        const int size = placeSize(item);
        const int from = (item.address.number + part.first - request.first) * size;
        places[size_t(part.item)].replace(part.first * size, part.count * size,
                                          bytes.mid(from, part.count * size));
    }
}

std::vector<QByteArray> emptyPlaces(const std::vector<Item> &items)
{
    std::vector<QByteArray> places;
    for (const Item &item : items)
        places.emplace_back(placeCount(item) * placeSize(item), '\0');
    return places;
}

std::vector<QByteArray> valuesOf(const std::vector<Item> &items, const std::vector<QByteArray> &places)
{
    std::vector<QByteArray> values;
    for (size_t i = 0; i < items.size(); ++i)
        values.push_back(valueBytes(items[i], places[i]));
    return values;
}

std::string hexOf(const std::vector<QByteArray> &values)
{
    std::string text;
    for (const QByteArray &value : values)
        text += value.toHex().toStdString() + ' ';
    return text;
}

} // namespace

void TestPlannedValues::valuesThatComeTogetherAreThoseThatComeAlone()
{
    QVERIFY(rc::check("merged, unmerged and in memory", [] {
        const std::vector<Item> items = lots::plannedItems(12);
        RC_LOG(lots::textOf(items).toStdString());
        const RequestCost cost = lots::line().cost;
        const int block = lots::planLimits().blockSize;
        const PlanHints hints = lots::planHints(items);
        Controllers controllers;
        std::vector<QByteArray> wanted;
        for (const Item &item : items)
            wanted.push_back(inMemory(controllers.memoryOf(item), item));
        for (const bool merges : {true, false}) {
            std::vector<QByteArray> places = emptyPlaces(items);
            for (const PlannedRequest &request : planReads(items, cost, {merges, block}, hints).requests)
                assemble(request, controllers.read(request), items, places);
            RC_ASSERT(hexOf(valuesOf(items, places)) == hexOf(wanted));
        }
    }));
}

void TestPlannedValues::partsThatAreReadAloneBringTheSame()
{
    QVERIFY(rc::check("a request that is taken apart brings what it would have brought", [] {
        const std::vector<Item> items = lots::plannedItems(12);
        RC_LOG(lots::textOf(items).toStdString());
        Controllers controllers;
        std::vector<QByteArray> wanted;
        for (const Item &item : items)
            wanted.push_back(inMemory(controllers.memoryOf(item), item));
        std::vector<QByteArray> places = emptyPlaces(items);
        for (const PlannedRequest &request :
             planReads(items, lots::line().cost, lots::planLimits()).requests) {
            for (const PlanPart &part : request.parts) {
                const PlannedRequest alone = requestForPart(items, request, part);
                assemble(alone, controllers.read(alone), items, places);
            }
        }
        RC_ASSERT(hexOf(valuesOf(items, places)) == hexOf(wanted));
    }));
}

TEST_CLASS(TestPlannedValues)
#include "test_planned_values.moc"
