// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/broker/topics.h"

#include "common/duration.h"
#include "common/terminal_text.h"
#include "host/base/failure.h"
#include "host/base/filled.h"

#include <algorithm>
#include <map>
#include <set>

namespace host {

namespace {

const QString kSetEnd = "/set";

// MQTT itself allows 65535 bytes; nobody can handle such topics.
constexpr int kLongestTopic = 1000;

bool isForbidden(QChar character)
{
    return character == '+' || character == '#' || character.category() == QChar::Other_Control ||
           character.isNonCharacter();
}

// Why a text cannot stand in a topic; empty when it can.
QString faultIn(const QString &text)
{
    if (text.isEmpty())
        return "is empty";
    if (std::any_of(text.begin(), text.end(), isForbidden))
        return "has a +, a # or a control character in it";
    if (text.startsWith('/') || text.endsWith('/') || text.contains("//"))
        return "has an empty level: a / at its beginning or end, or two in a row";
    return text.toUtf8().size() > kLongestTopic ? filled("has more than %1 bytes", kLongestTopic) : QString();
}

QString quoted(const QString &text)
{
    return '"' + common::visibleText(text) + '"';
}

QString withoutWildcards(QString level)
{
    for (QChar &character : level)
        if (isForbidden(character) || character == '/')
            character = '_';
    return level;
}

// Takes a topic for its owner. Fails when another one has it.
void claim(std::map<QByteArray, QString> &owners, const QByteArray &topic, const QString &owner)
{
    const auto [place, isNew] = owners.emplace(topic, owner);
    if (!isNew)
        throw Failure(ExitCode::Usage,
                      filled("%1 and %2 would be published under the same topic, %3", quoted(place->second),
                             quoted(owner), QString::fromUtf8(topic)),
                      "give one of them another name in a tag file");
}

} // namespace

Topics::Topics(const QString &prefix) : begin(prefix)
{
    const QString fault =
        prefix.startsWith('$') ? "begins with a $, as the broker's own topics do" : faultIn(prefix);
    if (!fault.isEmpty())
        throw Failure(ExitCode::Usage, filled("the topic %1 %2", quoted(prefix), fault),
                      "name another with --topic, as --topic plant/press3");
}

QByteArray Topics::group(std::chrono::milliseconds interval) const
{
    return below("group/" + QString::fromStdString(common::durationText(interval)));
}

std::optional<QString> Topics::commandedName(const QByteArray &topic) const
{
    const QString text = QString::fromUtf8(topic);
    const QString before = begin + '/';
    const int length = int(text.size() - before.size() - kSetEnd.size());
    if (!text.startsWith(before) || !text.endsWith(kSetEnd) || length < 1)
        return std::nullopt;
    return text.mid(int(before.size()), length);
}

// A filter has one + for each level of a name.
std::vector<QByteArray> Topics::commandFilters(const std::vector<Tag> &tags) const
{
    std::set<int> depths = {1};
    for (const Tag &tag : tags)
        depths.insert(int(tag.label().count('/')) + 1);
    std::vector<QByteArray> filters;
    filters.reserve(depths.size());
    for (const int depth : depths)
        filters.push_back(begin.toUtf8() + QByteArray("/+").repeated(depth) + kSetEnd.toUtf8());
    return filters;
}

QString usualTopic(const QString &machine, const QString &port)
{
    const QString device = port.section('/', -1);
    return filled("s7ppi/%1/%2", withoutWildcards(machine), withoutWildcards(device));
}

void checkNames(const std::vector<Tag> &tags, const Topics &topics)
{
    std::map<QByteArray, QString> owners = {{topics.status(), "status"}, {topics.health(), "health"}};
    for (const Tag &tag : tags) {
        const QString name = tag.label();
        const QString fault = faultIn(name);
        if (!fault.isEmpty())
            throw Failure(ExitCode::Usage, filled("%1 cannot stand in a topic: it %2", quoted(name), fault),
                          "give it another name in a tag file");
        if (name.startsWith("group/"))
            throw Failure(ExitCode::Usage,
                          filled("%1 cannot stand in a topic: group/ is for groups", quoted(name)),
                          "give it another name in a tag file");
        claim(owners, topics.item(name), name);
        claim(owners, topics.set(name), name);
        claim(owners, topics.result(name), name);
    }
}

} // namespace host
