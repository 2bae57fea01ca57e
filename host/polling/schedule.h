// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Which request is to be run next, when groups of requests are polled at their own rates over one line.
// Nothing here reads a clock or a port: the time is handed in.
//
// A poll of a group runs each of its requests once, in their order. It is released every interval, and due
// one interval after its release. Of the released polls the one that is due first has its next request run; a
// request is never cut short for another. A poll that ends after it was due is late: the next one is released
// at once, and those that were missed meanwhile are not made up for. Such a group waits until every other one
// was polled once, which it would keep from the line for up to their whole interval otherwise.
//
// A station that does not answer costs a time-out for every request. Where several stations are asked, one
// that was silent three times in a row is left out, but for one request in every tenth poll that would ask
// it. With the first answer all its requests are run again.

#ifndef HOST_POLLING_SCHEDULE_H
#define HOST_POLLING_SCHEDULE_H

#include <QString>

#include <chrono>
#include <map>
#include <optional>
#include <vector>

namespace host {

using PollTime = std::chrono::steady_clock::time_point;
using PollDuration = std::chrono::steady_clock::duration;

struct PollRequest
{
    int group;
    int index; // among the group's requests
    int station;
    bool isTry = false; // whether a station that did not answer does so again: one attempt is enough
};

// What to do next: run a request, or wait until a poll is released. Without groups that have requests the
// release is PollTime::max().
struct NextPoll
{
    std::optional<PollRequest> request;
    PollTime release; // of the earliest poll, when no request is to be run now
};

// A refusal is an answer, too.
enum class PollOutcome { Answered, Silent };

struct StationChange
{
    int station;
    bool answers; // again; otherwise it does not answer any more
};

// What the user is told of it.
QString changeText(const StationChange &change);

struct PollFigures
{
    std::chrono::milliseconds interval{};
    int polls = 0; // that ended
    int latePolls = 0;
    PollDuration longestLateness{};
};

class Schedule
{
public:
    // Adds a group and returns its number, from 0 on. The interval is at least 1 ms; each request is given by
    // the station that it asks.
    int addGroup(std::chrono::milliseconds interval, const std::vector<int> &stations, PollTime firstRelease);

    // Gives a group other requests. A poll of it that is under way begins anew with them.
    void replaceRequests(int group, const std::vector<int> &stations);

    // Hands out each request once. It is run, and done() told of it, before the next one is asked for.
    NextPoll next(PollTime now);

    // Takes note of how a request ended, and returns what that says of its station when it is news.
    std::optional<StationChange> done(const PollRequest &request, PollOutcome outcome, PollTime now);

    int groupCount() const { return int(groups.size()); }
    const PollFigures &figures(int group) const { return groups[size_t(group)].figures; }

private:
    struct Station
    {
        int silentRequests = 0; // in a row
        bool isDead = false;
        int polls = 0; // that came to it since it was last asked; the tenth tries it
    };

    struct Group
    {
        PollTime due() const { return release + figures.interval; }
        bool isReleased(PollTime now) const { return !stations.empty() && release <= now; }
        bool isThrough() const { return position == stations.size(); }
        void endPoll(PollTime now);

        std::vector<int> stations; // of its requests
        PollTime release;          // of the poll that is under way or comes next
        size_t position = 0;       // behind the requests that were handed out or skipped
        bool wasLate = false;      // the last poll
        std::map<int, bool> tries; // by dead stations that the poll came to: whether one is asked
        PollFigures figures;
    };

    Group *mostUrgent(PollTime now);
    void skipDeadStations(Group &group);
    bool isAsked(int station, Group &group);
    std::optional<StationChange> noteOutcome(int station, PollOutcome outcome);
    void countRequests(const std::vector<int> &requests, int change);
    bool asksSeveralStations() const { return requestsOfStations.size() > 1; }

    std::vector<Group> groups;
    std::map<int, Station> stations;
    std::map<int, int> requestsOfStations; // how many there are for each that is asked
};

} // namespace host

#endif
