// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/polling/poller.h"

#include "host/base/filled.h"
#include "host/driver/connection.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace host {

namespace {

PollTime now()
{
    return std::chrono::steady_clock::now();
}

} // namespace

Poller::Poller(Connection &connection_, const std::vector<Item> &items,
               const std::vector<std::chrono::milliseconds> &intervals, const PlanLimits &limits,
               const PollEvents &events_)
    : connection(connection_), usualStation(connection.stationId()), events(events_)
{
    std::map<std::chrono::milliseconds, std::vector<int>> itemsOfIntervals;
    for (size_t i = 0; i < items.size(); ++i)
        itemsOfIntervals[intervals[i]].push_back(int(i));
    const PollTime start = now();
    for (const auto &[interval, numbers] : itemsOfIntervals) {
        std::vector<Item> own;
        own.reserve(numbers.size());
        for (const int number : numbers)
            own.push_back(items[size_t(number)]);
        Group group;
        group.items = numbers;
        group.reader = std::make_unique<PlanReader>(connection, own, limits);
        group.reader->setAnswerNote(events.answered);
        schedule.addGroup(interval, stationsOf(group), start);
        groups.push_back(std::move(group));
    }
}

std::vector<int> Poller::stationsOf(const Group &group) const
{
    std::vector<int> stations;
    for (const PlannedRequest &request : group.reader->plan().requests)
        stations.push_back(request.pool.station.value_or(usualStation));
    return stations;
}

PollTime Poller::step()
{
    const NextPoll next = schedule.next(now());
    endPolls();
    if (!next.request)
        return next.release;
    if (beginPoll(next.request->group))
        run(*next.request);
    endPolls();
    return now();
}

// Begins a poll unless it is under way. Returns whether its requests are those that the schedule knows; it is
// given the new ones otherwise, and asked again.
bool Poller::beginPoll(int number)
{
    Group &group = groups[size_t(number)];
    if (std::exchange(group.isUnderWay, true))
        return true;
    group.told = 0;
    if (!group.reader->begin())
        return true;
    schedule.replaceRequests(number, stationsOf(group));
    return false;
}

void Poller::run(const PollRequest &request)
{
    Group &group = groups[size_t(request.group)];
    const int attempts = connection.requestCount();
    bool hasAnswered = false;
    connection.setRepeating(!request.isTry);
    try {
        hasAnswered = group.reader->run(request.index);
    } catch (const Failure &loss) {
        ItemReading reading;
        reading.failure = loss;
        reading.attempts = connection.requestCount() - attempts;
        const int item = group.reader->plan().requests[size_t(request.index)].parts.front().item;
        events.brought(group.items[size_t(item)], reading);
        throw;
    }
    const std::optional<StationChange> change =
        schedule.done(request, hasAnswered ? PollOutcome::Answered : PollOutcome::Silent, now());
    tellReadings(group, false);
    if (change)
        events.told(changeText(*change));
}

// Tells the items that are done, each as soon as all before it are; when the poll is over, those that nobody
// asked for are passed over.
void Poller::tellReadings(Group &group, bool isOver)
{
    for (; group.told < group.items.size(); ++group.told) {
        const int item = int(group.told);
        if (group.reader->isDone(item))
            events.brought(group.items[group.told], group.reader->reading(item));
        else if (!isOver)
            return;
    }
}

void Poller::endPolls()
{
    for (size_t i = 0; i < groups.size(); ++i) {
        Group &group = groups[i];
        const PollFigures &figures = schedule.figures(int(i));
        if (figures.polls == group.seenPolls)
            continue;
        group.seenPolls = figures.polls;
        if (std::exchange(group.isUnderWay, false))
            tellReadings(group, true);
        if (std::exchange(group.seenLatePolls, figures.latePolls) == 0 && figures.latePolls > 0)
            tellLateness(figures);
    }
}

void Poller::tellLateness(const PollFigures &figures)
{
    using std::chrono::milliseconds;
    const auto late = std::chrono::duration_cast<milliseconds>(figures.longestLateness);
    events.told(filled("a poll every %1 ms cannot be kept: it came %2 ms late", figures.interval.count(),
                       late.count()));
}

int Poller::rounds() const
{
    int most = 0;
    for (const PollFigures &group : figures()) {
        if (group.polls == 0)
            return 0;
        most = std::max(most, group.polls);
    }
    return most;
}

std::vector<PollFigures> Poller::figures() const
{
    std::vector<PollFigures> all;
    all.reserve(groups.size());
    for (int i = 0; i < schedule.groupCount(); ++i)
        all.push_back(schedule.figures(i));
    return all;
}

} // namespace host
