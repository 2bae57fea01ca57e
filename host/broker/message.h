// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is published, and what comes from others.

#ifndef HOST_BROKER_MESSAGE_H
#define HOST_BROKER_MESSAGE_H

#include <QByteArray>

namespace host {

struct Message
{
    QByteArray topic;
    QByteArray payload;
    bool isRetained = true;      // the broker keeps it for those who subscribe later
    QByteArray correlation = {}; // what MQTT 5 sends along with an answer, as the request had it
};

// A message that waits until the broker has taken it.
struct QueuedMessage
{
    qint64 id; // they grow with time; 0: it does not wait in a queue
    Message message;
};

// A command that somebody sent over the broker.
struct SetRequest
{
    QByteArray topic;
    QByteArray payload;
    bool isRetained; // it was sent at some time before
    QByteArray correlation;
};

} // namespace host

#endif
