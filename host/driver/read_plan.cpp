// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/read_plan.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/items/memory_range.h"

#include <QString>

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <utility>

namespace host {

namespace {

// The driver pauses 12 ms before the request and before the poll; nanoseconds.
constexpr qint64 kDriverPauses = 24'000'000;

int bytesFor(int bits)
{
    return (bits + 7) / 8;
}

// The stretch of an item that is never taken apart: all of it, or one value of an item that no request
// carries.
struct Atom
{
    int begin; // place
    int end;   // behind the last
    int item;
    bool isRider = false; // it lies within the atom before it that is none, and comes with that one
};

// Atoms that can come together, and what holds for all of them.
struct Candidates
{
    std::vector<Atom> atoms;
    int longest = 0;           // places of one request
    int charactersOfPlace = 1; // on the line
};

// Atoms of items that are asked for alone have a key of their own.
struct Key
{
    PlanPool pool;
    int separateItem; // -1: they come with others

    bool operator<(const Key &other) const
    {
        return separateItem != other.separateItem ? separateItem < other.separateItem : pool < other.pool;
    }
};

PlanPool poolOf(const Item &item)
{
    const bool isStatus = item.address.isObject() && item.type == ValueType::Bool;
    return {item.station, areaOf(item.address.prefix).letters, isStatus};
}

int longestRequest(const Item &item, const PlanLimits &limits)
{
    const int size = placeSize(item);
    const int allowed = std::max(1, limits.blockSize / size);
    return std::min(allowed, kFrameData / recordSize(item.address));
}

// Analogue words are read whole.
int valuePlaces(const Item &item)
{
    const AddressKind kind = item.address.kind;
    return kind == AddressKind::Memory || kind == AddressKind::Analog ? item.valueSize() : 1;
}

void addAtoms(Candidates &candidates, const Item &item, int index)
{
    const int begin = item.address.number;
    const int end = begin + placeCount(item);
    const bool isWhole = end - begin <= candidates.longest;
    const int step = isWhole ? end - begin : valuePlaces(item);
    for (int place = begin; place < end; place += step)
        candidates.atoms.push_back({place, place + step, index});
}

std::map<Key, Candidates> candidatesOf(const std::vector<Item> &items, const PlanLimits &limits,
                                       const PlanHints &hints)
{
    std::map<Key, Candidates> all;
    for (int i = 0; i < int(items.size()); ++i) {
        const Item &item = items[size_t(i)];
        if (item.address.kind == AddressKind::Raw)
            continue;
        const bool isSeparate = !limits.merges || hints.separateItems.count(i) > 0;
        const Key key = {poolOf(item), isSeparate ? i : -1};
        Candidates &candidates = all[key];
        candidates.charactersOfPlace = recordSize(item.address);
        candidates.longest = longestRequest(item, limits);
        addAtoms(candidates, item, i);
        const auto longest = hints.longestRequests.find(key.pool);
        if (!isSeparate && longest != hints.longestRequests.end())
            candidates.longest = std::min(candidates.longest, longest->second);
    }
    return all;
}

// Sorts the atoms by their begin, and finds those that need no place of their own in the plan. Those that are
// left end in the order in which they begin.
void findRiders(std::vector<Atom> &atoms)
{
    std::sort(atoms.begin(), atoms.end(), [](const Atom &one, const Atom &other) {
        return one.begin != other.begin ? one.begin < other.begin : one.end > other.end;
    });
    int end = -1;
    for (Atom &atom : atoms) {
        atom.isRider = atom.end <= end;
        end = std::max(end, atom.end);
    }
}

// Tells how far a request may reach that begins at a place.
class ClosedPlaces
{
public:
    explicit ClosedPlaces(const std::set<std::pair<int, int>> &closed) : places(closed.begin(), closed.end())
    {
        for (size_t i = places.size(); i-- > 1;)
            places[i - 1].second = std::min(places[i - 1].second, places[i].second);
    }

