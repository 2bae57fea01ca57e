// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How the publishing of a line is going, as it is published itself.

#ifndef HOST_BROKER_HEALTH_H
#define HOST_BROKER_HEALTH_H

#include "host/base/cause.h"

#include <QByteArray>

#include <chrono>
#include <map>
#include <optional>

namespace host {

struct Health
{
    using Time = std::chrono::system_clock::time_point;
    using Duration = std::chrono::steady_clock::duration;

    Time time;
    bool isSimulated = false;      // the controller is the simulated one
    int attempts = 0;              // requests sent to controllers, repetitions included
    qint64 answers = 0;            // readings of an item that brought values
    std::map<Cause, int> errors;   // readings of an item that did not
    Duration usualAnswerTime = {}; // half of the answers took no longer
    Duration longAnswerTime = {};  // nine of ten
    Duration longestAnswerTime = {};
    int polls = 0;
    int latePolls = 0;
    qint64 queued = 0;  // messages that wait for the broker
    qint64 dropped = 0; // messages that it will never get
    int writes = 0;     // commands that were done
    int refusals = 0;   // commands that were not
    int connections = 0;
    std::optional<Time> connectedSince;
};

// The payload; docs/json.md tells its members.
QByteArray healthText(const Health &health);

} // namespace host

#endif
