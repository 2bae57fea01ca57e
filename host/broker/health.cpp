// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/broker/health.h"

#include "host/text/json.h"
#include "host/text/time_text.h"

#include <cmath>
#include <utility>

namespace host {

namespace {

// Tenths of milliseconds are as much as a serial line can tell.
double inMilliseconds(Health::Duration duration)
{
    return std::round(std::chrono::duration<double, std::milli>(duration).count() * 10) / 10;
}

} // namespace

QByteArray healthText(const Health &health)
{
    Json errors = Json::object();
    for (const auto &[cause, count] : health.errors)
        errors[causeWord(cause).toStdString()] = count;
    Json record = {
        {"time", jsonText(timeText(health.time))},
        {"attempts", health.attempts},
        {"answers", health.answers},
        {"errors", std::move(errors)},
        {"answerTimes",
         {{"p50", inMilliseconds(health.usualAnswerTime)},
          {"p90", inMilliseconds(health.longAnswerTime)},
          {"longest", inMilliseconds(health.longestAnswerTime)}}},
        {"polls", health.polls},
        {"latePolls", health.latePolls},
        {"queued", health.queued},
        {"dropped", health.dropped},
        {"writes", health.writes},
        {"refusals", health.refusals},
        {"connections", health.connections},
        {"connectedSince", health.connectedSince ? jsonText(timeText(*health.connectedSince)) : Json()}};
    if (health.isSimulated)
        record["simulated"] = true;
    return QByteArray::fromStdString(record.dump());
}

} // namespace host
