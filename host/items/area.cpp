// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/area.h"

namespace host {

namespace {

// The letters that stand behind those of an area of bits when whole bytes are meant.
struct Width
{
    char letter;
    int bytes;
};

constexpr Width kWidths[] = {{'B', 1}, {'W', 2}, {'D', 4}};

} // namespace

bool isObject(AddressKind kind)
{
    return kind == AddressKind::Timer || kind == AddressKind::Counter ||
           kind == AddressKind::HighSpeedCounter;
}

// The analogue areas hold words alone, which is why W belongs to their letters.
const QList<Area> &areas()
{
    static const QList<Area> table = {
        {"I", "inputs", AddressKind::Bit, 1},
        {"Q", "outputs", AddressKind::Bit, 1},
        {"V", "variable memory", AddressKind::Bit, 1},
        {"M", "bit memory", AddressKind::Bit, 1},
        {"SM", "special memory", AddressKind::Bit, 1},
        {"S", "sequence control relays", AddressKind::Bit, 1},
        {"AIW", "analogue inputs", AddressKind::Analog, 2},
        {"AQW", "analogue outputs", AddressKind::Analog, 2},
        {"T", "timers", AddressKind::Timer, 2},
        {"C", "counters", AddressKind::Counter, 2},
        {"HC", "high-speed counters", AddressKind::HighSpeedCounter, 4},
    };
    return table;
}

std::optional<AreaElement> elementNamed(const QString &letters)
{
    for (const Area &area : areas()) {
        if (letters == area.letters)
            return AreaElement{area, area.kind, area.elementWidth};
        for (const Width &width : kWidths)
            if (area.hasBits() && letters == area.letters + width.letter)
                return AreaElement{area, AddressKind::Memory, width.bytes};
    }
    return std::nullopt;
}

const Area &areaOf(const QString &letters)
{
    return elementNamed(letters)->area;
}

} // namespace host
