// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "planned_items.h"

#include <QStringList>

#include <rapidcheck.h>

#include <algorithm>
#include <string>

using namespace host;

namespace {

struct Kind
{
    const char *prefix;
    const char *type;   // with its colon
    int sizeOfAddress;  // bytes of one value there
    int numberOfPlaces; // that the simulated controller has; bytes, or objects
};

const Kind kKinds[] = {
    {"VB", ":u64", 8, 10240},    {"VW", ":i64", 8, 10240},
    {"VD", ":f64", 8, 10240},    {"VD", ":u32:swap", 4, 10240},
    {"VB", ":string", 1, 10240}, {"V", "", 0, 10240},
    {"VB", "", 1, 10240},        {"VB", ":u32", 4, 10240},
    {"VB", ":str", 1, 10240},    {"VW", "", 2, 10240},
    {"VW", ":u8", 1, 10240},     {"VW", ":u32", 4, 10240},
    {"VW", ":bcd", 2, 10240},    {"VD", "", 4, 10240},
    {"VD", ":u8", 1, 10240},     {"VD", ":u16", 2, 10240},
    {"VD", ":hex", 4, 10240},    {"M", "", 0, 32},
    {"MB", "", 1, 32},           {"MW", ":i16", 2, 32},
    {"MD", ":f32", 4, 32},       {"IB", ":hex", 1, 16},
    {"QW", "", 2, 16},           {"SMB", "", 1, 550},
    {"SMD", "", 4, 550},         {"SB", "", 1, 32},
    {"AIW", "", 2, 64},          {"AIW", ":u16", 2, 64},
    {"AQW", "", 2, 64},          {"T", "", 1, 256},
    {"T", ":bool", 1, 256},      {"C", ":i16", 1, 256},
    {"C", ":bool", 1, 256},      {"HC", "", 1, 6},
};

// V and the timers are where neighbours are common.
rc::Gen<Kind> kinds()
{
    const std::vector<Kind> all(std::begin(kKinds), std::end(kKinds));
    const std::vector<Kind> variables(all.begin(), all.begin() + 17);
    const std::vector<Kind> timers(all.begin() + 29, all.begin() + 32);
    return rc::gen::weightedOneOf<Kind>(
        {{5, rc::gen::elementOf(variables)}, {2, rc::gen::elementOf(timers)}, {2, rc::gen::elementOf(all)}});
}

// Few items are longer than a frame.
int drawnCount(int most)
{
    const int limit = *rc::gen::weightedElement<int>({{6, 3}, {3, 20}, {1, 130}});
    return *rc::gen::inRange(1, std::min(most, limit) + 1);
}

// Places from the first one on that numbers are drawn from: the smaller, the more neighbours.
int drawnWindow(int places)
{
    return std::min(places, *rc::gen::element(30, 120, 500, 2000));
}

QString bitItem(const Kind &kind, int window)
{
    const int number = *rc::gen::inRange(0, window);
    const int bit = *rc::gen::inRange(0, 8);
    const int count = drawnCount((kind.numberOfPlaces - number) * 8 - bit);
    return QString("%1%2.%3*%4").arg(kind.prefix).arg(number).arg(bit).arg(count);
}

QString drawnItem(const Kind &kind, int windowOfAll)
{
    const int window = std::min(kind.numberOfPlaces, windowOfAll);
    if (kind.sizeOfAddress == 0)
        return bitItem(kind, window);
    const QString prefix = kind.prefix;
    const int step = prefix.startsWith('A') ? 2 : 1;
    const int lengthByte = QString(kind.type) == ":string" ? 1 : 0;
    const int number = *rc::gen::inRange(0, (window - lengthByte - kind.sizeOfAddress) / step + 1) * step;
    const int count = drawnCount((kind.numberOfPlaces - number - lengthByte) / kind.sizeOfAddress);
    return QString("%1%2%3*%4").arg(prefix).arg(number).arg(kind.type).arg(count);
}

} // namespace

