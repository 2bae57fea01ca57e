// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Polls items over one line, each as often as its interval says. Items of the same interval are a group and
// have a plan of their own.

#ifndef HOST_POLLING_POLLER_H
#define HOST_POLLING_POLLER_H

#include "host/driver/plan_reader.h"
#include "host/polling/schedule.h"

#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace host {

class Connection;

// What the poller is told to call. An exception ends the polling.
struct PollEvents
{
    // A poll of an item ended, with values or a failure; also with the loss of the port. The items of a group
    // are told in their order.
    std::function<void(int item, const ItemReading &reading)> brought;

    PlanReader::Note answered;

    // Something that the user should know: a station is silent, or a poll came late.
    std::function<void(const QString &text)> told;
};

class Poller
{
public:
    // One interval for each item. The connection must outlive it.
    Poller(Connection &connection, const std::vector<Item> &items,
           const std::vector<std::chrono::milliseconds> &intervals, const PlanLimits &limits,
           const PollEvents &events);

    // Makes the next request if one is due by now. Returns when there will be another, which may be at once.
    // Fails when the port is lost.
    PollTime step();

    // How often the most frequent group was polled, once all were.
    int rounds() const;

    std::vector<PollFigures> figures() const;

private:
    struct Group
    {
        std::vector<int> items;
        std::unique_ptr<PlanReader> reader;
        bool isUnderWay = false;
        int seenPolls = 0;
        int seenLatePolls = 0;
        size_t told = 0; // of the items, in the poll that is under way
    };

    std::vector<int> stationsOf(const Group &group) const;
    bool beginPoll(int number);
    void run(const PollRequest &request);
    void tellReadings(Group &group, bool isOver);
    void endPolls();
    void tellLateness(const PollFigures &figures);

    Connection &connection;
    const int usualStation;
    PollEvents events;
    std::vector<Group> groups;
    Schedule schedule;
};

} // namespace host

#endif
