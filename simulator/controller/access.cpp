// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/controller/access.h"

#include "simulator/controller/areas.h"
#include "simulator/protocol/bytes.h"
#include "simulator/protocol/cursor.h"
#include "simulator/protocol/layer2.h"

#include <algorithm>
#include <cstddef>

namespace sim {

namespace {

constexpr uint8_t kTimerStatus = 0x02;   // bit 1 of a timer record's status byte
constexpr uint8_t kCounterStatus = 0x10; // bit 4 of a counter record's status byte

// How many bytes one element takes as data; 0 for an unknown kind.
size_t elementSize(uint8_t transport)
{
    switch (transport) {
    case kTransportBit:
    case kTransportByte:
        return 1;
    case kTransportWord:
        return 2;
    case kTransportDWord:
        return 4;
    case kTransportCounter: // status, value(2)
        return 3;
    case kTransportTimer:            // status, value(4)
    case kTransportHighSpeedCounter: // 00, value(4)
        return 5;
    default:
        return 0;
    }
}

bool hasElements(AreaKind kind, uint8_t transport)
{
    switch (kind) {
    case AreaKind::PlainBytes:
        return transport == kTransportBit || transport == kTransportByte || transport == kTransportWord ||
               transport == kTransportDWord;
    case AreaKind::AnalogWords:
        return transport == kTransportWord;
    case AreaKind::Timers:
        return transport == kTransportTimer;
    case AreaKind::Counters:
        return transport == kTransportCounter;
    case AreaKind::HighSpeedCounters:
        return transport == kTransportHighSpeedCounter;
    }
    return false;
}

// The kind of data in which the item is read.
uint8_t dataTransport(const Item &item, const Area &area)
{
    if (area.holdsObjects())
        return kDataRecords;
    return item.transport == kTransportBit ? kDataBit : kDataBytes;
}

size_t dataSize(const Item &item)
{
    return item.count * elementSize(item.transport);
}

// The item's length field, which counts bits or bytes as the kind of data wants it.
uint16_t dataLength(const Item &item, uint8_t transport)
{
    if (transport == kDataBit)
        return item.count;
    return static_cast<uint16_t>(transport == kDataBytes ? dataSize(item) * 8 : dataSize(item));
}

// Areas of bytes are addressed in bits, the others by the number of an object.
uint8_t checkPlace(const Item &item, const Area &area)
{
    if (area.holdsObjects())
        return size_t(item.address) + item.count <= area.size ? kSuccess : kInvalidAddress;
    const uint32_t byte = item.address / 8;
    const bool wholeByte = item.transport == kTransportBit || item.address % 8 == 0;
    const bool wholeWord = area.kind != AreaKind::AnalogWords || byte % 2 == 0;
    const bool inside = byte + dataSize(item) <= area.size;
    return wholeByte && wholeWord && inside ? kSuccess : kInvalidAddress;
}

// Returns the code that refuses the item, or success. The area is that of the item, null when there is none;
// room is the most data that fits. Where several things are wrong, the first check decides.
uint8_t checkItem(const Item &item, const Area *area, size_t room, bool writing)
{
    if (!area || item.db != area->db)
        return kNoSuchObjectOrLength;
    if (writing && !area->writable)
        return kIllegalAccess;
    if (!hasElements(area->kind, item.transport))
        return kUnsupportedType;
    if (item.count == 0 || dataSize(item) > room || (item.transport == kTransportBit && item.count != 1))
        return kNoSuchObjectOrLength;
    return checkPlace(item, *area);
}

void appendRecord(Bytes &records, const TimerOrCounter &object, AreaKind kind)
{
    if (kind == AreaKind::Timers) {
        records.push_back(object.status ? kTimerStatus : 0);
        append32(records, object.value);
    } else {
        records.push_back(object.status ? kCounterStatus : 0);
        append16(records, object.value);
    }
}

void appendObject(Bytes &records, const Memory &memory, AreaKind kind, size_t number)
{
    if (kind == AreaKind::HighSpeedCounters) {
        records.push_back(0);
        append32(records, memory.highSpeedCounters[number]);
    } else {
        appendRecord(records, kind == AreaKind::Timers ? memory.timers[number] : memory.counters[number],
                     kind);
    }
}

Bytes readObjects(const Memory &memory, const Item &item, AreaKind kind)
{
    Bytes records;
    for (size_t i = 0; i < item.count; ++i)
        appendObject(records, memory, kind, item.address + i);
    return records;
}

Bytes readBytes(const Memory &memory, const Item &item)
{
    const Bytes &bytes = memory.bytes(item.area);
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(item.address / 8);
    if (item.transport == kTransportBit)
        return {static_cast<uint8_t>(*first >> item.address % 8 & 1)};
    return Bytes(first, first + static_cast<std::ptrdiff_t>(dataSize(item)));
}

ReadResult readItem(const Memory &memory, const Item &item, size_t room)
{
    ReadResult result;
    const Area *area = findArea(item.area);
    result.code = checkItem(item, area, room, false);
    if (result.code != kSuccess)
        return result;
    result.data.transport = dataTransport(item, *area);
    result.data.length = dataLength(item, result.data.transport);
    result.data.bytes =
        area->holdsObjects() ? readObjects(memory, item, area->kind) : readBytes(memory, item);
    return result;
}

void writeBytes(Memory &memory, const Item &item, const Bytes &data)
{
    const auto first = memory.bytes(item.area).begin() + static_cast<std::ptrdiff_t>(item.address / 8);
    if (item.transport != kTransportBit) {
        std::copy(data.begin(), data.end(), first);
        return;
    }
    const auto mask = static_cast<uint8_t>(1 << item.address % 8);
    *first = static_cast<uint8_t>(data[0] != 0 ? *first | mask : *first & ~mask);
}

// A written record has zeros where a record that is read has the status and, in timers, the value's upper
// half; its last two bytes are the value. Returns false, and writes nothing, when a record begins otherwise.
bool writeRecords(TimerOrCounter *first, const Item &item, const Bytes &data)
{
    const size_t padding = elementSize(item.transport) - 2;
    Cursor cursor(data);
    std::vector<uint16_t> values;
    while (cursor.left() > 0) {
        if (cursor.takeBytes(padding) != Bytes(padding))
            return false;
        values.push_back(cursor.take16());
    }
    for (const uint16_t value : values)
        (first++)->value = value;
    return true;
}

bool writeObjects(Memory &memory, const Item &item, AreaKind kind, const Bytes &data)
{
    TimerOrCounter *objects = kind == AreaKind::Timers ? memory.timers.data() : memory.counters.data();
    return writeRecords(objects + item.address, item, data);
}

} // namespace

std::vector<ReadResult> readItems(const Memory &memory, const std::vector<Item> &items)
{
    std::vector<ReadResult> results;
    size_t room =
        kMaxPduSize - readAnswerSize(items.size()); // even, and stays so: odd data takes a fill byte
    for (const Item &item : items) {
        results.push_back(readItem(memory, item, room));
        const size_t size = results.back().data.bytes.size();
        room -= size + size % 2;
    }
    return results;
}

uint8_t writeItem(Memory &memory, const Item &item, const Data &data)
{
    const Area *area = findArea(item.area);
    const uint8_t code = checkItem(item, area, kMaxPduSize, true);
    if (code != kSuccess)
        return code;
    // Timers and counters, too, come as plain bytes with their length in bits.
    const uint8_t transport = item.transport == kTransportBit ? kDataBit : kDataBytes;
    if (data.transport != transport)
        return kUnsupportedType;
    if (data.length != dataLength(item, transport))
        return kNoSuchObjectOrLength;
    if (area->holdsObjects())
        return writeObjects(memory, item, area->kind, data.bytes) ? kSuccess : kUnsupportedType;
    writeBytes(memory, item, data.bytes);
    return kSuccess;
}

} // namespace sim
