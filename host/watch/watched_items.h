// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is known of the watched items, and what there is to tell at the end.

#ifndef HOST_WATCH_WATCHED_ITEMS_H
#define HOST_WATCH_WATCHED_ITEMS_H

#include "host/items/tag.h"
#include "host/watch/answer_times.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>
#include <vector>

namespace host {

using WatchTime = std::chrono::steady_clock::time_point;

// What a poll of an item brought, compared with the poll before.
enum class WatchNews { None, Changed, Recovered };

class WatchedItem
{
public:
    explicit WatchedItem(const Tag &tag);

    // Takes note of a poll that brought values. The first values count as changed.
    WatchNews answered(const QStringList &values, WatchTime now);

    // Takes note of a poll that failed. True when that is news: the poll before did not fail, or with another
    // error.
    bool failed(const QString &error);

    Tag tag;
    QStringList values;                 // as texts; empty until there are any
    std::optional<WatchTime> changedAt; // none until other values came than the first
    bool isFailing = false;             // the last poll failed: the values are old
    QString lastError;                  // stays when later polls succeed
    int attempts = 0;                   // requests sent, repetitions included
    int errors = 0;                     // polls that failed in spite of them
};

// Items that are polled together.
struct WatchGroup
{
    std::chrono::milliseconds interval;
    int polls;
    int latePolls; // ended after the next one should have begun
    WatchDuration longestLateness;
};

struct Watch
{
    explicit Watch(const std::vector<Tag> &watched);

    // Of all groups.
    int polls() const;

    std::vector<WatchedItem> items;
    std::vector<WatchGroup> groups;          // by their interval
    WatchDuration time{};                    // since the first poll began
    int requests = 0;                        // sent, repetitions included
    qint64 values = 0;                       // that answers brought
    std::chrono::nanoseconds expectedTime{}; // of all answers, as the plan has it
    AnswerTimes answerTimes;                 // repetitions included
    QMap<QString, int> errors;               // failed polls of an item by their cause
    int returns = 0;                         // how often the port was lost and came back
    bool isSimulated = false;                // the controller is the simulated one
    QString port;                            // its name as the user knows it
    int station = 0;                         // of the items that name none
};

// The values that a poll of an item brought.
struct Reading
{
    std::vector<Value> values;
    WatchDuration answerTime;                   // of its slowest request
    std::chrono::system_clock::time_point time; // when the last of its bytes came
};

// The lines of the summary: polls, requests, values, answer times, attempts and errors per item, errors per
// cause.
QStringList watchSummary(const Watch &watch);

} // namespace host

#endif
