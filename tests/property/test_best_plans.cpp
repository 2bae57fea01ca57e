// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Plans for reading items drawn by lot: whole, within the limits, and none quicker among all ways to put the
// items together.

#include "lots.h"
#include "planned_items.h"
#include "test_class.h"

#include <QtTest>

#include <algorithm>
#include <limits>
#include <map>
#include <numeric>
#include <set>
#include <utility>
#include <vector>

using namespace host;

class TestBestPlans : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { lots::useSeedOfRun(); }
    void noWayToPutItemsTogetherIsQuicker();
    void anItemThatIsTooLongTakesAsFewRequestsAsPossible();
    void everyPlaceOfEveryItemComesOnce();
    void requestsKeepToTheirLimits();
    void nothingIsTakenApartThatFits();
    void hintsAreKeptTo();
};

namespace {

using planned::Span;

constexpr qint64 kImpossible = std::numeric_limits<qint64>::max() / 16;

// What is never taken apart: an item, or a value of an item that is too long for one request.
struct Piece
{
    int item;
    Span span;
};

std::vector<Piece> piecesOf(const std::vector<Item> &items, const PlanLimits &limits)
{
    std::vector<Piece> pieces;
    for (int i = 0; i < int(items.size()); ++i) {
        const Item &item = items[size_t(i)];
        const Span whole = planned::spanOf(item);
        const bool fits = whole.size() <= planned::mostPlaces(item, limits);
        const int step = fits ? whole.size() : planned::placesOfValue(item);
        for (int begin = whole.begin; begin < whole.end; begin += step)
            pieces.push_back({i, {begin, begin + step}});
    }
    return pieces;
}

struct Task
{
    std::vector<Item> items;
    lots::Line line;
    PlanLimits limits;
    PlanHints hints;

    bool isSeparate(int item) const { return !limits.merges || hints.separateItems.count(item) > 0; }

    ReadPlan plan() const { return planReads(items, line.cost, limits, hints); }
};

Task drawnTask(int atMost)
{
    Task task;
    task.items = lots::plannedItems(atMost);
    task.line = lots::line();
    task.limits = lots::planLimits();
    task.hints = lots::planHints(task.items);
    RC_LOG(lots::textOf(task.items).toStdString());
    RC_LOG("merges " + std::to_string(task.limits.merges) + ", block " +
           std::to_string(task.limits.blockSize));
    return task;
}

bool hasClosedPlace(const Task &task, const Item &item, const Span &span)
{
    const PlanPool pool = planReads({item}, {1, 1}).requests.front().pool;
    const auto found = task.hints.closedPlaces.find(pool);
    return found != task.hints.closedPlaces.end() &&
           std::any_of(found->second.begin(), found->second.end(), [&](const std::pair<int, int> &place) {
               return span.begin <= place.first && place.second <= span.end;
           });
}

int mostPlacesTogether(const Task &task, const Item &item)
{
    const PlanPool pool = planReads({item}, {1, 1}).requests.front().pool;
    const auto hint = task.hints.longestRequests.find(pool);
    const int most = planned::mostPlaces(item, task.limits);
    return hint == task.hints.longestRequests.end() ? most : std::min(most, hint->second);
}

// The time of a request for some of the pieces, each of which has its bit in the mask.
qint64 timeTogether(const Task &task, const std::vector<Piece> &pieces, unsigned mask)
{
    Span span = {std::numeric_limits<int>::max(), 0};
    int widest = 0;
    const Item *first = nullptr;
    std::set<int> members;
    bool hasSeparate = false;
    for (size_t i = 0; i < pieces.size(); ++i) {
        if ((mask >> i & 1) == 0)
            continue;
        const Piece &piece = pieces[i];
        const Item &item = task.items[size_t(piece.item)];
        if (!first)
            first = &item;
        if (planned::poolOf(item) != planned::poolOf(*first))
            return kImpossible;
        members.insert(piece.item);
        hasSeparate = hasSeparate || task.isSeparate(piece.item);
        widest = std::max(widest, piece.span.size());
        span = {std::min(span.begin, piece.span.begin), std::max(span.end, piece.span.end)};
    }
    if (hasSeparate && members.size() > 1)
        return kImpossible;
    const int most =
        hasSeparate ? planned::mostPlaces(*first, task.limits) : mostPlacesTogether(task, *first);
    const bool reachesOverMore = span.size() > widest;
    if (reachesOverMore && (span.size() > most || hasClosedPlace(task, *first, span)))
        return kImpossible;
    return task.line.cost.request +
           span.size() * planned::charactersOfPlace(*first) * task.line.characterTime;
}

// The least time in which all pieces can be read: for each set of pieces, the request with the first of them
// is tried with every choice of the others.
qint64 leastTime(const Task &task, const std::vector<Piece> &pieces)
{
    const unsigned all = 1U << pieces.size();
    std::vector<qint64> together(all);
    for (unsigned mask = 1; mask < all; ++mask)
        together[mask] = timeTogether(task, pieces, mask);
    std::vector<qint64> least(all, kImpossible);
    least[0] = 0;
    for (unsigned set = 1; set < all; ++set) {
        const unsigned first = set & (~set + 1);
        for (unsigned group = set; group != 0; group = (group - 1) & set)
            if ((group & first) != 0 && together[group] < kImpossible)
                least[set] = std::min(least[set], together[group] + least[set & ~group]);
    }
    return least[all - 1];
}

// For each item how often each of its places comes.
std::vector<std::vector<int>> comings(const std::vector<Item> &items, const ReadPlan &plan)
{
    std::vector<std::vector<int>> times;
    for (const Item &item : items)
        times.emplace_back(size_t(planned::spanOf(item).size()), 0);
    for (const PlannedRequest &request : plan.requests)
        for (const PlanPart &part : request.parts)
            for (int place = part.first; place < part.first + part.count; ++place)
                ++times[size_t(part.item)].at(size_t(place));
    return times;
}

Span spanOf(const PlanPart &part, const std::vector<Item> &items)
{
    const int begin = items[size_t(part.item)].address.number + part.first;
    return {begin, begin + part.count};
}

} // namespace

