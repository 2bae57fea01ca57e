// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/plan_reader.h"

#include "host/base/filled.h"
#include "host/base/messages.h"
#include "host/driver/connection.h"
#include "host/driver/driver_fault.h"
#include "host/items/memory_range.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace host {

namespace {

// A new answer time counts so much against all those before it.
constexpr int kAnswerWeight = 8;

// A plan is made anew when its requests cost so much of their cost more or less: a twentieth. At 9600 baud
// the usual answer time is a tenth.
constexpr int kNoticeable = 20;

qint64 nanoseconds(std::chrono::steady_clock::duration time)
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(time).count();
}

} // namespace

PlanReader::PlanReader(Connection &connection_, const std::vector<Item> &items_, const PlanLimits &limits_)
    : connection(connection_), items(items_), limits(limits_)
{
    begin();
}

RequestCost PlanReader::cost() const
{
    return requestCost(connection.line(), answerTime.value_or(kUsualAnswerTime));
}

bool PlanReader::begin()
{
    const qint64 change = std::llabs(cost().request - plannedCost.request);
    const bool isNew = hasLearned || change > plannedCost.request / kNoticeable;
    if (isNew)
        makePlan();
    made.assign(made.size(), false);
    for (size_t i = 0; i < items.size(); ++i) {
        states[i] = State();
        states[i].missing = placeCount(items[i]);
        states[i].places.resize(states[i].missing * placeSize(items[i]));
    }
    return isNew;
}

void PlanReader::makePlan()
{
    plannedCost = cost();
    current = planReads(items, plannedCost, limits, hints);
    hasLearned = false;
    made.assign(current.requests.size(), false);
    states.resize(items.size());
    requestsOfItems.assign(items.size(), {});
    for (size_t i = 0; i < current.requests.size(); ++i)
        for (const PlanPart &part : current.requests[i].parts) {
            std::vector<int> &requests = requestsOfItems[size_t(part.item)];
            if (requests.empty() || requests.back() != int(i))
                requests.push_back(int(i));
        }
}

bool PlanReader::run(int request)
{
    made[size_t(request)] = true;
    const PlannedRequest &planned = current.requests[size_t(request)];
    const Answer answer = ask(planned);
    if (planned.isMerged() && answer.failure && answer.failure->code() == ExitCode::Refused)
        takeApart(planned, answer);
    else
        deliver(planned, answer);
    return !answer.failure || answer.failure->code() != ExitCode::NoAnswer;
}

QByteArray PlanReader::read(int item)
{
    for (const int request : requestsOfItems[size_t(item)])
        if (!made[size_t(request)])
            run(request);
    const ItemReading &result = reading(item);
    if (result.failure)
        throw Failure(*result.failure);
    return result.data;
}

PlanReader::Answer PlanReader::ask(const PlannedRequest &request)
{
    using Clock = std::chrono::steady_clock;
    Answer answer = {};
    const int attempts = connection.requestCount();
    connection.setStation(request.pool.station);
    const Clock::time_point start = Clock::now();
    try {
        answer.places = placeBytes(request, connection.read(request.command));
    } catch (const Failure &failure) {
        if (failure.isFinal())
            throw;
        answer.failure = failure;
    }
    answer.duration = Clock::now() - start;
    answer.time = std::chrono::system_clock::now();
    answer.attempts = connection.requestCount() - attempts;
    if (!answer.failure && noteAnswer)
        noteAnswer(answer.duration,
                   std::chrono::nanoseconds(request.isRaw() ? 0 : plannedCost.of(request.lineSize)));
    noteAnswerTime(request, answer);
    return answer;
}

// What is left of the time behind the characters and the driver's pauses is the controller's. The first
// answer of a connection is none to go by: the connection listened before and after it whether the line is
// silent.
void PlanReader::noteAnswerTime(const PlannedRequest &request, const Answer &answer)
{
    const bool isFirst = connection.requestCount() == answer.attempts;
    if (answer.failure || answer.attempts != 1 || isFirst || request.isRaw())
        return;
    const qint64 line = requestCost(connection.line(), 0).of(request.lineSize);
    const qint64 time = std::max<qint64>(0, nanoseconds(answer.duration) - line);
    answerTime = answerTime ? *answerTime + (time - *answerTime) / kAnswerWeight : time;
}

