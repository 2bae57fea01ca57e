// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The topics under which a line is published.
//
//   PREFIX/NAME               the value of an item
//   PREFIX/NAME/set           whoever writes here wants the item written
//   PREFIX/NAME/set/result    what became of that
//   PREFIX/group/500ms        the values of all items that are polled at this interval
//   PREFIX/status             online or offline
//   PREFIX/health             how it is going

#ifndef HOST_BROKER_TOPICS_H
#define HOST_BROKER_TOPICS_H

#include "host/items/tag.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>
#include <vector>

namespace host {

class Topics
{
public:
    // Fails on a prefix that cannot begin a topic.
    explicit Topics(const QString &prefix);

    QString prefix() const { return begin; }
    QByteArray item(const QString &name) const { return below(name); }
    QByteArray set(const QString &name) const { return below(name + "/set"); }
    QByteArray result(const QString &name) const { return below(name + "/set/result"); }
    QByteArray group(std::chrono::milliseconds interval) const;
    QByteArray status() const { return below("status"); }
    QByteArray health() const { return below("health"); }

    // The name of the item that a command is for, be there such an item or not; nothing when the topic is
    // none of a command.
    std::optional<QString> commandedName(const QByteArray &topic) const;

    // The filters that bring every command for items that are named like these.
    std::vector<QByteArray> commandFilters(const std::vector<Tag> &tags) const;

private:
    QByteArray below(const QString &name) const { return (begin + '/' + name).toUtf8(); }

    QString begin;
};

// The topic that a line has unless the user names another: s7ppi/MACHINE/PORT, the port without its
// directory.
QString usualTopic(const QString &machine, const QString &port);

// Fails on the first tag whose name cannot stand in a topic, or whose topics another one has.
void checkNames(const std::vector<Tag> &tags, const Topics &topics);

} // namespace host

#endif
