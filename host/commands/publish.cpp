// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "common/duration.h"
#include "host/base/filled.h"
#include "host/base/interruption.h"
#include "host/base/service_notice.h"
#include "host/broker/discovery.h"
#include "host/broker/metrics.h"
#include "host/cli/command_line.h"
#include "host/commands/line_publisher.h"
#include "host/commands/plan_options.h"
#include "host/commands/raw_addresses.h"
#include "host/items/tag_file.h"
#include "host/polling/poll_plan.h"
#include "host/text/size_text.h"

#include <QDir>
#include <QString>
#include <QStringList>
#include <QSysInfo>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

namespace {

struct PublishOptions
{
    QStringList items;
    QString broker;
    std::optional<QString> topic;
    std::optional<QString> clientId;
    std::optional<int> qos;
    std::optional<QString> version; // of MQTT: 5 or 3
    std::optional<QString> payload; // json, plain or group
    std::optional<QString> credentials;
    std::optional<QString> authorities;
    std::optional<QString> certificate;
    std::optional<QString> key;
    std::optional<std::chrono::milliseconds> interval;
    std::optional<std::chrono::milliseconds> heartbeat;
    std::optional<QString> discovery; // the prefix of its topics
    std::optional<QString> spool;
    std::optional<QString> spoolSize;
    std::optional<std::chrono::milliseconds> spoolAge;
    bool noSpool = false;
    std::optional<int> writeRate;
    std::optional<QString> metrics; // a file
    std::optional<int> polls;
    std::optional<std::chrono::milliseconds> time;
    PlanOptions plan;
};

const char kPublishFooter[] = R"(

Each item has a topic of its own below the prefix, PREFIX/NAME, with the value as JSON; it is
published on change, by more than the deadband that a tag file gives, and at every heartbeat.
PREFIX/status is online or offline, PREFIX/health tells every 30 s how it is going.

What somebody publishes under PREFIX/NAME/set is written when the tag file says rw in its
column access, within its min and max; PREFIX/NAME/set/result tells what became of it.

While the broker is away, messages wait in a spool on disk and leave in order when it is back.
With another spool for each line several of them can run side by side.

User and password come from S7PPI_MQTT_USER and S7PPI_MQTT_PASSWORD or the file of
--credentials, with the lines user = NAME and password = TEXT.

Ctrl-C or SIGTERM ends it; what is left then stays in the spool.)";

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

constexpr minutes kUsualHeartbeat(1);
constexpr hours kUsualSpoolAge(7 * 24);
constexpr char kUsualSpoolSize[] = "64M";
constexpr qint64 kLeastSpool = 64 << 10;
constexpr int kUsualQos = 1;
constexpr int kUsualWriteRate = 5;

Failure wrong(const QString &text, const QString &hint)
{
    return Failure(ExitCode::Usage, text, hint);
}

// A name without what separates directories, so that each topic has one of its own.
QString plainName(const QString &topic)
{
    QString name;
    for (const QChar letter : topic)
        name += letter.isLetterOrNumber() || letter == '.' || letter == '-' ? QString(letter) : QString("_");
    return name;
}

// Where a service keeps what has to survive it, and otherwise where this user's programs do.
QString stateDirectory()
{
    QString ofService = qEnvironmentVariable("STATE_DIRECTORY").section(':', 0, 0);
    if (!ofService.isEmpty())
        return ofService;
    const QString ofUser = qEnvironmentVariable("XDG_STATE_HOME");
    return (ofUser.isEmpty() ? QDir::homePath() + "/.local/state" : ofUser) + "/s7ppi";
}

QString spoolName(const PublishOptions &own, const Topics &topics)
{
    if (own.spool)
        return *own.spool;
    const QString directory = stateDirectory();
    if (!QDir().mkpath(directory))
        throw wrong(filled("the directory %1 cannot be made", directory),
                    "name a file with --spool, or keep the messages in memory with --no-spool");
    return directory + '/' + plainName(topics.prefix()) + ".spool";
}

QueueLimits queueLimits(const PublishOptions &own)
{
    const QString text = own.spoolSize.value_or(kUsualSpoolSize);
    const std::optional<qint64> size = parseSize(text);
    if (!size || *size < kLeastSpool)
        throw wrong('"' + text + "\" is no size of a spool", "give a size from 64k on, as 500k, 64M or 1G");
    return {*size, own.spoolAge.value_or(kUsualSpoolAge)};
}

