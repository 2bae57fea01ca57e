// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The values of items drawn by lot, read together by the driver from a simulated controller with any memory:
// they are those of items that are read one by one, and those that lie in the memory. And the values of one
// item, written as a user types them.

#include "lots.h"
#include "planned_items.h"
#include "simulator_port.h"

#include "fake_sleep.h"
#include "host/driver/write_plan.h"
#include "host/items/value.h"
#include "host/items/value_parser.h"
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
    void whatIsWrittenIsReadAndNoOtherByteChanges();
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

// How many bytes of all byte areas are not the same.
int differences(const sim::Memory &one, const sim::Memory &other)
{
    int count = 0;
    for (const auto &[code, bytes] : one.byteAreas)
        for (size_t i = 0; i < bytes.size(); ++i)
            count += bytes[i] != other.bytes(code)[i] ? 1 : 0;
    return count;
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

    void write(const Item &item, const QByteArray &data)
    {
        SimulatorPort port(usual);
        for (const WriteRequest &request : planWrite(item, data))
            if (!driver.write(&port, request.command, request.data))
                RC_FAIL(request.command.address.toStdString() + ": " + driver.getLastError().toStdString());
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

// Whether the driver writes items of this kind at all.
bool isWritable(const Item &item)
{
    const bool isStatus = item.address.isObject() && item.type == ValueType::Bool;
    return !isStatus && item.address.prefix != "AIW" && item.address.kind != AddressKind::HighSpeedCounter;
}

// Bytes that hold values of the item's type.
QByteArray drawnData(const Item &item)
{
    Random random(*rc::gen::arbitrary<quint32>());
    QByteArray data;
    for (int i = 0; i < item.size(); ++i)
        data += char(item.type == ValueType::Bool  ? random.below(2)
                     : item.type == ValueType::Bcd ? random.below(10) * 16 + random.below(10)
                                                   : random.below(0x100));
    if (item.type == ValueType::String)
        data[0] = char(random.below(item.count + 1));
    return data;
}

// The values as a user types them.
QString textOf(const Item &item, const QByteArray &data)
{
    QStringList texts;
    for (const Value &value : decodeValues(item, data))
        texts << valueText(value);
    return texts.join(',');
}

} // namespace

void TestPlannedValues::whatIsWrittenIsReadAndNoOtherByteChanges()
{
    QVERIFY(rc::check("text, bytes, controller, bytes, text", [] {
        Item item = lots::plannedItems(1).front();
        item.station.reset();
        RC_PRE(isWritable(item));
        const QByteArray data = drawnData(item);
        const QString text = textOf(item, data);
        RC_PRE(!text.contains("nan") || isText(item.type)); // of many kinds of nan one is written
        RC_LOG(lots::textOf({item}).toStdString() + '=' + text.toStdString());

        const QByteArray encoded = encodeValues(item, text);
        RC_ASSERT(encoded.toHex() == data.left(encoded.size()).toHex());
        Item written = item;
        written.count = item.countOf(int(encoded.size()));
        RC_ASSERT(textOf(written, encoded) == text);

        Controllers controllers;
        const sim::Memory before = controllers.usual.memory();
        const QByteArray replaced = inMemory(before, item).left(encoded.size());
        const QByteArray wanted = inMemory(before, item).replace(0, encoded.size(), encoded);
        controllers.write(written, encoded);
        RC_ASSERT(inMemory(controllers.usual.memory(), item).toHex() == wanted.toHex());
        std::vector<QByteArray> places = emptyPlaces({item});
        for (const PlannedRequest &request : planRead(item).requests)
            assemble(request, controllers.read(request), {item}, places);
        RC_ASSERT(valueBytes(item, places.front()).toHex() == wanted.toHex());
        controllers.write(written, replaced);
        RC_ASSERT(differences(before, controllers.usual.memory()) == 0);
    }));
}

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
