// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Messages that wait until the broker has taken them, in the order in which they were made.
//
// What the broker takes at once never touches the disk. What it has not taken when the next request to a
// controller begins is written to the spool by store(), so that a kill loses the messages of one poll at
// most; without a spool it stays in memory. There is room for so many bytes and so long a time; then the
// oldest messages are dropped, and counted. A spool that is damaged is set aside, and another one begun.

#ifndef HOST_BROKER_MESSAGE_QUEUE_H
#define HOST_BROKER_MESSAGE_QUEUE_H

#include "host/broker/message.h"
#include "host/broker/spool_file.h"

#include <QString>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace host {

struct QueueLimits
{
    qint64 size; // bytes, messages with what is needed for them
    std::chrono::milliseconds age;
};

class MessageQueue
{
public:
    using Time = std::chrono::system_clock::time_point;
    using Tell = std::function<void(const QString &)>;

    // Keeps the messages in memory, or in the spool of that name. What a spool has from before comes first.
    // tell is called with what the user should know of a spool.
    MessageQueue(const QueueLimits &limits, const std::optional<QString> &spool, const Tell &tell);

    void put(const std::vector<Message> &messages, Time now);

    // Hands out the next messages, so many at most. They stay until they are removed.
    std::vector<QueuedMessage> next(int count);

    // The broker has taken these.
    void remove(const std::vector<qint64> &ids);

    // Lets all messages that are still there be handed out again.
    void rewind() { handedOut = 0; }

    // Writes what is only in memory to the spool, and drops what is too old.
    void store(Time now);

    qint64 count() const { return (file ? file->count() : 0) + qint64(recent.size()); }
    qint64 dropped() const { return droppedMessages; }

private:
    template <typename Action> void withFile(const Action &action);
    void openFile();
    void beginAnew(const QString &reason);
    void keepToSize();
    void dropOld(Time now);
    void forget(std::map<qint64, WaitingMessage>::iterator message);
    void tellOnce(const QString &text);

    QueueLimits limits;
    std::optional<QString> name;
    Tell tell;
    std::unique_ptr<SpoolFile> file;
    std::map<qint64, WaitingMessage> recent; // newer than all in the file
    qint64 recentBytes = 0;
    qint64 lastId = 0;
    qint64 handedOut = 0; // the last number that was
    qint64 droppedMessages = 0;
    Time nextLook; // for messages that are too old
    QString lastTold;
};

} // namespace host

#endif
