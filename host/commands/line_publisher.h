// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Polls the items of a line and keeps a broker informed of them; between two requests it does what commands
// from there ask for.

#ifndef HOST_COMMANDS_LINE_PUBLISHER_H
#define HOST_COMMANDS_LINE_PUBLISHER_H

#include "host/base/outcome.h"
#include "host/base/service_notice.h"
#include "host/broker/health.h"
#include "host/broker/item_messages.h"
#include "host/broker/message_queue.h"
#include "host/broker/metrics.h"
#include "host/broker/mqtt_client.h"
#include "host/broker/rate_limit.h"
#include "host/broker/topics.h"
#include "host/driver/connection.h"
#include "host/items/assignment.h"
#include "host/items/write_guard.h"
#include "host/polling/poller.h"
#include "host/watch/answer_times.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QHash>
#include <QString>

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace host {

struct PublishSettings
{
    MqttSettings mqtt;
    PayloadForm form = PayloadForm::Record;
    std::chrono::milliseconds heartbeat{};
    std::vector<std::chrono::milliseconds> intervals; // one for each item
    PlanLimits plan;
    QueueLimits queue{};
    std::optional<QString> spool; // a file; without one the queue is in memory
    int writeRate = 0;            // commands that are done in a second at most
    std::optional<int> polls;     // how many; without polls and time until interrupted
    std::optional<std::chrono::milliseconds> time;
    bool survivesLoss = false;      // a lost port is waited for
    std::optional<QString> metrics; // a file for the node exporter
};

class LinePublisher
{
public:
    // All of them must outlive it.
    LinePublisher(Connection &connection, const std::vector<Tag> &tags, const Topics &topics,
                  const PublishSettings &settings, ServiceNotice &service);

    // Publishes as long as the settings say. Fails when the port is lost, and when the broker refuses this
    // client for good.
    void run();

    // Tells the broker that nothing more comes, and why if there is a reason; what it does not take soon
    // stays in the spool. Fails with the reason, or when the broker refuses this client for good.
    void finish(const std::optional<Failure> &loss);

    ExitCode firstFailure() const { return outcome.code(); }

private:
    using Clock = std::chrono::steady_clock;
    using WallClock = std::chrono::system_clock;

    // A command that may be done, and whoever wants to know what became of it.
    struct PendingWrite
    {
        Assignment assignment;
        QByteArray resultTopic;
        QByteArray correlation;
    };

    PollEvents events();
    void take(int item, const ItemReading &reading);
    void noteFailure(int item, const Failure &failure);
    void noteAnswer(int item);
    void noteAnswerTime(WatchDuration time);
    void endFailure(int item);
    void failAll(Cause cause);
    void notePortLoss();
    void pauseUntil(const QDeadlineTimer &end);

    void exchange();
    int failingCount() const;
    QString statusText() const;
    void takeNews(const MqttNews &news);
    void noteConnection(const MqttNews &news);
    void tellLoss(const QString &reason);
    void handOver();
    Health healthNow(const AnswerTimes &times) const;
    void publishHealth();
    void writeMetrics(bool isUp);
    void publishNow(const Message &message);

    void takeRequest(const SetRequest &request);
    void checkOtherTags(const Assignment &assignment) const;
    void queueWrite(const QString &name, const SetRequest &request);
    void writeNext();
    void refuse(const QString &name, const SetRequest &request, const Failure &reason);
    void tellRefusal(const QString &name, const Failure &reason);
    void answer(const PendingWrite &write, const QByteArray &payload);

    void drain();
    void tellRest() const;

    Connection &connection;
    const std::vector<Tag> &tags;
    const Topics &topics;
    const PublishSettings &settings;
    ServiceNotice &service;
    Outcome outcome;
    QHash<QString, int> itemsByName;
    const WriteGuard guard;

    ItemMessages messages;
    MessageQueue queue;
    Clock::time_point lastPut;
    int brokerConnection = 0; // its number; 0: none
    int handedOver = 0;       // messages that the client has and the broker not yet
    bool isLossTold = false;
    QString untakenReason; // as told last

    std::deque<PendingWrite> pendingWrites;
    RateLimit writeLimit;
    RateLimit refusalLog;

    Health health;
    AnswerTimes answerTimes; // since the health was published last
    Clock::time_point nextHealth;
    std::optional<MetricsFile> metricsFile;
    AnswerTimes metricsTimes; // since it was written last
    qint64 answerCount = 0;
    WatchDuration answerSum = {};
    Clock::time_point nextMetrics;
    std::vector<QString> failures;    // why an item cannot be read; empty when it can
    QHash<QString, int> failingItems; // how many for each reason
    bool isPortLost = false;

    const Connection::MessageRedirect redirect;
    Poller poller;
    std::unique_ptr<MqttClient> client; // last: it ends first
};

} // namespace host

#endif
