// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Reads items by the requests of a plan, once or again and again.
//
// A request for several items that the controller refuses is taken apart: each item is asked for by itself,
// and its own answer counts. What was the reason is remembered, so that it happens once: a gap and a length
// for good, an item until it is answered.

#ifndef HOST_DRIVER_PLAN_READER_H
#define HOST_DRIVER_PLAN_READER_H

#include "host/base/failure.h"
#include "host/driver/read_plan.h"

#include <QByteArray>

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

namespace host {

class Connection;

// What a reading of an item brought.
struct ItemReading
{
    QByteArray data; // as decodeValues() takes them; empty after a failure
    std::optional<Failure> failure;
    std::chrono::steady_clock::duration answerTime = {}; // of its slowest request, repetitions included
    std::chrono::system_clock::time_point time;          // when the last answer came
    int attempts = 0; // requests that were sent for it, repetitions included
};

class PlanReader
{
public:
    // The connection must outlive it.
    PlanReader(Connection &connection, const std::vector<Item> &items, const PlanLimits &limits = {});

    const ReadPlan &plan() const { return current; }

    // Begins another reading of all items. Returns whether the plan is another one now, because something was
    // learned.
    bool begin();

    // Called with the time that an answer took, repetitions included, and how long the plan expects it to
    // take, which is no time for what no plan is made of.
    using Note = std::function<void(std::chrono::steady_clock::duration, std::chrono::nanoseconds)>;
    void setAnswerNote(const Note &note) { noteAnswer = note; }

    // Makes a request of the plan. Returns whether the controller answered at all. Fails only when nothing
    // more can be read: the port is lost.
    bool run(int request);

    // Whether all requests for an item were made.
    bool isDone(int item) const { return states[size_t(item)].missing == 0; }

    // What is known of an item that is done.
    const ItemReading &reading(int item) const { return states[size_t(item)].reading; }

    // Makes the requests that an item still needs. Returns its bytes, or throws its failure.
    QByteArray read(int item);

    // What requests cost as far as is known by now.
    RequestCost cost() const;

private:
    struct State
    {
        ItemReading reading;
        QByteArray places;
        int missing = 0; // places that no request has brought
    };
    struct Answer
    {
        QByteArray places;
        std::chrono::steady_clock::duration duration;
        std::chrono::system_clock::time_point time;
        int attempts;
        std::optional<Failure> failure;
    };

    void makePlan();
    Answer ask(const PlannedRequest &request);
    void noteAnswerTime(const PlannedRequest &request, const Answer &answer);
    void deliver(const PlannedRequest &request, const Answer &answer);
    void settle(const PlanPart &part, const PlannedRequest &request, const Answer &answer);
    void takeApart(const PlannedRequest &request, const Answer &refusal);
    void learn(const PlannedRequest &request, const std::vector<PlanPart> &refused);
    void forgetRefusal(int item, const PlanPool &pool);

    Connection &connection;
    std::vector<Item> items;
    PlanLimits limits;
    PlanHints hints;
    bool hasLearned = true;           // something that the plan does not know yet
    std::optional<qint64> answerTime; // of the controllers so far, on average, in nanoseconds
    RequestCost plannedCost = {};
    ReadPlan current;
    std::vector<std::vector<int>> requestsOfItems;
    std::vector<bool> made; // which requests were
    std::vector<State> states;
    Note noteAnswer;
};

// Reads one item.
QByteArray readItem(Connection &connection, const Item &item, const PlanLimits &limits = {});

// Takes a block of a range that was read. Returns whether the next one is to be read, too.
using TakeBlock = std::function<bool(const Item &block, const QByteArray &data)>;

// Reads a range, block by block in their order. A failure, of the taking too, names the block.
void readRange(Connection &connection, const Item &range, const PlanLimits &limits, const TakeBlock &take);

} // namespace host

#endif