std::vector<Item> lots::plannedItems(int atMost)
{
    const int window = drawnWindow(2000);
    std::vector<Item> items;
    for (int left = *rc::gen::inRange(1, atMost + 1); left > 0; --left) {
        const QString text = drawnItem(*kinds(), window);
        const int station = *rc::gen::weightedElement<int>({{8, 0}, {1, 3}});
        items.push_back(parseItem(station == 0 ? text : text + "@3"));
    }
    return items;
}

QString lots::textOf(const std::vector<Item> &items)
{
    QStringList texts;
    for (const Item &item : items)
        texts << QString("%1:%2*%3").arg(item.place(), item.typeText()).arg(item.count);
    return texts.join(' ');
}

lots::Line lots::line()
{
    const int baud = *rc::gen::element(9600, 19200, 187500);
    const qint64 answerTime = *rc::gen::inRange<qint64>(0, 60'000'000);
    return {11'000'000'000 / baud, requestCost({baud, kEvenParity, 8, 1}, answerTime)};
}

PlanLimits lots::planLimits()
{
    PlanLimits limits;
    limits.blockSize = *rc::gen::weightedOneOf<int>({{3, rc::gen::just(222)}, {2, rc::gen::inRange(1, 223)}});
    limits.merges = *rc::gen::weightedElement<bool>({{5, true}, {1, false}});
    return limits;
}

PlanHints lots::planHints(const std::vector<Item> &items)
{
    PlanHints hints;
    const int count = *rc::gen::weightedElement<int>({{4, 0}, {2, 1}, {1, 3}});
    for (int i = 0; i < count; ++i) {
        const int index = *rc::gen::inRange(0, int(items.size()));
        const Item &item = items[size_t(index)];
        const PlanPool pool = planReads({item}, {1, 1}).requests.front().pool;
        const int begin = planned::spanOf(item).begin + *rc::gen::inRange(-3, 10);
        switch (*rc::gen::inRange(0, 3)) {
        case 0:
            hints.separateItems.insert(index);
            break;
        case 1:
            hints.closedPlaces[pool].emplace(begin, begin + *rc::gen::inRange(1, 20));
            break;
        default:
            hints.longestRequests[pool] = *rc::gen::inRange(1, 40);
        }
    }
    return hints;
}

planned::Span planned::spanOf(const Item &item)
{
    const int begin = item.address.number;
    if (item.address.kind == AddressKind::Bit)
        return {begin, begin + (item.address.bit + item.count - 1) / 8 + 1};
    const int lengthByte = item.type == ValueType::String ? 1 : 0;
    return {begin, begin + lengthByte + item.count * placesOfValue(item)};
}

int planned::placesOfValue(const Item &item)
{
    const bool isMemory =
        item.address.kind == AddressKind::Memory || item.address.kind == AddressKind::Analog;
    return isMemory ? item.valueSize() : 1;
}

int planned::charactersOfPlace(const Item &item)
{
    const bool isCounter = item.address.kind == AddressKind::Counter;
    return !item.address.isObject() ? 1 : isCounter ? 3 : 5;
}

int planned::bytesOfPlace(const Item &item)
{
    return item.address.isObject() ? item.valueSize() : 1;
}

int planned::mostPlaces(const Item &item, const PlanLimits &limits)
{
    const bool isCounter = item.address.kind == AddressKind::Counter;
    const int frame = !item.address.isObject() ? 222 : isCounter ? 74 : 44;
    return std::min(frame, std::max(1, limits.blockSize / bytesOfPlace(item)));
}

QString planned::poolOf(const Item &item)
{
    QString letters = item.address.prefix;
    if (item.address.kind == AddressKind::Memory)
        letters.chop(1);
    const bool isStatus = item.address.isObject() && item.type == ValueType::Bool;
    return QString("%1 %2 %3").arg(letters).arg(isStatus).arg(item.station.value_or(0));
}