void TestBestPlans::noWayToPutItemsTogetherIsQuicker()
{
    QVERIFY(rc::check("no partition of up to 12 items or values takes less time", [] {
        const Task task = drawnTask(12);
        const std::vector<Piece> pieces = piecesOf(task.items, task.limits);
        RC_PRE(pieces.size() <= 12);
        RC_ASSERT(task.plan().time(task.line.cost) == leastTime(task, pieces));
    }));
}

void TestBestPlans::anItemThatIsTooLongTakesAsFewRequestsAsPossible()
{
    QVERIFY(rc::check("as many values as fit come with each request", [] {
        const PlanLimits limits = lots::planLimits();
        const Item drawn = lots::plannedItems(1).front();
        Item item = drawn;
        if (drawn.address.kind != AddressKind::HighSpeedCounter)
            item.count = *rc::gen::inRange(1, 2000);
        RC_LOG(lots::textOf({item}).toStdString());
        const int step = planned::placesOfValue(item);
        const int values = std::max(1, planned::mostPlaces(item, limits) / step);
        const int wanted = planned::spanOf(item).size() / step;
        RC_ASSERT(int(planRead(item, limits).requests.size()) == (wanted + values - 1) / values);
    }));
}

void TestBestPlans::everyPlaceOfEveryItemComesOnce()
{
    QVERIFY(rc::check(
        "the parts of the requests are the items, and a request reaches no further than they do", [] {
            const Task task = drawnTask(12);
            const ReadPlan plan = task.plan();
            for (const std::vector<int> &times : comings(task.items, plan))
                RC_ASSERT(std::count(times.begin(), times.end(), 1) == std::ptrdiff_t(times.size()));
            for (const PlannedRequest &request : plan.requests) {
                Span span = {std::numeric_limits<int>::max(), 0};
                for (const PlanPart &part : request.parts) {
                    const Span own = spanOf(part, task.items);
                    span = {std::min(span.begin, own.begin), std::max(span.end, own.end)};
                    const Item &first = task.items[size_t(request.parts.front().item)];
                    RC_ASSERT(planned::poolOf(task.items[size_t(part.item)]) == planned::poolOf(first));
                }
                RC_ASSERT(request.first == span.begin);
                RC_ASSERT(request.count == span.size());
            }
        }));
}

void TestBestPlans::requestsKeepToTheirLimits()
{
    QVERIFY(rc::check("no request is longer than the frame or the block, but for one value", [] {
        const Task task = drawnTask(12);
        for (const PlannedRequest &request : task.plan().requests) {
            const Item &item = task.items[size_t(request.parts.front().item)];
            int value = 0;
            for (const PlanPart &part : request.parts)
                value = std::max(value, planned::placesOfValue(task.items[size_t(part.item)]));
            RC_ASSERT(request.count <= planned::mostPlaces(item, {true, 222}));
            RC_ASSERT(request.count <= std::max(value, planned::mostPlaces(item, task.limits)));
            RC_ASSERT(request.lineSize == request.count * planned::charactersOfPlace(item));
        }
    }));
}

void TestBestPlans::nothingIsTakenApartThatFits()
{
    QVERIFY(rc::check("a value comes with one request, and so does an item that fits", [] {
        const Task task = drawnTask(12);
        std::vector<int> parts(task.items.size(), 0);
        for (const PlannedRequest &request : task.plan().requests) {
            for (const PlanPart &part : request.parts) {
                const int step = planned::placesOfValue(task.items[size_t(part.item)]);
                RC_ASSERT(part.first % step == 0);
                RC_ASSERT(part.count % step == 0);
                ++parts[size_t(part.item)];
            }
        }
        for (size_t i = 0; i < parts.size(); ++i) {
            const Item &item = task.items[i];
            if (planned::spanOf(item).size() <= planned::mostPlaces(item, task.limits))
                RC_ASSERT(parts[i] == 1);
        }
    }));
}

void TestBestPlans::hintsAreKeptTo()
{
    QVERIFY(rc::check("what was refused comes alone, and closed places are not reached over", [] {
        const Task task = drawnTask(12);
        for (const PlannedRequest &request : task.plan().requests) {
            std::set<int> members;
            int widest = 0;
            for (const PlanPart &part : request.parts) {
                members.insert(part.item);
                widest = std::max(widest, part.count);
            }
            if (members.size() < 2)
                continue;
            RC_ASSERT(std::none_of(members.begin(), members.end(),
                                   [&](int item) { return task.isSeparate(item); }));
            const Item &item = task.items[size_t(*members.begin())];
            const Span span = {request.first, request.first + request.count};
            RC_ASSERT(span.size() == widest || !hasClosedPlace(task, item, span));
            RC_ASSERT(span.size() == widest || span.size() <= mostPlacesTogether(task, item));
        }
    }));
}

TEST_CLASS(TestBestPlans)
#include "test_best_plans.moc"
