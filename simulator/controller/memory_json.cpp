// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/controller/memory_json.h"

#include "simulator/controller/areas.h"
#include "simulator/controller/json_text.h"
#include "simulator/protocol/bytes.h"
#include "simulator/protocol/hex_text.h"
#include "simulator/text/number_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>

namespace sim {

namespace {

const char *const kLive = "live";

std::string quoted(const std::string &text)
{
    return '"' + text + '"';
}

std::string placeText(const Area &area, size_t number)
{
    return area.name + std::to_string(number);
}

std::string areaNames()
{
    std::string names;
    for (const Area &area : areas())
        names += std::string(area.name) + ' ';
    return names;
}

// Goes through the keys in the order of the text, so that it always knows the line of the last one.
class MemoryReader
{
public:
    explicit MemoryReader(const std::string &text) : source(parseJson(text)) {}

    StoredMemory read();

private:
    [[noreturn]] void fail(const std::string &where, const std::string &what) const;

    // Calls use(key, value) for every entry of an object.
    template <typename Use> void forEach(const Json &json, const std::string &where, Use use);

    void readPart(const std::string &name, const Json &json);
    const Area &areaNamed(const std::string &name) const;
    size_t numberIn(const Area &area, const std::string &key) const;

    void readBytes(const Area &area, const Json &json);
    Bytes bytesOf(const Json &json, const std::string &where) const;

    void readObjects(const Area &area, const Json &json);
    void readObject(const Area &area, size_t number, const Json &json);
    void readTimerOrCounter(TimerOrCounter &object, const std::string &where, const Json &json);
    template <typename Number> Number valueOf(const Json &json, const std::string &where) const;

    void readLiveValue(const std::string &place, const Json &json);

