// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/controller/place.h"

#include "simulator/protocol/bytes.h"

#include <cmath>
#include <cstddef>
#include <cstring>
#include <regex>
#include <stdexcept>

namespace sim {

namespace {

// In bits, of the current value of timers and counters, and of high-speed counters.
constexpr unsigned kObjectWidth = 16;
constexpr unsigned kHighSpeedCounterWidth = 32;

[[noreturn]] void refuse(const std::string &text, const std::string &why)
{
    throw std::invalid_argument('"' + text + "\" " + why);
}

unsigned widthOf(char letter)
{
    switch (letter) {
    case 'B':
        return 8;
    case 'W':
        return 16;
    case 'D':
        return 32;
    default:
        return 0;
    }
}

unsigned objectWidth(AreaKind kind)
{
    return kind == AreaKind::HighSpeedCounters ? kHighSpeedCounterWidth : kObjectWidth;
}

// The width in bits of what the letters mean in this area, with a bit number behind them or without: its name
// alone means a bit or an object's value, and one letter more a byte, word or double word. 0 when they do not
// mean this area.
unsigned widthIn(const Area &area, const std::string &letters, bool hasBit)
{
    const std::string name = area.name;
    if (letters == name && area.holdsObjects())
        return hasBit ? 0 : objectWidth(area.kind);
    if (letters == name && area.kind == AreaKind::PlainBytes)
        return hasBit ? 1 : 0;
    const bool oneLetterMore =
        letters.size() == name.size() + 1 && letters.compare(0, name.size(), name) == 0;
    return oneLetterMore && !hasBit && !area.holdsObjects() ? widthOf(letters.back()) : 0;
}

void findArea(const std::string &letters, bool hasBit, Place &place)
{
    for (const Area &area : areas()) {
        if (const unsigned width = widthIn(area, letters, hasBit)) {
            place.area = &area;
            place.width = width;
        }
    }
}

bool fitsArea(const Place &place)
{
    if (place.area->kind == AreaKind::AnalogWords && place.width != 16)
        return false;
    return !place.isFloat || (place.width == 32 && !place.area->holdsObjects());
}

void checkNumber(const Place &place, const std::string &text)
{
    const size_t size = place.area->holdsObjects() ? 1 : (place.width + 7) / 8;
    if (place.number + size > place.area->size)
        refuse(text, std::string("lies behind the last one of ") + place.area->name + ", " +
                         std::to_string(place.area->size - 1));
    if (place.area->kind == AreaKind::AnalogWords && place.number % 2 != 0)
        refuse(text, "does not begin at an even byte");
}

uint32_t rawBits(const Place &place, double number)
{
    if (!place.isFloat)
        return static_cast<uint32_t>(std::llround(number));
    const auto narrow = static_cast<float>(number);
    uint32_t bits = 0;
    static_assert(sizeof narrow == sizeof bits);
    std::memcpy(&bits, &narrow, sizeof bits);
    return bits;
}

void storeBytes(Bytes &bytes, const Place &place, uint32_t bits)
{
    uint8_t *byte = &bytes[place.number];
    if (place.width == 1) {
        const auto mask = static_cast<uint8_t>(1u << place.bit);
        *byte = static_cast<uint8_t>(bits & 1 ? *byte | mask : *byte & ~mask);
        return;
    }
    for (unsigned shift = place.width; shift > 0; shift -= 8)
        *byte++ = static_cast<uint8_t>(bits >> (shift - 8));
}

} // namespace

Place parsePlace(const std::string &text)
{
    static const std::regex pattern("([A-Z]{1,3})([0-9]{1,6})(?:\\.([0-7]))?(:f32)?");
    std::smatch parts;
    Place place;
    if (std::regex_match(text, parts, pattern)) {
        findArea(parts[1], parts[3].matched, place);
        place.number = static_cast<uint32_t>(std::stoul(parts[2]));
        place.bit = parts[3].matched ? static_cast<unsigned>(std::stoul(parts[3])) : 0;
        place.isFloat = parts[4].matched;
    }
    if (place.width == 0 || !fitsArea(place))
        refuse(text, "is no place in the memory; such are V10.3 VB10 VW10 VD10 VD10:f32 AIW0 T37 C5 HC0");
    checkNumber(place, text);
    return place;
}

bool holds(const Place &place, double number)
{
    const double values = std::ldexp(1.0, static_cast<int>(place.width));
    return place.isFloat || (number >= -values / 2 && number <= values - 1);
}

void storeNumber(Memory &memory, const Place &place, double number)
{
    const uint32_t bits = rawBits(place, number);
    switch (place.area->kind) {
    case AreaKind::Timers:
        memory.timers[place.number].value = static_cast<uint16_t>(bits);
        break;
    case AreaKind::Counters:
        memory.counters[place.number].value = static_cast<uint16_t>(bits);
        break;
    case AreaKind::HighSpeedCounters:
        memory.highSpeedCounters[place.number] = bits;
        break;
    default:
        storeBytes(memory.bytes(place.area->code), place, bits);
    }
}

} // namespace sim
