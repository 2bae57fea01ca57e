// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The values of items as messages: one for each change and one at least every heartbeat.
//
// A number changes when it differs from the one that was published last by more than the deadband of its tag,
// everything else when a byte of it does. An item that cannot be read keeps its last value and the time of
// that, and its quality is bad. A text alone, as PayloadForm::Plain has it, cannot say that, so it stays.
//
// Times are handed in.

#ifndef HOST_BROKER_ITEM_MESSAGES_H
#define HOST_BROKER_ITEM_MESSAGES_H

#include "host/base/cause.h"
#include "host/broker/message.h"
#include "host/broker/topics.h"
#include "host/items/tag.h"
#include "host/text/json.h"

#include <QByteArray>

#include <chrono>
#include <optional>
#include <vector>

namespace host {

enum class PayloadForm {
    Record, // {"value":21.5,"unit":"°C","time":"...","quality":"good"}
    Plain,  // 21.5; several values with commas between
    Group   // {"time":"...","values":{"Boiler":{"value":21.5,...},...}} of all items with the same interval
};

class ItemMessages
{
public:
    using Time = std::chrono::steady_clock::time_point;

    // One interval for each tag. Values of a simulated controller are marked, but for values alone.
    ItemMessages(const std::vector<Tag> &tags, const std::vector<std::chrono::milliseconds> &intervals,
                 const Topics &topics, PayloadForm form, std::chrono::milliseconds heartbeat,
                 bool isSimulated = false);

    // Takes the bytes of an item, as decodeValues() takes them, and when they came. Fails when they are no
    // values of the item's type.
    void answered(int item, const QByteArray &data, std::chrono::system_clock::time_point time, Time now);

    void failed(int item, Cause cause, Time now);

    // Makes the messages of groups that have something new, and of all that the heartbeat asks for. Items of
    // one poll belong together, so this is called between polls.
    void endPoll(Time now);

    // Lets every item that is known be published with the next endPoll(), as a broker that was started anew
    // has lost what it had.
    void repeatAll();

    // Hands out the messages that were made since the last call.
    std::vector<Message> take();

private:
    struct State
    {
        bool isKnown() const { return !data.isNull() || cause; }

        QByteArray data; // the last that were values
        std::chrono::system_clock::time_point time;
        std::optional<Cause> cause;

        // As it was published last.
        bool wasPublished = false;
        QByteArray publishedData;
        std::vector<std::optional<double>> publishedNumbers; // with a deadband only
        std::optional<Cause> publishedCause;
        Time publishedAt;
    };
    struct Group
    {
        std::chrono::milliseconds interval;
        std::vector<int> items;
        bool isChanged = false;
        Time publishedAt;
    };

    bool isChanged(const Tag &tag, const State &state) const;
    void publishChange(int item, Time now);
    void noteAsPublished(int item, Time now);
    void publish(int item, Time now);
    void publish(Group &group, Time now);
    Json json(int item);
    Json json(std::chrono::system_clock::time_point time);
    QByteArray textOf(Json message) const;
    QByteArray plainText(int item) const;
    bool isDue(const State &state, Time now) const;

    std::vector<Tag> tags;
    Topics topics;
    PayloadForm form;
    std::chrono::milliseconds heartbeat;
    bool isSimulated;
    std::vector<State> states;
    std::vector<Group> groups;
    std::vector<int> groupOfItems;
    Time nextLook;                                  // for items whose heartbeat is over
    std::chrono::system_clock::time_point textTime; // of the text that was made last
    Json timeText;                                  // of what came with one answer it is the same
    std::vector<Message> made;
};

// The values as JSON has them: one as it is, several as a list.
Json valueJson(const Tag &tag, const std::vector<Value> &values);

} // namespace host

#endif
