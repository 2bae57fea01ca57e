// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/polling/schedule.h"

#include "host/base/filled.h"

#include <algorithm>

namespace host {

namespace {

constexpr int kSilentRequestsOfADeadStation = 3;
constexpr int kPollsPerTry = 10;

} // namespace

QString changeText(const StationChange &change)
{
    return change.answers
               ? filled("station %1 answers again", change.station)
               : filled("station %1 does not answer: it is asked in every tenth poll only", change.station);
}

int Schedule::addGroup(std::chrono::milliseconds interval, const std::vector<int> &requests,
                       PollTime firstRelease)
{
    Group group;
    group.stations = requests;
    group.release = firstRelease;
    group.figures.interval = interval;
    groups.push_back(group);
    countRequests(requests, 1);
    return int(groups.size()) - 1;
}

void Schedule::replaceRequests(int number, const std::vector<int> &requests)
{
    Group &group = groups[size_t(number)];
    countRequests(requests, 1);
    countRequests(group.stations, -1);
    group.stations = requests;
    group.position = 0;
    for (const auto &[station, isTried] : group.tries)
        if (isTried)
            stations[station].polls = kPollsPerTry - 1; // the next poll that comes to it tries it instead
    group.tries.clear();
}

NextPoll Schedule::next(PollTime now)
{
    while (Group *const group = mostUrgent(now)) {
        skipDeadStations(*group);
        if (!group->isThrough()) {
            const size_t index = group->position++;
            const int station = group->stations[index];
            return {PollRequest{int(group - groups.data()), int(index), station, stations[station].isDead},
                    now};
        }
        group->endPoll(now);
    }
    PollTime earliest = PollTime::max();
    for (const Group &group : groups)
        if (!group.stations.empty())
            earliest = std::min(earliest, group.release);
    return {std::nullopt, earliest};
}

std::optional<StationChange> Schedule::done(const PollRequest &request, PollOutcome outcome, PollTime now)
{
    Group &group = groups[size_t(request.group)];
    const std::optional<StationChange> change = noteOutcome(request.station, outcome);
    if (stations[request.station].isDead) {
        stations[request.station].polls = 0;
        group.tries[request.station] = false;
    }
    skipDeadStations(group);
    if (group.isThrough() && !group.stations.empty())
        group.endPoll(now);
    return change;
}

// The group of the released poll that is due first; null while none is released. One that was late does not
// begin another poll while there are groups that were never polled.
Schedule::Group *Schedule::mostUrgent(PollTime now)
{
    const bool hasNew = std::any_of(groups.begin(), groups.end(), [now](const Group &group) {
        return group.isReleased(now) && group.figures.polls == 0;
    });
    Group *first = nullptr;
    for (Group &group : groups) {
        const bool mustWait = hasNew && group.wasLate && group.position == 0;
        if (group.isReleased(now) && !mustWait && (!first || group.due() < first->due()))
            first = &group;
    }
    return first;
}

void Schedule::skipDeadStations(Group &group)
{
    while (!group.isThrough() && !isAsked(group.stations[group.position], group))
        ++group.position;
}

// What is found out of a dead station when a poll comes to it first holds for the whole poll, or until a try
// fails.
bool Schedule::isAsked(int number, Group &group)
{
    Station &station = stations[number];
    if (!station.isDead || !asksSeveralStations())
        return true;
    const auto known = group.tries.find(number);
    if (known != group.tries.end())
        return known->second;
    const bool isTriedByAnother = station.polls == kPollsPerTry;
    if (!isTriedByAnother)
        ++station.polls;
    return group.tries[number] = !isTriedByAnother && station.polls == kPollsPerTry;
}

void Schedule::Group::endPoll(PollTime now)
{
    const PollDuration lateness = now - due();
    const bool isLate = lateness > PollDuration();
    ++figures.polls;
    if (isLate) {
        ++figures.latePolls;
        figures.longestLateness = std::max(figures.longestLateness, lateness);
    }
    wasLate = isLate;
    release = isLate ? now : due();
    position = 0;
    tries.clear();
}

std::optional<StationChange> Schedule::noteOutcome(int number, PollOutcome outcome)
{
    Station &station = stations[number];
    const bool wasDead = station.isDead;
    if (outcome == PollOutcome::Answered)
        station = {};
    else if (++station.silentRequests >= kSilentRequestsOfADeadStation && asksSeveralStations())
        station.isDead = true;
    if (station.isDead == wasDead)
        return std::nullopt;
    return StationChange{number, wasDead};
}

void Schedule::countRequests(const std::vector<int> &requests, int change)
{
    for (const int station : requests)
        if ((requestsOfStations[station] += change) == 0)
            requestsOfStations.erase(station);
}

} // namespace host
