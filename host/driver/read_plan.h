// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Which requests bring the values of some items in the least time.
//
// One request reads one stretch of one area of one station. Whatever its length, it costs 67 characters on
// the line, the driver's two pauses of 12 ms and the time that the controller takes to answer; each byte of
// memory costs one character more. So neighbours are read together, with the gap between them, whenever
// reading the gap is quicker than asking twice. A value never comes in two parts, nor does an item that one
// answer can carry, so that what belongs together was read at the same time. Of raw addresses nothing is
// known: each of their items is one request.

#ifndef HOST_DRIVER_READ_PLAN_H
#define HOST_DRIVER_READ_PLAN_H

#include "host/driver/request_form.h"
#include "host/port/line_settings.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

namespace host {

// What one answer frame has room for behind its headers, in bytes.
constexpr int kFrameData = 222;

// Characters of an exchange besides its data: request 33, acknowledgement 1, poll 6, answer 27.
constexpr int kRequestCharacters = 67;

// What requests cost, in nanoseconds.
struct RequestCost
{
    qint64 character; // on the line
    qint64 request;   // besides its data

    qint64 of(int dataBytes) const { return request + dataBytes * character; }
};

// How long a controller is taken to need for an answer as long as nothing is known of it, in nanoseconds.
constexpr qint64 kUsualAnswerTime = 10'000'000;

RequestCost requestCost(const LineSettings &line, qint64 answerTime = kUsualAnswerTime);

// What the user allows.
struct PlanLimits
{
    bool merges = true;         // items may come together
    int blockSize = kFrameData; // bytes of values in one request, but for a value that alone has more
};

// What one request can read is in one pool: an area of a station. The status bits of timers and counters are
// another one than their values.
struct PlanPool
{
    std::optional<int> station; // none: the usual one
    QString letters;
    bool isStatus;

    bool operator<(const PlanPool &other) const
    {
        return std::tie(station, letters, isStatus) < std::tie(other.station, other.letters, other.isStatus);
    }
};

// What was learned from refusals. Places are counted as in PlannedRequest.
struct PlanHints
{
    std::set<int> separateItems; // refused, and asked for alone
    std::map<PlanPool, std::set<std::pair<int, int>>>
        closedPlaces;                        // no request reaches over all of such a place
    std::map<PlanPool, int> longestRequests; // for pools where longer ones are refused; not for an item alone
};

// Some of the bytes or objects of an item, counted from its first.
struct PlanPart
{
    int item; // its index
    int first;
    int count;
};

// A request that the driver is to make, and whose bytes it brings. Places are bytes of memory, or the numbers
// of timers and counters.
struct PlannedRequest
{
    PlanPool pool;
    CommunicatorCommand command;
    int size;          // bytes that the driver must hand back
    int reversedWidth; // they lie reversed in groups of this many; 1: as in the controller
    int firstBit;      // they are bits, one each, from this one on in the first place; -1: they are none
    int first;         // place
    int count;         // of places
    int lineSize;      // characters on the line for the data
    std::vector<PlanPart> parts;

    bool isMerged() const { return parts.size() > 1; }

    // Whether it is for an item with a raw address, which comes alone and whose cost nobody knows.
    bool isRaw() const { return pool.letters.isEmpty(); }

    // "VB100*60", "T37@3"
    QString text() const;
};

struct ReadPlan
{
    std::vector<PlannedRequest> requests; // in the order of the items that need them first

    // How long all of it takes, in nanoseconds.
    qint64 time(const RequestCost &cost) const;
};

// Plans the reading of all items. No plan that keeps to the limits and hints is quicker.
ReadPlan planReads(const std::vector<Item> &items, const RequestCost &cost, const PlanLimits &limits = {},
                   const PlanHints &hints = {});

// Plans the reading of one item, for which no cost matters.
ReadPlan planRead(const Item &item, const PlanLimits &limits = {});

// The request for a part of a request's items alone.
PlannedRequest requestForPart(const std::vector<Item> &items, const PlannedRequest &request,
                              const PlanPart &part);

// The places that an item takes, and the bytes of each of them in the data of a request.
int placeCount(const Item &item);
int placeSize(const Item &item);

// The places of a request that no item needs, from the first to behind the last of each gap.
std::vector<std::pair<int, int>> gapsOf(const PlannedRequest &request, const std::vector<Item> &items);

// The bytes and objects that some items take. Controllers are taken for the same one.
class TakenPlaces
{
public:
    // Takes those of an item. Returns false, and takes none, when an item before it has one of them.
    bool take(const Item &item);

private:
    bool takeRaw(const QString &text);

    std::set<QString> rawTexts;
    std::map<QString, std::map<int, int>>
        ends; // by the letters of the area: places from one to behind the last
};

// Returns what the driver handed back for a request as the bytes of its places, as they lie in the
// controller. Fails when there are fewer or more of them than were asked for.
QByteArray placeBytes(const PlannedRequest &request, const QByteArray &data);

// Returns the values of an item from the bytes of its places, as decodeValues() takes them.
QByteArray valueBytes(const Item &item, const QByteArray &places);

// Returns the range in parts that one request brings, in their order.
QList<Item> readBlocks(const Item &range, const PlanLimits &limits = {});

} // namespace host

#endif
