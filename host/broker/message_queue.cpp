// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/broker/message_queue.h"

#include "host/base/failure.h"
#include "host/base/filled.h"

#include <algorithm>

namespace host {

namespace {

// Bytes that wait in memory at most while a spool takes nothing.
constexpr qint64 kMostInMemory = 8 << 20;

// Messages that are too old are looked for so often, and so many of them removed at a time.
constexpr std::chrono::seconds kAgeLookInterval(10);
constexpr int kRemovedAtOnce = 1000;

qint64 millisecondsOf(MessageQueue::Time time)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

} // namespace

MessageQueue::MessageQueue(const QueueLimits &limits_, const std::optional<QString> &spool, const Tell &tell_)
    : limits(limits_), name(spool), tell(tell_)
{
    if (!name)
        return;
    try {
        openFile();
    } catch (const SpoolFault &fault) {
        beginAnew(fault.text());
    }
}

void MessageQueue::openFile()
{
    file = std::make_unique<SpoolFile>(*name);
    lastId = std::max(lastId, file->lastId());
}

// Does something with the file. What it does not take stays where it is; a damaged one is replaced.
template <typename Action> void MessageQueue::withFile(const Action &action)
{
    try {
        action();
        lastTold.clear();
    } catch (const SpoolFault &fault) {
        if (fault.isDamage)
            beginAnew(fault.text());
        else
            tellOnce(filled("the spool %1 takes no messages, which wait in memory: %2", *name, fault.text()));
    }
}

// Nobody can say what was in a damaged file but how much it should have been.
void MessageQueue::beginAnew(const QString &reason)
{
    droppedMessages += file ? file->count() : 0;
    file.reset();
    const QString aside = setAside(*name);
    tell(filled("the spool %1 is damaged: %2; it is now %3, and another one is begun", *name, reason, aside));
    try {
        openFile();
    } catch (const SpoolFault &fault) {
        throw Failure(ExitCode::Usage, filled("the spool %1 cannot be begun anew: %2", *name, fault.text()),
                      "name another file with --spool");
    }
}

void MessageQueue::tellOnce(const QString &text)
{
    if (text != lastTold)
        tell(text);
    lastTold = text;
}

void MessageQueue::put(const std::vector<Message> &messages, Time now)
{
    for (const Message &message : messages) {
        recent.emplace(++lastId, WaitingMessage{message, millisecondsOf(now)});
        recentBytes += sizeOf(message);
    }
    keepToSize();
}

std::vector<QueuedMessage> MessageQueue::next(int count)
{
    std::vector<QueuedMessage> found;
    if (file && file->count() > 0 && handedOut < file->lastId())
        withFile([&] { found = file->read(handedOut, count); });
    if (!found.empty())
        handedOut = found.back().id;
    for (auto it = recent.upper_bound(handedOut); it != recent.end() && int(found.size()) < count; ++it) {
        found.push_back({it->first, it->second.message});
        handedOut = it->first;
    }
    return found;
}

void MessageQueue::forget(std::map<qint64, WaitingMessage>::iterator message)
{
    recentBytes -= sizeOf(message->second.message);
    recent.erase(message);
}

void MessageQueue::remove(const std::vector<qint64> &ids)
{
    std::vector<qint64> stored;
    for (const qint64 id : ids) {
        const auto found = recent.find(id);
        if (found != recent.end())
            forget(found);
        else
            stored.push_back(id);
    }
    if (file && !stored.empty())
        withFile([&] { file->remove(stored); });
}

void MessageQueue::store(Time now)
{
    dropOld(now);
    if (!file || recent.empty())
        return;
    withFile([this] {
        file->append(recent);
        recent.clear();
        recentBytes = 0;
    });
    keepToSize();
}

void MessageQueue::keepToSize()
{
    const auto excess = [this] { return (file ? file->size() : 0) + recentBytes - limits.size; };
    while (file && file->count() > 0 && excess() > 0) {
        const qint64 share = excess() * file->count() / file->size();
        const qint64 before = droppedMessages;
        withFile([&] { droppedMessages += file->removeOldest(int(share) + 1); });
        if (droppedMessages == before)
            break;
    }
    const qint64 most = file ? std::min(limits.size, kMostInMemory) : limits.size;
    for (; !recent.empty() && recentBytes > most; ++droppedMessages)
        forget(recent.begin());
}

void MessageQueue::dropOld(Time now)
{
    if (now < nextLook && now + kAgeLookInterval >= nextLook)
        return;
    nextLook = now + kAgeLookInterval;
    const qint64 oldest = millisecondsOf(now - limits.age);
    if (file && file->count() > 0)
        withFile([&] {
            int removed = 0;
            do
                droppedMessages += removed = file->removeBefore(oldest, kRemovedAtOnce);
            while (removed == kRemovedAtOnce);
        });
    for (; !recent.empty() && recent.begin()->second.time < oldest; ++droppedMessages)
        forget(recent.begin());
}

} // namespace host