PayloadForm formOf(const PublishOptions &own)
{
    const QString word = own.payload.value_or("json");
    return word == "json" ? PayloadForm::Record : word == "plain" ? PayloadForm::Plain : PayloadForm::Group;
}

std::vector<Message> greeting(const PublishOptions &own, const std::vector<Tag> &tags, const Topics &topics,
                              const PublishSettings &settings)
{
    std::vector<Message> messages = {{topics.status(), "online"}};
    if (own.discovery)
        for (const Message &message :
             discoveryMessages(tags, settings.intervals, topics, settings.form, *own.discovery))
            messages.push_back(message);
    return messages;
}

void checkTogether(const PublishOptions &own, const BrokerAddress &broker)
{
    if (own.noSpool && own.spool)
        throw wrong("--spool and --no-spool contradict each other", "leave one of the two out");
    if (!broker.isSecure && (own.authorities || own.certificate))
        throw wrong("--ca and --cert are for secure connections", "name the broker as mqtts://HOST");
    if (own.discovery)
        static_cast<void>(Topics(*own.discovery)); // fails where no topic can begin so
    if (own.metrics)
        claimMetricsFile(*own.metrics);
}

MqttSettings mqttSettings(const PublishOptions &own, const BrokerAddress &broker, const Topics &topics)
{
    MqttSettings mqtt;
    mqtt.broker = broker;
    mqtt.version = own.version == QString("3") ? 3 : 5;
    mqtt.qos = own.qos.value_or(kUsualQos);
    mqtt.clientId = own.clientId.value_or(plainName(topics.prefix())).toUtf8();
    mqtt.credentials = findCredentials(own.credentials);
    mqtt.authorities = own.authorities;
    mqtt.certificate = own.certificate;
    mqtt.key = own.key;
    mqtt.will = mqtt.farewell = {topics.status(), "offline"};
    return mqtt;
}

PublishSettings settingsOf(const Options &options, const PublishOptions &own, const BrokerAddress &broker,
                           const std::vector<Tag> &tags, const Topics &topics)
{
    PublishSettings settings;
    settings.mqtt = mqttSettings(own, broker, topics);
    settings.form = formOf(own);
    settings.heartbeat = own.heartbeat.value_or(kUsualHeartbeat);
    settings.intervals = intervalsOf(tags, own.interval.value_or(milliseconds(kUsualInterval)));
    settings.plan = own.plan.limits();
    settings.queue = queueLimits(own);
    if (!own.noSpool)
        settings.spool = spoolName(own, topics);
    settings.writeRate = own.writeRate.value_or(kUsualWriteRate);
    settings.polls = own.polls;
    settings.time = own.time;
    settings.survivesLoss = options.reconnect;
    settings.metrics = own.metrics;
    settings.mqtt.subscriptions = topics.commandFilters(tags);
    settings.mqtt.greeting = greeting(own, tags, topics, settings);
    return settings;
}

int publishItems(Connection &connection, const std::vector<Tag> &tags, const Topics &topics,
                 const PublishSettings &settings, ServiceNotice &service)
{
    LinePublisher publisher(connection, tags, topics, settings, service);
    std::optional<Failure> loss;
    try {
        publisher.run();
    } catch (const Interrupted &) { // the usual end
    } catch (const Failure &failure) {
        loss = failure;
    }
    publisher.finish(loss);
    return int(publisher.firstFailure());
}

// A service that waits for an adapter to be plugged in has begun.
void tellAbsence(ServiceNotice &service)
{
    service.ready();
    service.alive();
    if (service.wantsStatus())
        service.status("waiting for the port");
}

// Everything that can be wrong about names and settings is told before the port is opened, but for the topic
// that has the port's name in it.
int publishAll(const Options &options, const PublishOptions &own)
{
    const BrokerAddress broker = parseBrokerAddress(own.broker);
    checkTogether(own, broker);
    Outcome outcome;
    const std::vector<Tag> tags = parseTags(own.items, outcome, notationOf(options));
    if (!outcome.isSuccess())
        return outcome.exitCode();
    checkNames(tags, Topics(own.topic.value_or("s7ppi")));
    queueLimits(own);
    ServiceNotice service;
    Connection connection(options, nullptr, [&service] { tellAbsence(service); });
    const Topics topics(own.topic.value_or(usualTopic(QSysInfo::machineHostName(), connection.portLabel())));
    return publishItems(connection, tags, topics, settingsOf(options, own, broker, tags, topics), service);
}