void PlanReader::deliver(const PlannedRequest &request, const Answer &answer)
{
    for (const PlanPart &part : request.parts)
        settle(part, request, answer);
}

// Takes note of what became of a part of an item.
void PlanReader::settle(const PlanPart &part, const PlannedRequest &request, const Answer &answer)
{
    const Item &item = items[size_t(part.item)];
    State &state = states[size_t(part.item)];
    ItemReading &reading = state.reading;
    reading.attempts += answer.attempts;
    reading.answerTime = std::max(reading.answerTime, answer.duration);
    reading.time = answer.time;
    if (answer.failure && !reading.failure)
        reading.failure = answer.failure;
    if (!answer.failure) {
        const int size = placeSize(item);
        const int from = (item.address.number + part.first - request.first) * size;
        state.places.replace(part.first * size, part.count * size,
                             answer.places.mid(from, part.count * size));
    }
    state.missing -= part.count;
    if (state.missing == 0 && !reading.failure) {
        reading.data = valueBytes(item, state.places);
        forgetRefusal(part.item, request.pool);
    }
}

// What was refused for a while, as in a controller whose program was just being replaced, comes with the
// others again as soon as it was read whole.
void PlanReader::forgetRefusal(int item, const PlanPool &pool)
{
    if (hints.separateItems.erase(item) == 0)
        return;
    hasLearned = true;
    const int begin = items[size_t(item)].address.number;
    const int end = begin + placeCount(items[size_t(item)]);
    auto &closed = hints.closedPlaces[pool];
    for (auto place = closed.lower_bound({begin, 0}); place != closed.end() && place->first < end;)
        place = place->second <= end ? closed.erase(place) : std::next(place);
}

void PlanReader::takeApart(const PlannedRequest &request, const Answer &refusal)
{
    reportDetail(filled("%1 is refused (%2): its %3 items are read one by one", request.text(),
                        refusal.failure->text(), request.parts.size()));
    std::vector<PlanPart> refused;
    for (const PlanPart &part : request.parts) {
        const PlannedRequest alone = requestForPart(items, request, part);
        const Answer answer = ask(alone);
        settle(part, alone, answer);
        if (answer.failure && answer.failure->code() == ExitCode::Refused)
            refused.push_back(part);
    }
    if (!isPassing(*refusal.failure))
        learn(request, refused);
}

// An item that is refused is asked for alone until it is answered, and nothing reaches over its place. When
// none is, a gap was the reason, or else the length.
void PlanReader::learn(const PlannedRequest &request, const std::vector<PlanPart> &refused)
{
    hasLearned = true;
    auto &closed = hints.closedPlaces[request.pool];
    for (const PlanPart &part : refused) {
        const int begin = items[size_t(part.item)].address.number + part.first;
        hints.separateItems.insert(part.item);
        closed.emplace(begin, begin + part.count);
    }
    if (!refused.empty())
        return;
    const std::vector<std::pair<int, int>> gaps = gapsOf(request, items);
    closed.insert(gaps.begin(), gaps.end());
    if (gaps.empty())
        hints.longestRequests[request.pool] = std::max(1, request.count / 2);
}

QByteArray readItem(Connection &connection, const Item &item, const PlanLimits &limits)
{
    return PlanReader(connection, {item}, limits).read(0);
}

void readRange(Connection &connection, const Item &range, const PlanLimits &limits, const TakeBlock &take)
{
    for (const Item &block : readBlocks(range, limits)) {
        try {
            if (!take(block, readItem(connection, block, limits)))
                return;
        } catch (const Failure &failure) {
            throw failure.about(rangeText(block));
        }
    }
}

} // namespace host
