// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/broker/item_messages.h"

#include "host/text/time_text.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <utility>

namespace host {

namespace {

// Between two looks for heartbeats, so that thousands of items are not looked at after every request.
constexpr std::chrono::milliseconds kHeartbeatLookInterval(250);

std::vector<std::optional<double>> numbersOf(const Tag &tag, const QByteArray &data)
{
    std::vector<std::optional<double>> numbers;
    for (const Value &value : decodeValues(tag.item, data))
        numbers.push_back(shownNumber(tag, value));
    return numbers;
}

bool differ(std::optional<double> before, std::optional<double> now, double deadband)
{
    return before && now ? std::abs(*before - *now) > deadband : before.has_value() || now.has_value();
}

} // namespace

Json valueJson(const Tag &tag, const std::vector<Value> &values)
{
    Json list = jsonValues(tag, values);
    return tag.item.count > 1 && !isText(tag.item.type) ? list : list.front();
}

ItemMessages::ItemMessages(const std::vector<Tag> &tags_,
                           const std::vector<std::chrono::milliseconds> &intervals, const Topics &topics_,
                           PayloadForm form_, std::chrono::milliseconds heartbeat_, bool isSimulated_)
    : tags(tags_), topics(topics_), form(form_), heartbeat(heartbeat_), isSimulated(isSimulated_),
      states(tags.size()), groupOfItems(tags.size())
{
    std::map<std::chrono::milliseconds, std::vector<int>> itemsOfIntervals;
    for (size_t i = 0; i < tags.size(); ++i)
        itemsOfIntervals[intervals[i]].push_back(int(i));
    for (const auto &[interval, items] : itemsOfIntervals) {
        for (const int item : items)
            groupOfItems[size_t(item)] = int(groups.size());
        groups.push_back({interval, items, false, Time()});
    }
}

void ItemMessages::answered(int item, const QByteArray &data, std::chrono::system_clock::time_point time,
                            Time now)
{
    const Tag &tag = tags[size_t(item)];
    State &state = states[size_t(item)];
    if (data != state.data)
        decodeValues(tag.item, data); // fails when they are none
    state.data = data;
    state.time = time;
    state.cause = std::nullopt;
    if (isChanged(tag, state))
        publishChange(item, now);
}

void ItemMessages::failed(int item, Cause cause, Time now)
{
    State &state = states[size_t(item)];
    state.cause = cause;
    if (form != PayloadForm::Plain && isChanged(tags[size_t(item)], state))
        publishChange(item, now);
}

bool ItemMessages::isChanged(const Tag &tag, const State &state) const
{
    if (!state.wasPublished || state.cause != state.publishedCause)
        return true;
    if (state.data == state.publishedData)
        return false;
    if (!tag.deadband || state.publishedData.isNull())
        return true;
    const std::vector<std::optional<double>> numbers = numbersOf(tag, state.data);
    for (size_t i = 0; i < numbers.size(); ++i)
        if (differ(state.publishedNumbers[i], numbers[i], *tag.deadband))
            return true;
    return false;
}

void ItemMessages::publishChange(int item, Time now)
{
    if (form == PayloadForm::Group) {
        groups[size_t(groupOfItems[size_t(item)])].isChanged = true;
        noteAsPublished(item, now);
    } else {
        publish(item, now);
    }
}

void ItemMessages::noteAsPublished(int item, Time now)
{
    const Tag &tag = tags[size_t(item)];
    State &state = states[size_t(item)];
    state.wasPublished = true;
    state.publishedData = state.data;
    state.publishedCause = state.cause;
    state.publishedAt = now;
    if (tag.deadband && !state.data.isNull())
        state.publishedNumbers = numbersOf(tag, state.data);
}

void ItemMessages::publish(int item, Time now)
{
    noteAsPublished(item, now);
    const QByteArray payload = form == PayloadForm::Plain ? plainText(item) : textOf(json(item));
    made.push_back({topics.item(tags[size_t(item)].label()), payload});
}

// The time of a group is that of its newest value.
void ItemMessages::publish(Group &group, Time now)
{
    group.isChanged = false;
    group.publishedAt = now;
    std::optional<std::chrono::system_clock::time_point> newest;
    Json values = Json::object();
    for (const int item : group.items) {
        const State &state = states[size_t(item)];
        if (!state.isKnown())
            continue;
        if (!state.data.isNull())
            newest = newest ? std::max(*newest, state.time) : state.time;
        values[tags[size_t(item)].label().toStdString()] = json(item);
        noteAsPublished(item, now);
    }
    const Json message = {{"time", newest ? json(*newest) : Json()}, {"values", std::move(values)}};
    made.push_back({topics.group(group.interval), textOf(message)});
}

Json ItemMessages::json(int item)
{
    const Tag &tag = tags[size_t(item)];
    const State &state = states[size_t(item)];
    const bool hasValue = !state.data.isNull();
    Json message = {{"value", hasValue ? valueJson(tag, decodeValues(tag.item, state.data)) : Json()}};
    if (!tag.unit.isEmpty())
        message["unit"] = jsonText(tag.unit);
    message["time"] = hasValue ? json(state.time) : Json();
    message["quality"] = state.cause ? "bad" : "good";
    if (state.cause)
        message["cause"] = jsonText(causeWord(*state.cause));
    return message;
}

Json ItemMessages::json(std::chrono::system_clock::time_point time)
{
    if (timeText.is_null() || time != textTime)
        timeText = jsonText(host::timeText(time));
    textTime = time;
    return timeText;
}

// What whoever subscribes reads. Bytes of a controller may be no text.
QByteArray ItemMessages::textOf(Json message) const
{
    if (isSimulated)
        message["simulated"] = true;
    return QByteArray::fromStdString(message.dump(-1, ' ', false, Json::error_handler_t::replace));
}

QByteArray ItemMessages::plainText(int item) const
{
    const Tag &tag = tags[size_t(item)];
    const std::vector<Value> values = decodeValues(tag.item, states[size_t(item)].data);
    if (isText(tag.item.type))
        return QByteArray::fromStdString(valueJson(tag, values).get<std::string>());
    return shownTexts(tag, values).join(',').toUtf8();
}

bool ItemMessages::isDue(const State &state, Time now) const
{
    if (!state.isKnown() || (form == PayloadForm::Plain && state.data.isNull()))
        return false;
    return !state.wasPublished || now - state.publishedAt >= heartbeat;
}

void ItemMessages::endPoll(Time now)
{
    const bool looks = now >= nextLook;
    if (looks)
        nextLook = now + kHeartbeatLookInterval;
    if (form == PayloadForm::Group) {
        for (Group &group : groups) {
            const auto isKnown = [this](int item) { return states[size_t(item)].isKnown(); };
            const bool isBeat = looks && now - group.publishedAt >= heartbeat &&
                                std::any_of(group.items.begin(), group.items.end(), isKnown);
            if (group.isChanged || isBeat)
                publish(group, now);
        }
    } else if (looks) {
        for (size_t i = 0; i < states.size(); ++i)
            if (isDue(states[i], now))
                publish(int(i), now);
    }
}

void ItemMessages::repeatAll()
{
    for (State &state : states)
        state.wasPublished = false;
    for (Group &group : groups)
        group.publishedAt = Time();
    nextLook = Time();
}

std::vector<Message> ItemMessages::take()
{
    return std::exchange(made, {});
}

} // namespace host