    // The first end that would take in a closed place.
    int firstClosedEnd(int begin) const
    {
        const auto place = std::lower_bound(places.begin(), places.end(), std::make_pair(begin, 0));
        return place == places.end() ? std::numeric_limits<int>::max() : place->second;
    }

private:
    std::vector<std::pair<int, int>> places; // begins, with the least end of this and all later places
};

// Finds the cheapest way to cut the atoms, which begin and end in the same order, into requests: from the
// last one on, the best way for each tail is that of a shorter tail behind one request. Of equal ways it
// takes the one whose first requests are longest. Returns the index behind the last atom of each request.
std::vector<int> cheapestEnds(const std::vector<Atom> &atoms, const Candidates &candidates,
                              const RequestCost &cost, const ClosedPlaces &closed)
{
    const int count = int(atoms.size());
    std::vector<qint64> costs(atoms.size() + 1);
    std::vector<int> ends(atoms.size());
    for (int first = count - 1; first >= 0; --first) {
        const int begin = atoms[size_t(first)].begin;
        const int closedEnd = closed.firstClosedEnd(begin);
        qint64 best = std::numeric_limits<qint64>::max();
        for (int next = first + 1; next <= count; ++next) {
            const int end = atoms[size_t(next - 1)].end;
            if (next > first + 1 && (end - begin > candidates.longest || end >= closedEnd))
                break;
            const qint64 whole = cost.of((end - begin) * candidates.charactersOfPlace) + costs[size_t(next)];
            if (whole <= best) {
                best = whole;
                ends[size_t(first)] = next;
            }
        }
        costs[size_t(first)] = best;
    }
    std::vector<int> cuts;
    for (int first = 0; first < count; first = cuts.back())
        cuts.push_back(ends[size_t(first)]);
    return cuts;
}

// The driver asks for the bytes that hold the bits but takes only as many as the count alone needs:
// bits that straddle one byte more are refused. Those, and more than one frame carries, are picked out
// of whole bytes here.
bool driverReadsBits(const Item &item)
{
    return item.address.kind == AddressKind::Bit &&
           bytesFor(item.address.bit + item.count) == bytesFor(item.count);
}

// A part of an item as an item of its own; not for memory bits. Of a string the length byte is one more of
// its characters.
Item pieceOf(const Item &item, const PlanPart &part)
{
    Item piece = item;
    if (isText(piece.type))
        piece.type = ValueType::Str;
    piece.address.number += part.first;
    piece.count = part.count / valuePlaces(item);
    return piece;
}

// An item alone is asked for as its address says. Together, memory is read in bytes, which any area has that
// has elements of several widths; all others have one kind of elements.
RequestForm formOf(const PlannedRequest &request, const Item &item)
{
    const Area &area = areaOf(item.address.prefix);
    if (item.address.kind == AddressKind::Bit || (request.isMerged() && area.hasBits()))
        return bytesForm(area, kFrameData);
    return requestForm(pieceOf(item, {0, request.first - item.address.number, request.count}), kFrameData);
}

void chooseCommand(PlannedRequest &request, const std::vector<Item> &items)
{
    request.firstBit = -1;
    request.reversedWidth = 1;
    const Item &item = items[size_t(request.parts.front().item)];
    if (!request.isMerged() && request.count == placeCount(item) && driverReadsBits(item)) {
        request.command = makeCommand(kBits, item.address.text(), item.count);
        request.size = item.count;
        request.firstBit = item.address.bit;
        return;
    }
    const RequestForm form = formOf(request, item);
    request.size = request.count * placeSize(item);
    request.reversedWidth = form.reversedWidth;
    request.command = makeCommand(form.dataType, form.prefix + QString::number(request.first),
                                  request.size / form.unitSize);
}

// Atoms of one item that follow each other are one part.
void addPart(PlannedRequest &request, const Atom &atom, const Item &item, std::map<int, size_t> &lastParts)
{
    const PlanPart part = {atom.item, atom.begin - item.address.number, atom.end - atom.begin};
    const auto [last, isFirst] = lastParts.try_emplace(atom.item, request.parts.size());
    if (!isFirst) {
        PlanPart &before = request.parts[last->second];
        if (before.first + before.count == part.first) {
            before.count += part.count;
            return;
        }
        last->second = request.parts.size();
    }
    request.parts.push_back(part);
}

// Adds the requests for the atoms of one pool.
void addRequests(std::vector<PlannedRequest> &requests, const PlanPool &pool, Candidates &candidates,
                 const std::vector<Item> &items, const RequestCost &cost, const ClosedPlaces &closed)
{
    findRiders(candidates.atoms);
    std::vector<Atom> leaders;
    for (const Atom &atom : candidates.atoms)
        if (!atom.isRider)
            leaders.push_back(atom);
    auto atom = candidates.atoms.begin();
    int first = 0;
    for (const int end : cheapestEnds(leaders, candidates, cost, closed)) {
        const int begin = leaders[size_t(first)].begin;
        const int count = leaders[size_t(end - 1)].end - begin;
        PlannedRequest request = {pool, {}, 0, 1, -1, begin, count, count * candidates.charactersOfPlace, {}};
        std::map<int, size_t> lastParts; // of the items
        for (int led = first; atom != candidates.atoms.end(); ++atom) {
            if (!atom->isRider && led++ == end)
                break;
            addPart(request, *atom, items[size_t(atom->item)], lastParts);
        }
        chooseCommand(request, items);
        requests.push_back(std::move(request));
        first = end;
    }
}

PlannedRequest rawRequest(const Item &item, int index)
{
    const int size = item.size();
    return {{item.station, QString(), false},
            rawCommand(item),
            size,
            rawReversedWidth(item),
            -1,
            0,
            size,
            size,
            {{index, 0, size}}};
}

void addRawRequests(std::vector<PlannedRequest> &requests, const std::vector<Item> &items)
{
    for (int i = 0; i < int(items.size()); ++i)
        if (items[size_t(i)].address.kind == AddressKind::Raw)
            requests.push_back(rawRequest(items[size_t(i)], i));
}

int firstItem(const PlannedRequest &request)
{
    int first = request.parts.front().item;
    for (const PlanPart &part : request.parts)
        first = std::min(first, part.item);
    return first;
}

// One byte for each eight bits, as they lie in the controller; bits that nobody named are 0.
QByteArray packedBits(const QByteArray &bits, int firstBit)
{
    QByteArray bytes(bytesFor(firstBit + int(bits.size())), '\0');
    for (int i = 0; i < int(bits.size()); ++i) {
        const int bit = firstBit + i;
        if (bits.at(i) != 0)
            bytes[bit / 8] = char(uchar(bytes.at(bit / 8)) | 1U << (bit % 8));
    }
    return bytes;
}

QByteArray pickedBits(const QByteArray &bytes, int firstBit, int count)
{
    QByteArray bits;
    for (int i = firstBit; i < firstBit + count; ++i)
        bits += char((bytes.at(i / 8) >> (i % 8)) & 1);
    return bits;
}

// Several bits come eight to a byte, as the contract has it, or one to a byte, as from the driver for the
// S7-200.
QByteArray rawBytes(const PlannedRequest &request, const QByteArray &data)
{
    const int count = request.command.count;
    if (request.command.dataType == kBits && count > 1 && int(data.size()) == bytesFor(count))
        return pickedBits(data, 0, count);
    if (int(data.size()) != request.size)
        throw Failure(ExitCode::BrokenAnswer,
                      filled("the driver handed over %1 bytes instead of %2", data.size(), request.size),
                      "it may have another type or another count at this address");
    return byteSwapped(data, request.reversedWidth);
}

} // namespace

RequestCost requestCost(const LineSettings &line, qint64 answerTime)
{
    const int bits = 1 + line.dataBits + (line.parity == kNoParity ? 0 : 1) + line.stopBits;
    const qint64 character = qint64(bits) * 1'000'000'000 / line.baud;
    return {character, kRequestCharacters * character + kDriverPauses + answerTime};
}

QString PlannedRequest::text() const
{
    if (isRaw())
        return command.address;
    const Area &area = areaOf(pool.letters);
    const QString text = (area.hasBits() ? area.byteLetters() : area.letters) + QString::number(first);
    const int elements = count / (area.kind == AddressKind::Analog ? area.elementWidth : 1);
    const QString counted = elements == 1 ? text : filled("%1*%2", text, elements);
    return pool.station ? filled("%1@%2", counted, *pool.station) : counted;
}

qint64 ReadPlan::time(const RequestCost &cost) const
{
    qint64 all = 0;
    for (const PlannedRequest &request : requests)
        all += cost.of(request.lineSize);
    return all;
}

ReadPlan planReads(const std::vector<Item> &items, const RequestCost &cost, const PlanLimits &limits,
                   const PlanHints &hints)
{
    ReadPlan plan;
    const ClosedPlaces none({});
    std::map<PlanPool, ClosedPlaces> closedPlaces;
    for (const auto &[pool, places] : hints.closedPlaces)
        closedPlaces.emplace(pool, places);
    for (auto &[key, candidates] : candidatesOf(items, limits, hints)) {
        const auto closed = closedPlaces.find(key.pool);
        addRequests(plan.requests, key.pool, candidates, items, cost,
                    closed == closedPlaces.end() ? none : closed->second);
    }
    addRawRequests(plan.requests, items);
    std::stable_sort(plan.requests.begin(), plan.requests.end(),
                     [](const PlannedRequest &one, const PlannedRequest &other) {
                         return firstItem(one) < firstItem(other);
                     });
    return plan;
}

ReadPlan planRead(const Item &item, const PlanLimits &limits)
{
    return planReads({item}, {1, 1}, limits);
}

PlannedRequest requestForPart(const std::vector<Item> &items, const PlannedRequest &request,
                              const PlanPart &part)
{
    PlannedRequest alone = request;
    alone.first = items[size_t(part.item)].address.number + part.first;
    alone.count = part.count;
    alone.lineSize = request.lineSize / request.count * part.count;
    alone.parts = {part};
    chooseCommand(alone, items);
    return alone;
}

int placeCount(const Item &item)
{
    switch (item.address.kind) {
    case AddressKind::Bit:
        return bytesFor(item.address.bit + item.count);
    case AddressKind::Memory:
    case AddressKind::Analog:
    case AddressKind::Raw:
        return item.size();
    case AddressKind::Timer:
    case AddressKind::Counter:
    case AddressKind::HighSpeedCounter:
        break;
    }
    return item.count;
}

int placeSize(const Item &item)
{
    return item.address.isObject() ? item.valueSize() : 1;
}

std::vector<std::pair<int, int>> gapsOf(const PlannedRequest &request, const std::vector<Item> &items)
{
    std::vector<std::pair<int, int>> covered;
    for (const PlanPart &part : request.parts) {
        const int begin = items[size_t(part.item)].address.number + part.first;
        covered.emplace_back(begin, begin + part.count);
    }
    std::sort(covered.begin(), covered.end());
    std::vector<std::pair<int, int>> gaps;
    int end = request.first;
    for (const auto &[begin, behind] : covered) {
        if (begin > end)
            gaps.emplace_back(end, begin);
        end = std::max(end, behind);
    }
    return gaps;
}

bool TakenPlaces::take(const Item &item)
{
    if (item.address.kind == AddressKind::Raw)
        return takeRaw(item.address.text());
    std::map<int, int> &ofArea = ends[poolOf(item).letters];
    const int begin = item.address.number;
    const int end = begin + placeCount(item);
    const auto next = ofArea.lower_bound(begin);
    const bool reachesNext = next != ofArea.end() && next->first < end;
    if (reachesNext || (next != ofArea.begin() && std::prev(next)->second > begin))
        return false;
    ofArea.emplace_hint(next, begin, end);
    return true;
}

// Which places a text means only the driver knows; the same text means the same place.
bool TakenPlaces::takeRaw(const QString &text)
{
    return rawTexts.insert(text).second;
}

QByteArray placeBytes(const PlannedRequest &request, const QByteArray &data)
{
    if (request.isRaw())
        return rawBytes(request, data);
    if (int(data.size()) != request.size)
        throw Failure(ExitCode::BrokenAnswer,
                      filled("%1 bytes came instead of %2", data.size(), request.size),
                      "the controller answered fewer objects than were asked for; try a smaller count");
    return request.firstBit < 0 ? byteSwapped(data, request.reversedWidth)
                                : packedBits(data, request.firstBit);
}

QByteArray valueBytes(const Item &item, const QByteArray &places)
{
    const bool isBits = item.address.kind == AddressKind::Bit;
    return isBits ? pickedBits(places, item.address.bit, item.count) : places;
}

QList<Item> readBlocks(const Item &range, const PlanLimits &limits)
{
    QList<Item> blocks;
    int index = 0;
    for (const PlannedRequest &request : planRead(range, limits).requests) {
        const int count = request.size / range.valueSize();
        blocks << partOf(range, index, count);
        index += count;
    }
    return blocks;
}

} // namespace host
