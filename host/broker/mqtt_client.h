// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The connection to an MQTT broker, on a thread of its own, so that nothing that the network does delays a
// poll.
//
// The thread connects, and tries again with growing pauses for as long as it takes. What it is handed it
// publishes in that order, and reports when the broker has taken it. Of two messages with the same topic the
// second leaves when the first was taken: so a broker that is lost in between, and gets the first again,
// never sees them in another order.

#ifndef HOST_BROKER_MQTT_CLIENT_H
#define HOST_BROKER_MQTT_CLIENT_H

#include "host/base/failure.h"
#include "host/broker/broker_address.h"
#include "host/broker/credentials.h"
#include "host/broker/message.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace host {

struct MqttSettings
{
    BrokerAddress broker;
    int version = 5; // or 3, for 3.1.1
    int qos = 1;
    QByteArray clientId;
    std::optional<Credentials> credentials;
    std::optional<QString> authorities; // a file of certificates; those of the system unless given
    std::optional<QString> certificate; // with which the client shows who it is, and its key
    std::optional<QString> key;
    Message will;                  // what the broker publishes when the client is gone
    std::vector<Message> greeting; // what is published first on every connection
    Message farewell;              // what is published last
    std::vector<QByteArray> subscriptions;
};

// What happened, in the order of the members.
struct MqttNews
{
    std::vector<qint64> taken; // the numbers of messages that the broker has, or will never take
    int untaken = 0;           // how many of these it will never take
    QString untakenReason;
    std::vector<SetRequest> requests;
    int lostRequests = 0; // that came faster than anybody fetched them
    bool wasLost = false; // the connection; what was handed over before and was not taken is forgotten
    QString lossReason;   // also when there was no connection
    int connection = 0;   // the number of the one that there is; 0: none
    std::optional<Failure> refusal; // the broker will never let this client in: nothing more is tried
};

class MqttClient
{
public:
    // Fails when a file of the settings cannot be read, or is none that TLS could use.
    explicit MqttClient(const MqttSettings &settings);

    // Says farewell if there is a connection, and ends it.
    ~MqttClient();

    MqttClient(const MqttClient &) = delete;
    MqttClient &operator=(const MqttClient &) = delete;

    // Hands messages over for the connection of that number; they are forgotten when it is gone.
    void publish(int connection, std::vector<QueuedMessage> messages);

    // What happened since the last call.
    MqttNews takeNews();

private:
    class Worker;

    std::unique_ptr<Worker> worker;
};

} // namespace host

#endif
