// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/line_publisher.h"

#include "host/base/filled.h"
#include "host/base/interruption.h"
#include "host/base/messages.h"
#include "host/broker/set_request.h"
#include "host/driver/write_plan.h"
#include "host/text/number_text.h"

#include <algorithm>
#include <utility>

#include <poll.h>

namespace host {

namespace {

constexpr int kDrainSlice = 5; // milliseconds, at the end

constexpr std::chrono::seconds kHealthInterval(30);

// As often as Prometheus usually looks.
constexpr std::chrono::seconds kMetricsInterval(15);

// How long a broker that is there may take for messages before they are written to the spool.
constexpr std::chrono::milliseconds kBrokerPatience(200);

// How long what is left may take at the end.
constexpr std::chrono::seconds kDrainTime(2);

// Messages that the client has at a time.
constexpr int kMostHandedOver = 1000;

// Refusals that are told in a second; whoever sends more fills no disk with messages.
constexpr int kToldRefusals = 5;

} // namespace

LinePublisher::LinePublisher(Connection &connection_, const std::vector<Tag> &tags_, const Topics &topics_,
                             const PublishSettings &settings_, ServiceNotice &service_)
    : connection(connection_), tags(tags_), topics(topics_), settings(settings_), service(service_),
      guard(tags, connection.stationId()),
      messages(tags, settings.intervals, topics, settings.form, settings.heartbeat, connection.isSimulated()),
      queue(settings.queue, settings.spool, reportWarning), writeLimit(settings.writeRate),
      refusalLog(kToldRefusals), failures(tags.size()),
      redirect(connection, reportNote, [this] { notePortLoss(); }),
      poller(connection, itemsOf(tags), settings.intervals, settings.plan, events()),
      client(std::make_unique<MqttClient>(settings.mqtt))
{
    for (size_t i = 0; i < tags.size(); ++i)
        itemsByName.insert(tags[i].label(), int(i));
    if (settings.metrics)
        metricsFile.emplace(*settings.metrics, reportWarning);
    if (queue.count() > 0)
        reportNote(counted(queue.count(), "message") + " in the spool from before");
}

PollEvents LinePublisher::events()
{
    return {[this](int item, const ItemReading &reading) { take(item, reading); },
            [this](WatchDuration time, std::chrono::nanoseconds /*expected*/) { noteAnswerTime(time); },
            [](const QString &text) { reportNote(text); }};
}

void LinePublisher::noteAnswerTime(WatchDuration time)
{
    answerTimes.add(time);
    metricsTimes.add(time);
    ++answerCount;
    answerSum += time;
}

void LinePublisher::take(int item, const ItemReading &reading)
{
    isPortLost = false;
    health.attempts += reading.attempts;
    try {
        if (reading.failure)
            throw Failure(*reading.failure);
        messages.answered(item, reading.data, reading.time, Clock::now());
    } catch (const Failure &failure) {
        noteFailure(item, failure);
        return;
    }
    noteAnswer(item);
}

void LinePublisher::noteAnswer(int item)
{
    ++health.answers;
    if (failures[size_t(item)].isEmpty())
        return;
    endFailure(item);
    if (failingItems.isEmpty())
        reportNote("all items can be read again");
}

void LinePublisher::endFailure(int item)
{
    const QString reason = std::exchange(failures[size_t(item)], QString());
    if (--failingItems[reason] == 0)
        failingItems.remove(reason);
}

// When the controller is gone, all items say the same; it is told for the first of them.
void LinePublisher::noteFailure(int item, const Failure &failure)
{
    ++health.errors[failure.cause()];
    messages.failed(item, failure.cause(), Clock::now());
    if (failure.isFinal())
        throw failure;
    outcome.keep(failure.code());
    if (failures[size_t(item)] == failure.text())
        return;
    if (!failures[size_t(item)].isEmpty())
        endFailure(item);
    failures[size_t(item)] = failure.text();
    if (failingItems[failure.text()]++ == 0)
        reportFailure(tags[size_t(item)].label(), failure);
}

void LinePublisher::failAll(Cause cause)
{
    for (size_t i = 0; i < tags.size(); ++i)
        messages.failed(int(i), cause, Clock::now());
}

// While a lost port is waited for, whoever subscribes has to see that the values are old.
void LinePublisher::notePortLoss()
{
    if (!std::exchange(isPortLost, true)) {
        failAll(Cause::PortLost);
        nextMetrics = Clock::time_point();
    }
    exchange();
}

// A request that is under way when the time is over is not cut. A broker that is away is no reason to have a
// service not begun: everything is kept for it.
void LinePublisher::run()
{
    service.allow(connection.longestRequest());
    service.ready();
    const QDeadlineTimer end =
        settings.time ? QDeadlineTimer(*settings.time) : QDeadlineTimer(QDeadlineTimer::Forever);
    while (!end.hasExpired()) {
        queue.store(WallClock::now());
        const PollTime due = poller.step();
        exchange();
        if (settings.polls && poller.rounds() >= *settings.polls)
            return;
        writeNext();
        QDeadlineTimer next;
        const std::chrono::nanoseconds wait = due - Clock::now();
        if (wait > std::chrono::nanoseconds::zero())
            next.setPreciseRemainingTime(0, wait.count(), Qt::PreciseTimer);
        pauseUntil(std::min(next, end));
    }
}

void LinePublisher::pauseUntil(const QDeadlineTimer &end)
{
    while (!end.hasExpired()) {
        connection.idle(int(std::min<qint64>(end.remainingTime(), kInterruptionSlice)));
        exchange();
        writeNext();
    }
}

// Does what there is to do between requests; nothing of it waits for the network. A request that hangs gives
// no sign of life; one that is not answered ends, and the pause until the next is full of them.
void LinePublisher::exchange()
{
    service.alive();
    if (service.wantsStatus())
        service.status(statusText());
    const Clock::time_point now = Clock::now();
    takeNews(client->takeNews());
    messages.endPoll(now);
    const std::vector<Message> fresh = messages.take();
    if (!fresh.empty()) {
        queue.put(fresh, WallClock::now());
        lastPut = now;
    }
    if (brokerConnection == 0 || now - lastPut > kBrokerPatience)
        queue.store(WallClock::now());
    handOver();
    if (brokerConnection != 0 && now >= nextHealth)
        publishHealth();
    if (metricsFile && now >= nextMetrics)
        writeMetrics(true);
}

int LinePublisher::failingCount() const
{
    return int(std::count_if(failures.begin(), failures.end(),
                             [](const QString &reason) { return !reason.isEmpty(); }));
}

QString LinePublisher::statusText() const
{
    const int failing = failingCount();
    QString line = counted(qint64(tags.size()), "item");
    if (isPortLost)
        line = connection.portLabel() + " is gone";
    else if (failing > 0)
        line = filled("%1 of %2 cannot be read", failing, line);
    if (brokerConnection != 0)
        return filled("%1; connected to %2", line, settings.mqtt.broker.text());
    return filled("%1; waiting for %2, %3 kept", line, settings.mqtt.broker.text(),
                  counted(queue.count(), "message"));
}

void LinePublisher::takeNews(const MqttNews &news)
{
    queue.remove(news.taken);
    handedOver -= int(news.taken.size());
    health.dropped += news.untaken;
    if (news.untaken > 0 && std::exchange(untakenReason, news.untakenReason) != news.untakenReason)
        reportWarning("the broker does not take a message: " + news.untakenReason);
    noteConnection(news);
    for (const SetRequest &request : news.requests)
        takeRequest(request);
    if (news.lostRequests > 0) {
        health.refusals += news.lostRequests;
        tellRefusal("commands", Failure(ExitCode::Usage, Cause::TooFast,
                                        filled("%1 came too fast and were thrown away", news.lostRequests),
                                        "send fewer at a time, and wait for the result of each"));
    }
    if (news.refusal)
        throw Failure(*news.refusal);
}

// A broker that was started anew may have lost what it had retained, so that everything is published once
// more.
void LinePublisher::noteConnection(const MqttNews &news)
{
    if (news.wasLost) {
        queue.rewind();
        handedOver = 0;
        tellLoss(news.lossReason);
    }
    if (news.connection == brokerConnection)
        return;
    brokerConnection = news.connection;
    nextMetrics = Clock::time_point();
    health.connectedSince = std::nullopt;
    if (brokerConnection == 0)
        return;
    isLossTold = false;
    health.connectedSince = WallClock::now();
    if (health.connections++ > 0)
        messages.repeatAll();
    nextHealth = Clock::time_point();
    reportNote("connected to " + settings.mqtt.broker.text());
}

void LinePublisher::tellLoss(const QString &reason)
{
    if (std::exchange(isLossTold, true))
        return;
    const QString place = settings.spool ? "in " + *settings.spool : QString("in memory");
    reportWarning(filled("%1: %2; trying again, and keeping what is to be published %3",
                         settings.mqtt.broker.text(), reason, place));
}

void LinePublisher::handOver()
{
    if (brokerConnection == 0 || handedOver >= kMostHandedOver)
        return;
    std::vector<QueuedMessage> next = queue.next(kMostHandedOver - handedOver);
    if (next.empty())
        return;
    handedOver += int(next.size());
    client->publish(brokerConnection, std::move(next));
}

Health LinePublisher::healthNow(const AnswerTimes &times) const
{
    Health record = health;
    record.time = WallClock::now();
    record.isSimulated = connection.isSimulated();
    record.usualAnswerTime = times.percentile(50);
    record.longAnswerTime = times.percentile(90);
    record.longestAnswerTime = times.longest();
    for (const PollFigures &group : poller.figures()) {
        record.polls += group.polls;
        record.latePolls += group.latePolls;
    }
    record.queued = queue.count();
    record.dropped += queue.dropped();
    return record;
}

void LinePublisher::publishHealth()
{
    nextHealth = Clock::now() + kHealthInterval;
    publishNow({topics.health(), healthText(healthNow(answerTimes))});
    answerTimes = AnswerTimes();
}

void LinePublisher::writeMetrics(bool isUp)
{
    nextMetrics = Clock::now() + kMetricsInterval;
    Metrics metrics;
    metrics.port = connection.portLabel();
    metrics.station = connection.stationId();
    metrics.isUp = isUp;
    metrics.isPortThere = !isPortLost;
    metrics.items = int(tags.size());
    metrics.failingItems = failingCount();
    metrics.health = healthNow(metricsTimes);
    metrics.answerCount = answerCount;
    metrics.answerSum = answerSum;
    metricsFile->write(metricsText(metrics));
    metricsTimes = AnswerTimes();
}

void LinePublisher::publishNow(const Message &message)
{
    client->publish(brokerConnection, {{0, message}});
}

void LinePublisher::takeRequest(const SetRequest &request)
{
    const std::optional<QString> name = topics.commandedName(request.topic);
    if (!name)
        return;
    try {
        queueWrite(*name, request);
    } catch (const Failure &reason) {
        refuse(*name, request, reason);
    }
}

// A tag that may be written can lie over one that may not.
void LinePublisher::checkOtherTags(const Assignment &assignment) const
{
    const std::vector<Objection> objections = guard.objectionsTo(assignment.tag.item, assignment.data);
    if (objections.empty())
        return;
    const auto &[tag, failure] = objections.front();
    throw Failure(failure.code(),
                  failure.cause() == Cause::NotWritable ? Cause::NotWritable : Cause::OutOfRange,
                  tag.label() + ": " + failure.text(), failure.hint());
}

void LinePublisher::queueWrite(const QString &name, const SetRequest &request)
{
    const auto item = itemsByName.constFind(name);
    if (item == itemsByName.constEnd())
        throw Failure(ExitCode::Usage, Cause::UnknownItem, "no item of this name is published",
                      "items are called as in the tag file");
    const Assignment assignment = parseSetRequest(tags[size_t(*item)], request);
    checkOtherTags(assignment);
    if (int(pendingWrites.size()) >= settings.writeRate || !writeLimit.take(Clock::now()))
        throw Failure(ExitCode::Usage, Cause::TooFast,
                      filled("more than %1 commands came within a second", settings.writeRate),
                      "send fewer, or allow more with --write-rate");
    pendingWrites.push_back({assignment, topics.result(name), request.correlation});
}

// Writes in turn with the reads: one command between two requests.
void LinePublisher::writeNext()
{
    if (pendingWrites.empty())
        return;
    const PendingWrite write = std::move(pendingWrites.front());
    pendingWrites.pop_front();
    const Tag &tag = write.assignment.tag;
    connection.setStation(tag.item.station);
    connection.setRepeating(true);
    try {
        for (const WriteRequest &request : planWrite(tag.item, write.assignment.data))
            connection.write(request.command, request.data);
    } catch (const Failure &failure) {
        ++health.refusals;
        answer(write, failedText(failure, WallClock::now()));
        tellRefusal(tag.label(), failure);
        if (failure.isFinal() && !settings.survivesLoss)
            throw;
        return;
    }
    ++health.writes;
    answer(write, doneText(write.assignment, WallClock::now()));
    reportNote(filled("%1 written, as the broker said: %2", tag.label(),
                      shownTexts(tag, decodeValues(tag.item, write.assignment.data)).join(',')));
}

void LinePublisher::answer(const PendingWrite &write, const QByteArray &payload)
{
    publishNow({write.resultTopic, payload, false, write.correlation});
}

void LinePublisher::refuse(const QString &name, const SetRequest &request, const Failure &reason)
{
    ++health.refusals;
    publishNow({topics.result(name), refusedText(reason, WallClock::now()), false, request.correlation});
    tellRefusal(name, reason);
}

void LinePublisher::tellRefusal(const QString &name, const Failure &reason)
{
    if (refusalLog.take(Clock::now()))
        reportFailure(filled("a command for %1 is not done", name), reason);
}

void LinePublisher::finish(const std::optional<Failure> &loss)
{
    service.stopping();
    std::optional<Failure> reason = loss;
    try {
        if (loss && loss->code() != ExitCode::BrokerRefused)
            failAll(loss->cause());
        if (!loss || loss->code() != ExitCode::BrokerRefused)
            drain();
    } catch (const Failure &failure) {
        reason = loss ? loss : failure;
    }
    queue.store(WallClock::now());
    client.reset();
    health.connectedSince = std::nullopt;
    if (metricsFile)
        writeMetrics(false);
    tellRest();
    if (reason)
        throw Failure(*reason);
}

// A program that ends early may not be connected yet.
void LinePublisher::drain()
{
    const QDeadlineTimer end(kDrainTime);
    do {
        exchange();
        poll(nullptr, 0, kDrainSlice);
    } while (queue.count() > 0 && !end.hasExpired() && (brokerConnection != 0 || !isLossTold));
    takeNews(client->takeNews());
}

void LinePublisher::tellRest() const
{
    if (queue.count() == 0)
        return;
    const QString rest = counted(queue.count(), "message");
    if (settings.spool)
        reportNote(filled("%1 left in %2 for the next start", rest, *settings.spool));
    else
        reportWarning(rest + " not published");
}

} // namespace host