void declareBroker(CLI::App &publish, PublishOptions &own)
{
    addText(publish, "--broker", own.broker, "URL", "The broker: mqtt://HOST[:PORT], or mqtts:// over TLS");
    addText(publish, "--topic", own.topic, "PREFIX",
            "What all topics begin with (default s7ppi/MACHINE/PORT)");
    addNumber(publish, "--qos", own.qos, 0, 2, "Quality of service", std::to_string(kUsualQos));
    addText(publish, "--client-id", own.clientId, "ID",
            "What the broker knows this line by (default from the topic)");
    addChoice(publish, "--mqtt", own.version, {"5", "3"}, "VERSION", "Version of MQTT; 3 is 3.1.1", "5");
    addText(publish, "--credentials", own.credentials, "FILE", "User and password are in this file");
    addText(publish, "--ca", own.authorities, "FILE",
            "Certificates of those who sign the broker's (default the system's)");
    CLI::Option *certificate =
        addText(publish, "--cert", own.certificate, "FILE", "The certificate that this client shows");
    CLI::Option *key = addText(publish, "--key", own.key, "FILE", "The key of that certificate");
    tie(*certificate, *key);
    tie(*key, *certificate);
}

void declareSpool(CLI::App &publish, PublishOptions &own)
{
    addText(publish, "--spool", own.spool, "FILE",
            "Where messages wait for the broker (default a file for each topic in ~/.local/state/s7ppi)");
    addText(publish, "--spool-size", own.spoolSize, "SIZE",
            filled("How much room they have; the oldest go (default %1)", QString(kUsualSpoolSize))
                .toStdString());
    addDuration(publish, "--spool-age", own.spoolAge, {minutes(1), hours(365 * 24), hours(1)},
                "How long they stay", common::durationText(kUsualSpoolAge));
    addFlag(publish, "--no-spool", own.noSpool, "Keep them in memory only");
}

} // namespace

void declarePublish(CLI::App &app, CommandLine &line)
{
    const auto own = std::make_shared<PublishOptions>();
    CLI::App *publish =
        addCommand(app, line, "publish", "Publish items over MQTT, and write what comes from there",
                   [own](const Options &options) { return publishAll(options, *own); });
    addItems(*publish, own->items, "ADDRESS[:TYPE][*COUNT][@STATION] or @FILE[:NAME], as for read");
    declareBroker(*publish, *own);
    addChoice(*publish, "--payload", own->payload, {"json", "plain", "group"}, "FORM",
              "A value with unit, time and quality, the value alone, or one message for all with an interval",
              "json");
    addDuration(*publish, "--interval", own->interval, {milliseconds(1), hours(1), milliseconds(1)},
                "From poll to poll", common::durationText(milliseconds(kUsualInterval)));
    addDuration(*publish, "--heartbeat", own->heartbeat, {seconds(1), hours(24), seconds(1)},
                "Publish at least so often", common::durationText(kUsualHeartbeat));
    addOptionalText(*publish, "--discovery", own->discovery, kUsualDiscoveryPrefix, "PREFIX",
                    "Let Home Assistant find the items (default prefix homeassistant)");
    declareSpool(*publish, *own);
    addNumber(*publish, "--write-rate", own->writeRate, 1, 1000, "Commands that are done in a second at most",
              std::to_string(kUsualWriteRate));
    addText(*publish, "--metrics", own->metrics, "FILE.prom",
            "Write figures for the node exporter of Prometheus there, every 15 s");
    addNumber(*publish, "--count", own->polls, 1, 1000000000, "End after so many polls");
    addDuration(*publish, "--for", own->time, {milliseconds(1), hours(365 * 24), seconds(1)},
                "End after this time");
    addPlanOptions(*publish, own->plan);
    setFooter(
        *publish, QString(kTypesFooter) + kPublishFooter + kRawFooter,
        {"s7ppi publish --broker mqtt://localhost @press-tags.csv",
         "s7ppi publish @press-tags.csv --broker mqtts://broker.example --topic plant/press3 --discovery",
         "s7ppi publish --broker mqtt://localhost --payload plain --interval 1s VW100 T37"});
}

} // namespace host
