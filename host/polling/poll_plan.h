// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What polling some tags will cost, told before it is done: the requests, their times, and which intervals
// can be kept at which rate.
//
//   requests     2, 181 ms a poll at 9600 baud: 66 values per second
//   VB100*12     a b c, 2 bytes of gap, 79 characters, 125 ms

#ifndef HOST_POLLING_POLL_PLAN_H
#define HOST_POLLING_POLL_PLAN_H

#include "host/driver/read_plan.h"
#include "host/items/tag.h"
#include "host/port/line_settings.h"
#include "host/text/json.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <utility>
#include <vector>

namespace host {

// From poll to poll unless the user says otherwise, in milliseconds.
constexpr int kUsualInterval = 500;

// The interval of each tag: its own, or else the one that is handed in.
std::vector<std::chrono::milliseconds> intervalsOf(const std::vector<Tag> &tags,
                                                   std::chrono::milliseconds otherwise);

class PollPlan
{
public:
    PollPlan(const std::vector<Tag> &tags, const LineSettings &line, const PlanLimits &limits);

    // The form of it stands in docs/json.md.
    Json json() const;

    // A label and a text for each line.
    std::vector<std::pair<QString, QString>> lines() const;

private:
    // Tags that are polled together, and how long that takes at the rate of the line and at the usual ones.
    struct Group
    {
        int interval;
        std::vector<int> tags;
        std::vector<Item> items; // those of the tags
        ReadPlan plan;
        std::vector<qint64> times; // nanoseconds
    };

    void addGroup(int interval, const std::vector<int> &members, const PlanLimits &limits);
    QStringList labelsOf(const Group &group, const PlannedRequest &request) const;
    int gapOf(const Group &group, const PlannedRequest &request) const;
    Json json(const Group &group) const;
    Json json(const Group &group, const PlannedRequest &request) const;
    QString text(const Group &group, const PlannedRequest &request) const;
    QString timesText(const Group &group) const;
    double loadAt(size_t rate) const;
    double valuesPerSecond() const;
    qint64 time() const;
    int requestCount() const;

    std::vector<Tag> tags;
    LineSettings line;
    RequestCost cost;
    std::vector<int> bauds; // the line's own and the usual ones
    std::vector<Group> groups;
    std::vector<double> loads; // of the line at each of the rates, 1 when it is never silent
    bool hasIntervals = false;
};

} // namespace host

#endif
