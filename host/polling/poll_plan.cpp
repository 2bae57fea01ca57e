// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/polling/poll_plan.h"

#include "host/base/filled.h"
#include "host/text/number_text.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace host {

namespace {

// What controllers can be set to.
constexpr int kBauds[] = {9600, 19200, 187500};

// More labels than these do not help anybody in one line.
constexpr int kShownLabels = 8;

double milliseconds(qint64 nanoseconds)
{
    return double(std::llround(double(nanoseconds) / 1e5)) / 10;
}

QString millisecondsText(qint64 nanoseconds)
{
    return filled("%1 ms", std::llround(double(nanoseconds) / 1e6));
}

} // namespace

std::vector<std::chrono::milliseconds> intervalsOf(const std::vector<Tag> &tags,
                                                   std::chrono::milliseconds otherwise)
{
    std::vector<std::chrono::milliseconds> intervals;
    intervals.reserve(tags.size());
    for (const Tag &tag : tags)
        intervals.push_back(tag.interval ? std::chrono::milliseconds(*tag.interval) : otherwise);
    return intervals;
}

PollPlan::PollPlan(const std::vector<Tag> &tags_, const LineSettings &line_, const PlanLimits &limits)
    : tags(tags_), line(line_), cost(requestCost(line)), bauds(std::begin(kBauds), std::end(kBauds))
{
    if (std::find(bauds.begin(), bauds.end(), line.baud) == bauds.end())
        bauds.push_back(line.baud);
    std::map<int, std::vector<int>> membersOfIntervals;
    for (size_t i = 0; i < tags.size(); ++i) {
        membersOfIntervals[tags[i].interval.value_or(kUsualInterval)].push_back(int(i));
        hasIntervals = hasIntervals || tags[i].interval;
    }
    for (const auto &[interval, members] : membersOfIntervals)
        addGroup(interval, members, limits);
    for (size_t i = 0; i < bauds.size(); ++i)
        loads.push_back(loadAt(i));
}

// At another rate another plan may be the quickest.
void PollPlan::addGroup(int interval, const std::vector<int> &members, const PlanLimits &limits)
{
    Group group = {interval, members, {}, {}, {}};
    for (const int member : members)
        group.items.push_back(tags[size_t(member)].item);
    group.plan = planReads(group.items, cost, limits);
    for (const int baud : bauds) {
        LineSettings other = line;
        other.baud = baud;
        const RequestCost itsCost = requestCost(other);
        group.times.push_back(planReads(group.items, itsCost, limits).time(itsCost));
    }
    groups.push_back(std::move(group));
}

// Each label once, in the order of the tags.
QStringList PollPlan::labelsOf(const Group &group, const PlannedRequest &request) const
{
    std::vector<int> members;
    for (const PlanPart &part : request.parts)
        members.push_back(group.tags[size_t(part.item)]);
    std::sort(members.begin(), members.end());
    members.erase(std::unique(members.begin(), members.end()), members.end());
    QStringList labels;
    for (const int member : members)
        labels << tags[size_t(member)].label();
    return labels;
}

int PollPlan::gapOf(const Group &group, const PlannedRequest &request) const
{
    int places = 0;
    for (const auto &[begin, end] : gapsOf(request, group.items))
        places += end - begin;
    return places;
}

Json PollPlan::json(const Group &group, const PlannedRequest &request) const
{
    Json labels = Json::array();
    for (const QString &label : labelsOf(group, request))
        labels.push_back(jsonText(label));
    return {{"request", jsonText(request.text())},
            {"items", labels},
            {"gap", gapOf(group, request)},
            {"characters", kRequestCharacters + request.lineSize},
            {"ms", milliseconds(cost.of(request.lineSize))}};
}

Json PollPlan::json(const Group &group) const
{
    Json requests = Json::array();
    for (const PlannedRequest &request : group.plan.requests)
        requests.push_back(json(group, request));
    Json rates = Json::array();
    for (size_t i = 0; i < bauds.size(); ++i) {
        Json rate = {{"baud", bauds[i]}, {"ms", milliseconds(group.times[i])}};
        if (hasIntervals)
            rate["kept"] = loads[i] <= 1;
        rates.push_back(rate);
    }
    Json fields = {{"ms", milliseconds(group.plan.time(cost))}, {"requests", requests}, {"rates", rates}};
    if (hasIntervals)
        fields["interval"] = group.interval;
    return fields;
}

Json PollPlan::json() const
{
    Json all = Json::array();
    for (const Group &group : groups)
        all.push_back(json(group));
    return {{"baud", line.baud},
            {"ms", milliseconds(time())},
            {"valuesPerSecond", std::round(valuesPerSecond() * 10) / 10},
            {"groups", all}};
}

QString PollPlan::text(const Group &group, const PlannedRequest &request) const
{
    QStringList labels = labelsOf(group, request);
    const int others = int(labels.size()) - kShownLabels;
    if (others > 0)
        labels = labels.mid(0, kShownLabels) << filled("and %1 more", others);
    QStringList parts = {labels.join(' ')};
    if (const int gap = gapOf(group, request))
        parts << filled("a gap of %1", gap);
    parts << counted(kRequestCharacters + request.lineSize, "character")
          << millisecondsText(cost.of(request.lineSize));
    return parts.join(", ");
}

QString PollPlan::timesText(const Group &group) const
{
    QStringList times;
    for (size_t i = 0; i < bauds.size(); ++i)
        times << filled("%1 at %2 baud", millisecondsText(group.times[i]), bauds[i]);
    return times.join(", ");
}

std::vector<std::pair<QString, QString>> PollPlan::lines() const
{
    std::vector<std::pair<QString, QString>> lines = {
        {"requests",
         filled("%1, %2 a poll at %3 baud: %4 values per second", requestCount(), millisecondsText(time()),
                line.baud, shortNumber(std::round(valuesPerSecond())))}};
    for (const Group &group : groups) {
        if (hasIntervals)
            lines.emplace_back(filled("every %1 ms", group.interval), timesText(group));
        for (const PlannedRequest &request : group.plan.requests)
            lines.emplace_back(request.text(), text(group, request));
    }
    for (size_t i = 0; hasIntervals && i < bauds.size(); ++i)
        lines.emplace_back(filled("%1 baud", bauds[i]),
                           filled("%1: the line is busy %2 % of the time",
                                  loads[i] <= 1 ? "all intervals are kept" : "not all intervals can be kept",
                                  std::llround(loads[i] * 100)));
    return lines;
}

// How much of its time the line is busy with all groups at one of the rates.
double PollPlan::loadAt(size_t rate) const
{
    double load = 0;
    for (const Group &group : groups)
        load += double(group.times[rate]) / (group.interval * 1e6);
    return load;
}

double PollPlan::valuesPerSecond() const
{
    double values = 0;
    for (const Tag &tag : tags)
        values += isText(tag.item.type) ? 1 : tag.item.count;
    return values * 1e9 / double(time());
}

qint64 PollPlan::time() const
{
    qint64 all = 0;
    for (const Group &group : groups)
        all += group.plan.time(cost);
    return all;
}

int PollPlan::requestCount() const
{
    size_t all = 0;
    for (const Group &group : groups)
        all += group.plan.requests.size();
    return int(all);
}

} // namespace host
