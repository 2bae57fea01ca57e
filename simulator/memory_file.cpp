// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/memory_file.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <set>
#include <sstream>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sim {

namespace {

using Json = nlohmann::ordered_json;

[[noreturn]] void fail(const std::string &where, const std::string &what)
{
    throw MemoryFileError(where + ": " + what);
}

[[noreturn]] void failWithErrno(const std::string &path, const std::string &what)
{
    fail(path, what + ": " + std::strerror(errno));
}

std::string quoted(const std::string &text)
{
    return '"' + text + '"';
}

std::string placeText(const Area &area, size_t number)
{
    return area.name + std::to_string(number);
}

const Json &expectObject(const Json &json, const std::string &where)
{
    if (!json.is_object())
        fail(where, "must be an object in braces");
    return json;
}

// A byte or object number inside the area.
size_t parseNumber(const std::string &key, const Area &area)
{
    size_t number = 0;
    const char *end = key.data() + key.size();
    const auto result = std::from_chars(key.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end)
        fail(area.name, quoted(key) + " is not a number");
    if (number >= area.size)
        fail(area.name, quoted(key) + " is too large, the last one is " + std::to_string(area.size - 1));
    return number;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

Bytes parseHex(const std::string &text, const std::string &where)
{
    Bytes bytes;
    for (size_t i = 0; i < text.size(); i += 2) {
        while (i < text.size() && text[i] == ' ')
            ++i;
        if (i == text.size())
            break;
        const int high = hexDigit(text[i]);
        const int low = i + 1 < text.size() ? hexDigit(text[i + 1]) : -1;
        if (high < 0 || low < 0)
            fail(where, quoted(text) + " is not a text of hexadecimal bytes");
        bytes.push_back(static_cast<uint8_t>(high * 16 + low));
    }
    return bytes;
}

void parseBytes(const Json &json, const Area &area, Bytes &bytes)
{
    std::vector<bool> given(bytes.size());
    for (const auto &[key, value] : json.items()) {
        const size_t first = parseNumber(key, area);
        const std::string where = placeText(area, first);
        if (!value.is_string())
            fail(where, "must be a text of hexadecimal bytes");
        const Bytes run = parseHex(value.get<std::string>(), where);
        if (run.size() > bytes.size() - first)
            fail(where, "goes on behind the area's last byte, " + placeText(area, bytes.size() - 1));
        for (size_t i = 0; i < run.size(); ++i) {
            if (given[first + i])
                fail(where, placeText(area, first + i) + " was given before");
            given[first + i] = true;
            bytes[first + i] = run[i];
        }
    }
}

template <typename Number> Number parseValue(const Json &json, const std::string &where)
{
    const uint64_t largest = std::numeric_limits<Number>::max();
    if (!json.is_number_unsigned() || json.get<uint64_t>() > largest)
        fail(where, "must be a whole number from 0 to " + std::to_string(largest));
    return json.get<Number>();
}

void parseField(TimerOrCounter &object, const std::string &key, const Json &value, const std::string &where)
{
    const std::string field = where + " " + key;
    if (key == "value")
        object.value = parseValue<uint16_t>(value, field);
    else if (key == "preset")
        object.preset = parseValue<uint16_t>(value, field);
    else if (key == "status" && value.is_boolean())
        object.status = value.get<bool>();
    else if (key == "status")
        fail(field, "must be true or false");
    else
        fail(where, quoted(key) + " is unknown; there are value, preset and status");
}

TimerOrCounter parseTimerOrCounter(const Json &json, const std::string &where)
{
    TimerOrCounter object;
    for (const auto &[key, value] : expectObject(json, where).items())
        parseField(object, key, value, where);
    return object;
}

template <typename Object, size_t Size, typename Parse>
void parseObjects(const Json &json, const Area &area, std::array<Object, Size> &objects, Parse parse)
{
    std::set<size_t> given;
    for (const auto &[key, value] : json.items()) {
        const size_t number = parseNumber(key, area);
        const std::string where = placeText(area, number);
        if (!given.insert(number).second)
            fail(where, "was given before");
        objects[number] = parse(value, where);
    }
}

void parseArea(const Json &json, const Area &area, Memory &memory)
{
    expectObject(json, area.name);
    if (area.kind == AreaKind::Timers)
        parseObjects(json, area, memory.timers, parseTimerOrCounter);
    else if (area.kind == AreaKind::Counters)
        parseObjects(json, area, memory.counters, parseTimerOrCounter);
    else if (area.kind == AreaKind::HighSpeedCounters)
        parseObjects(json, area, memory.highSpeedCounters, parseValue<uint32_t>);
    else
        parseBytes(json, area, memory.bytes(area.code));
}

const Area &areaNamed(const std::string &name)
{
    for (const Area &area : areas()) {
        if (name == area.name)
            return area;
    }
    std::string known;
    for (const Area &area : areas())
        known += std::string(" ") + area.name;
    fail(quoted(name), "is not a memory area; there are" + known);
}

// JSON itself lets a key come twice, and the library would silently keep one of the two.
Json parseWithoutTwins(const std::string &text)
{
    std::vector<std::set<std::string>> open;
    const auto watch = [&open](int, Json::parse_event_t event, Json &key) {
        if (event == Json::parse_event_t::object_start)
            open.emplace_back();
        else if (event == Json::parse_event_t::object_end)
            open.pop_back();
        else if (event == Json::parse_event_t::key && !open.back().insert(key.get<std::string>()).second)
            fail(quoted(key.get<std::string>()), "comes twice");
        return true;
    };
    try {
        return Json::parse(text, watch);
    } catch (const Json::exception &error) {
        fail("not JSON", error.what());
    }
}

std::string hexText(Bytes::const_iterator first, Bytes::const_iterator last)
{
    const char *digits = "0123456789abcdef";
    std::string text;
    for (; first != last; ++first) {
        text += digits[*first >> 4];
        text += digits[*first & 0xF];
    }
    return text;
}

Json formatBytes(const Bytes &bytes)
{
    const auto isZero = [](uint8_t byte) { return byte == 0; };
    Json json = Json::object();
    auto run = std::find_if_not(bytes.begin(), bytes.end(), isZero);
    while (run != bytes.end()) {
        const auto end = std::find_if(run, bytes.end(), isZero);
        json[std::to_string(run - bytes.begin())] = hexText(run, end);
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

bool writeAll(int file, const std::string &text)
{
    size_t written = 0;
    while (written < text.size()) {
        const ssize_t size = write(file, text.data() + written, text.size() - written);
        if (size < 0 && errno != EINTR)
            return false;
        written += size < 0 ? 0 : static_cast<size_t>(size);
    }
    return true;
}

// A new file beside path, on the same file system, with all of text on the disk. Returns its name.
std::string writeTemporary(const std::string &path, const std::string &text)
{
    std::string name = path + ".XXXXXX";
    const int file = mkstemp(name.data());
    if (file < 0)
        failWithErrno(path, "cannot create a file beside it");
    const bool good =
        writeAll(file, text) && fchmod(file, S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH) == 0 && fsync(file) == 0;
    const int reason = errno;
    close(file);
    if (!good) {
        unlink(name.c_str());
        errno = reason;
        failWithErrno(path, "cannot write");
    }
    return name;
}

} // namespace

Memory parseMemory(const std::string &text)
{
    const Json json = parseWithoutTwins(text);
    Memory memory;
    for (const auto &[name, content] : expectObject(json, "the whole file").items())
        parseArea(content, areaNamed(name), memory);
    return memory;
}

Memory loadMemory(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!file)
        failWithErrno(path, "cannot open");
    errno = 0; // an empty file fails to copy, too, but is no error of the system
    if (!(text << file.rdbuf()) && errno != 0)
        failWithErrno(path, "cannot read");
    try {
        return parseMemory(text.str());
    } catch (const MemoryFileError &error) {
        fail(path, error.what());
    }
}

std::string formatMemory(const Memory &memory)
{
    Json json = Json::object();
    for (const Area &area : areas()) {
        const Json content = formatArea(memory, area);
        if (!content.empty())
            json[area.name] = content;
    }
    return json.dump(4) + '\n';
}

void saveMemory(const Memory &memory, const std::string &path)
{
    const std::string temporary = writeTemporary(path, formatMemory(memory));
    if (std::rename(temporary.c_str(), path.c_str()) == 0)
        return;
    const int reason = errno;
    unlink(temporary.c_str());
    errno = reason;
    failWithErrno(path, "cannot replace");
}

} // namespace sim