    const JsonText source;
    size_t keysRead = 0;
    StoredMemory stored;
};

StoredMemory MemoryReader::read()
{
    forEach(source.json, "the whole file",
            [this](const std::string &name, const Json &json) { readPart(name, json); });
    return std::move(stored);
}

void MemoryReader::fail(const std::string &where, const std::string &what) const
{
    const int line = keysRead == 0 ? 1 : source.keyLines[keysRead - 1];
    failAt("line " + std::to_string(line), where + ": " + what);
}

template <typename Use> void MemoryReader::forEach(const Json &json, const std::string &where, Use use)
{
    if (!json.is_object())
        fail(where, "must be an object in braces");
    for (const auto &[key, value] : json.items()) {
        ++keysRead;
        use(key, value);
    }
}

void MemoryReader::readPart(const std::string &name, const Json &json)
{
    if (name == kLive)
        return forEach(json, kLive, [this](const auto &place, const Json &it) { readLiveValue(place, it); });
    const Area &area = areaNamed(name);
    if (area.holdsObjects())
        readObjects(area, json);
    else
        readBytes(area, json);
}

const Area &MemoryReader::areaNamed(const std::string &name) const
{
    for (const Area &area : areas()) {
        if (name == area.name)
            return area;
    }
    fail(quoted(name), "is not a part of the memory; there are " + areaNames() + kLive);
}

// Reads the number of a byte or object, which must lie inside the area.
size_t MemoryReader::numberIn(const Area &area, const std::string &key) const
{
    const std::optional<size_t> number = parseNumber<size_t>(key);
    if (!number)
        fail(area.name, quoted(key) + " is not a number");
    if (*number >= area.size)
        fail(area.name, quoted(key) + " is too large, the last one is " + std::to_string(area.size - 1));
    return *number;
}

// Two texts may not give the same byte: which of them holds would depend on their order.
void MemoryReader::readBytes(const Area &area, const Json &json)
{
    Bytes &bytes = stored.memory.bytes(area.code);
    std::vector<bool> given(bytes.size());
    forEach(json, area.name, [&](const std::string &key, const Json &text) {
        const size_t first = numberIn(area, key);
        const std::string where = placeText(area, first);
        const Bytes run = bytesOf(text, where);
        if (run.size() > bytes.size() - first)
            fail(where, "goes on behind the area's last byte, " + placeText(area, bytes.size() - 1));
        for (size_t i = 0; i < run.size(); ++i) {
            if (given[first + i])
                fail(where, placeText(area, first + i) + " was given before");
            given[first + i] = true;
            bytes[first + i] = run[i];
        }
    });
}

Bytes MemoryReader::bytesOf(const Json &json, const std::string &where) const
{
    if (!json.is_string())
        fail(where, "must be a text of hexadecimal bytes");
    const auto text = json.get<std::string>();
    const std::optional<Bytes> bytes = parseHex(text);
    if (!bytes)
        fail(where, quoted(text) + " is not a text of hexadecimal bytes");
    return *bytes;
}

void MemoryReader::readObjects(const Area &area, const Json &json)
{
    std::set<size_t> given;
    forEach(json, area.name, [&](const std::string &key, const Json &object) {
        const size_t number = numberIn(area, key);
        if (!given.insert(number).second)
            fail(placeText(area, number), "was given before");
        readObject(area, number, object);
    });
}

void MemoryReader::readObject(const Area &area, size_t number, const Json &json)
{
    Memory &memory = stored.memory;
    const std::string where = placeText(area, number);
    if (area.kind == AreaKind::HighSpeedCounters)
        memory.highSpeedCounters[number] = valueOf<uint32_t>(json, where);
    else if (area.kind == AreaKind::Timers)
        readTimerOrCounter(memory.timers[number], where, json);
    else
        readTimerOrCounter(memory.counters[number], where, json);
}

void MemoryReader::readTimerOrCounter(TimerOrCounter &object, const std::string &where, const Json &json)
{
    forEach(json, where, [&](const std::string &key, const Json &value) {
        const std::string field = where + " " + key;
        if (key == "value")
            object.value = valueOf<uint16_t>(value, field);
        else if (key == "preset")
            object.preset = valueOf<uint16_t>(value, field);
        else if (key != "status")
            fail(where, quoted(key) + " is unknown; there are value, preset and status");
        else if (!value.is_boolean())
            fail(field, "must be true or false");
        else
            object.status = value.get<bool>();
    });
}

template <typename Number> Number MemoryReader::valueOf(const Json &json, const std::string &where) const
{
    const uint64_t largest = std::numeric_limits<Number>::max();
    if (!json.is_number_unsigned() || json.get<uint64_t>() > largest)
        fail(where, "must be a whole number from 0 to " + std::to_string(largest));
    return json.get<Number>();
}

void MemoryReader::readLiveValue(const std::string &place, const Json &json)
{
    if (!json.is_string())
        fail(kLive, place + " must be a text, as \"ramp:0..1000/10s\"");
    try {
        stored.live.emplace_back(place, json.get<std::string>());
    } catch (const std::invalid_argument &error) {
        fail(kLive, error.what());
    }
}

// Writes a text for every run of bytes that are not zero, so that the file stays short.
Json formatBytes(const Bytes &bytes)
{
    const auto isZero = [](uint8_t byte) { return byte == 0; };
    Json json = Json::object();
    auto run = std::find_if_not(bytes.begin(), bytes.end(), isZero);
    while (run != bytes.end()) {
        const auto end = std::find_if(run, bytes.end(), isZero);
        json[std::to_string(run - bytes.begin())] = hexText(Bytes(run, end), "");
        run = std::find_if_not(end, bytes.end(), isZero);
    }
    return json;
}

Json formatObject(const TimerOrCounter &object)
{
    Json json = Json::object();
    json["value"] = object.value;
    json["preset"] = object.preset;
    json["status"] = object.status;
    return json;
}

Json formatObject(uint32_t value)
{
    return value;
}

template <typename Objects> Json formatObjects(const Objects &objects)
{
    Json json = Json::object();
    for (size_t i = 0; i < objects.size(); ++i) {
        if (!(objects[i] == typename Objects::value_type{}))
            json[std::to_string(i)] = formatObject(objects[i]);
    }
    return json;
}

Json formatArea(const Memory &memory, const Area &area)
{
    switch (area.kind) {
    case AreaKind::Timers:
        return formatObjects(memory.timers);
    case AreaKind::Counters:
        return formatObjects(memory.counters);
    case AreaKind::HighSpeedCounters:
        return formatObjects(memory.highSpeedCounters);
    default:
        return formatBytes(memory.bytes(area.code));
    }
}

} // namespace

StoredMemory parseMemory(const std::string &text)
{
    return MemoryReader(text).read();
}

std::string formatMemory(const StoredMemory &stored)
{
    Json json = Json::object();
    for (const Area &area : areas()) {
        const Json content = formatArea(stored.memory, area);
        if (!content.empty())
            json[area.name] = content;
    }
    for (const LiveValue &value : stored.live)
        json[kLive][value.place()] = value.course();
    return json.dump(4) + '\n';
}

} // namespace sim
