// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/broker/mqtt_client.h"

#include "host/base/filled.h"
#include "host/base/system_reason.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <map>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <utility>

#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

// Between two tries to connect; each pause is twice the one before. Clients that lost the same broker come
// back one after the other: up to a quarter is added by lot.
constexpr milliseconds kFirstPause(1000);
constexpr milliseconds kLongestPause(10000);

// How long a broker may take to answer, and to take what is published last.
constexpr seconds kConnectTime(10);
constexpr seconds kFarewellTime(2);

// Seconds without a message, after which one of the two asks whether the other is there.
constexpr int kKeepAlive = 15;

// The library wants to be called so often.
constexpr milliseconds kUpkeep(1000);

// Messages that are given to the library and were not taken. It sends as many of them as the broker allows.
constexpr size_t kMostUnderWay = 200;

// Commands that wait to be fetched.
constexpr size_t kMostRequests = 100;

// A secure connection that the broker ends at once so often, and never answers on, is one that it does not
// want.
constexpr int kMostCuts = 3;

// Of the older MQTT, where 5 has codes of its own.
enum OldRefusal { kOldBadUser = 4, kOldNotAuthorized = 5 };

constexpr char kSystemAuthorities[] = "/etc/ssl/certs";

class Library
{
public:
    Library() { mosquitto_lib_init(); }
    ~Library() { mosquitto_lib_cleanup(); }

    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;
};

struct Destroy
{
    void operator()(mosquitto *handle) const { mosquitto_destroy(handle); }
    void operator()(mosquitto_property *list) const { mosquitto_property_free_all(&list); }
};

using Handle = std::unique_ptr<mosquitto, Destroy>;
using Properties = std::unique_ptr<mosquitto_property, Destroy>;

void checkReadable(const std::optional<QString> &name, const char *option)
{
    if (!name)
        return;
    QFile file(*name);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(ExitCode::Usage,
                      filled("%1 of %2 cannot be read: %3", *name, option, file.errorString()),
                      "check the file's name and rights");
}

Properties correlationProperty(const QByteArray &data)
{
    mosquitto_property *list = nullptr;
    if (!data.isEmpty())
        mosquitto_property_add_binary(&list, MQTT_PROP_CORRELATION_DATA, data.constData(),
                                      uint16_t(data.size()));
    return Properties(list);
}

QByteArray correlationIn(const mosquitto_property *properties)
{
    void *data = nullptr;
    uint16_t size = 0;
    if (!mosquitto_property_read_binary(properties, MQTT_PROP_CORRELATION_DATA, &data, &size, false))
        return QByteArray();
    QByteArray correlation(static_cast<const char *>(data), size);
    free(data);
    return correlation;
}

const char *textOrNull(const QByteArray &text)
{
    return text.isEmpty() ? nullptr : text.constData();
}

// Whether what TLS tells is about who somebody is, which no other try would change.
bool isAboutIdentity(const QString &error)
{
    const QStringList words = {"certificate", "unknown ca", "host name verification",
                               "private key", "client key", "key values mismatch"};
    return std::any_of(words.begin(), words.end(),
                       [&](const QString &word) { return error.contains(word, Qt::CaseInsensitive); });
}

} // namespace

class MqttClient::Worker
{
public:
    explicit Worker(const MqttSettings &settings);
    ~Worker();

    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    void publish(int connection, std::vector<QueuedMessage> messages);
    MqttNews takeNews();

private:
    // What is under way to the broker, by the number that the library has for it.
    struct UnderWay
    {
        qint64 id;
        QByteArray topic;
    };

    // Those of the worker's thread.
    void startThread();
    void run();
    Handle makeHandle();
    void setCallbacks(mosquitto *handle) const;
    void setSecurity(mosquitto *handle);
    void serve();
    void serve(mosquitto *handle);
    void awaitSocket(mosquitto *handle);
    int handleSocket(mosquitto *handle, int events);
    void fetchHandedOver();
    void sendWaiting();
    bool send(const QueuedMessage &message);
    void reportTaken(qint64 id, const char *refusal);
    void sayFarewell();
    void lose(int result);
    std::optional<Failure> certificateRefusal() const;
    void endConnection();
    void pauseBeforeNextTry();
    bool isOver() const { return isStopping && (!isConnected || (hasSaidFarewell && underWay.empty())); }
    QString reasonOf(int result) const;

    // The library's callbacks.
    void connected(int code);
    void disconnected(int code);
    void published(int number, int code);
    void received(const mosquitto_message &message, const mosquitto_property *properties);
    void logged(int level, const char *text);

    const Library library;
    const MqttSettings settings;
    const int wake; // an eventfd, which ends a wait

    // Shared, behind the lock.
    std::mutex lock;
    std::condition_variable stopCondition;
    MqttNews news;
    std::vector<QueuedMessage> handedOver;
    std::atomic<bool> isStopping = false;

    // Of the worker's thread alone.
    mosquitto *current = nullptr;
    bool isConnected = false;
    bool isLost = false;
    bool hasSaidFarewell = false;
    int connectionNumber = 0;
    QString loss;      // why the connection is lost, or there is none
    QString lastError; // that the library has told on this connection
    int cuts = 0;      // secure connections in a row that the broker ended before it answered
    std::optional<Failure> refusal;
    std::deque<QueuedMessage> waiting;
    std::map<int, UnderWay> underWay;
    std::set<QByteArray> topicsUnderWay;
    std::map<int, int> early; // taken before the call that published them has returned, with their codes
    milliseconds pause = kFirstPause;
    std::mt19937 lot;

    std::thread thread; // last: it uses all the others
};

MqttClient::Worker::Worker(const MqttSettings &settings_)
    : settings(settings_), wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), lot(std::random_device()())
{
    checkReadable(settings.authorities, "--ca");
    checkReadable(settings.certificate, "--cert");
    checkReadable(settings.key, "--key");
    startThread();
}

// Signals are for the thread that polls: it is their arrival that ends its waits.
void MqttClient::Worker::startThread()
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    thread = std::thread([this] { run(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

MqttClient::Worker::~Worker()
{
    {
        const std::lock_guard guard(lock);
        isStopping = true;
    }
    stopCondition.notify_all();
    eventfd_write(wake, 1);
    thread.join();
    close(wake);
}

void MqttClient::Worker::publish(int connection, std::vector<QueuedMessage> messages)
{
    {
        const std::lock_guard guard(lock);
        if (connection != news.connection)
            return;
        for (QueuedMessage &message : messages)
            handedOver.push_back(std::move(message));
    }
    eventfd_write(wake, 1);
}

MqttNews MqttClient::Worker::takeNews()
{
    const std::lock_guard guard(lock);
    MqttNews fresh;
    fresh.connection = news.connection;
    fresh.refusal = news.refusal;
    std::swap(fresh, news);
    return fresh;
}

void MqttClient::Worker::run()
{
    while (!isStopping && !refusal) {
        serve();
        endConnection();
        pauseBeforeNextTry();
    }
}

void MqttClient::Worker::pauseBeforeNextTry()
{
    std::unique_lock guard(lock);
    if (refusal)
        return;
    const milliseconds addition(std::uniform_int_distribution<int>(0, int(pause.count()) / 4)(lot));
    stopCondition.wait_for(guard, pause + addition, [this] { return isStopping.load(); });
    pause = std::min(2 * pause, kLongestPause);
}

Handle MqttClient::Worker::makeHandle()
{
    Handle handle(mosquitto_new(textOrNull(settings.clientId), true, this));
    const bool isNew = settings.version == 5;
    mosquitto_int_option(handle.get(), MOSQ_OPT_PROTOCOL_VERSION,
                         isNew ? MQTT_PROTOCOL_V5 : MQTT_PROTOCOL_V311);
    mosquitto_int_option(handle.get(), MOSQ_OPT_TCP_NODELAY, 1);
    setCallbacks(handle.get());
    if (settings.credentials)
        mosquitto_username_pw_set(handle.get(), settings.credentials->user.toUtf8().constData(),
                                  settings.credentials->password.toUtf8().constData());
    mosquitto_will_set(handle.get(), settings.will.topic.constData(), int(settings.will.payload.size()),
                       settings.will.payload.constData(), settings.qos, settings.will.isRetained);
    if (settings.broker.isSecure)
        setSecurity(handle.get());
    return handle;
}

void MqttClient::Worker::setCallbacks(mosquitto *handle) const
{
    mosquitto_connect_v5_callback_set(handle,
                                      [](mosquitto *, void *self, int code, int, const mosquitto_property *) {
                                          static_cast<Worker *>(self)->connected(code);
                                      });
    mosquitto_disconnect_v5_callback_set(handle,
                                         [](mosquitto *, void *self, int code, const mosquitto_property *) {
                                             static_cast<Worker *>(self)->disconnected(code);
                                         });
    mosquitto_publish_v5_callback_set(
        handle, [](mosquitto *, void *self, int number, int code, const mosquitto_property *) {
            static_cast<Worker *>(self)->published(number, code);
        });
    mosquitto_message_v5_callback_set(handle, [](mosquitto *, void *self, const mosquitto_message *message,
                                                 const mosquitto_property *properties) {
        static_cast<Worker *>(self)->received(*message, properties);
    });
    mosquitto_log_callback_set(handle, [](mosquitto *, void *self, int level, const char *text) {
        static_cast<Worker *>(self)->logged(level, text);
    });
}

void MqttClient::Worker::setSecurity(mosquitto *handle)
{
    const auto encoded = [](const std::optional<QString> &name) {
        return name ? QFile::encodeName(*name) : QByteArray();
    };
    const QByteArray authorities = encoded(settings.authorities);
    const QByteArray certificate = encoded(settings.certificate);
    const QByteArray key = encoded(settings.key);
    const int result = mosquitto_tls_set(handle, textOrNull(authorities),
                                         authorities.isEmpty() ? kSystemAuthorities : nullptr,
                                         textOrNull(certificate), textOrNull(key), nullptr);
    if (result != MOSQ_ERR_SUCCESS)
        loss = mosquitto_strerror(result);
}

// Connects, and serves the connection until it ends.
void MqttClient::Worker::serve()
{
    isConnected = isLost = hasSaidFarewell = false;
    loss.clear();
    lastError.clear();
    const Handle handle = makeHandle();
    if (!loss.isEmpty())
        return;
    const QByteArray host = settings.broker.host.toUtf8();
    current = handle.get();
    const int result = mosquitto_connect_bind_async(handle.get(), host.constData(), settings.broker.port,
                                                    kKeepAlive, nullptr);
    if (result == MOSQ_ERR_SUCCESS || result == MOSQ_ERR_CONN_PENDING)
        serve(handle.get());
    else
        lose(result);
    current = nullptr;
}

void MqttClient::Worker::serve(mosquitto *handle)
{
    const Clock::time_point answerEnd = Clock::now() + kConnectTime;
    std::optional<Clock::time_point> farewellEnd;
    while (!isLost && !isOver()) {
        awaitSocket(handle);
        if (isConnected && !isLost) {
            fetchHandedOver();
            sendWaiting();
        } else if (!isLost && Clock::now() > answerEnd) {
            isLost = true;
            loss = "it does not answer";
        }
        if (isStopping && isConnected && !std::exchange(hasSaidFarewell, true)) {
            sayFarewell();
            farewellEnd = Clock::now() + kFarewellTime;
        }
        if (farewellEnd && Clock::now() > *farewellEnd)
            return;
    }
    if (isConnected && !isLost) {
        mosquitto_disconnect(handle);
        mosquitto_loop_write(handle, 1);
    }
}

void MqttClient::Worker::awaitSocket(mosquitto *handle)
{
    const int socket = mosquitto_socket(handle);
    const auto wanted = short(POLLIN | (mosquitto_want_write(handle) ? POLLOUT : 0));
    std::array<pollfd, 2> places = {{{socket, wanted, 0}, {wake, POLLIN, 0}}};
    poll(places.data(), places.size(), int(kUpkeep.count()));
    eventfd_t ignored = 0;
    if (places[1].revents != 0)
        eventfd_read(wake, &ignored);
    const int result = socket < 0 ? int(MOSQ_ERR_NO_CONN) : handleSocket(handle, places[0].revents);
    if (result != MOSQ_ERR_SUCCESS)
        lose(result);
}

// Takes note of the first result that says the connection is gone.
void MqttClient::Worker::lose(int result)
{
    if (std::exchange(isLost, true))
        return;
    const bool isEnded = result == MOSQ_ERR_ERRNO && (errno == EPROTO || errno == ECONNRESET);
    const bool isCut = settings.broker.isSecure && !isConnected && isEnded;
    cuts = isCut ? cuts + 1 : 0;
    loss = reasonOf(result);
}

// A connection that cannot be made has its reason at the socket, where only the first to look finds it.
int MqttClient::Worker::handleSocket(mosquitto *handle, int events)
{
    int error = 0;
    socklen_t size = sizeof error;
    if (!isConnected && (events & (POLLERR | POLLHUP)) != 0 &&
        getsockopt(mosquitto_socket(handle), SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error != 0) {
        errno = error;
        return MOSQ_ERR_ERRNO;
    }
    int result = MOSQ_ERR_SUCCESS;
    if ((events & (POLLIN | POLLERR | POLLHUP)) != 0)
        result = mosquitto_loop_read(handle, 1);
    if (result == MOSQ_ERR_SUCCESS && (events & POLLOUT) != 0)
        result = mosquitto_loop_write(handle, 1);
    return result == MOSQ_ERR_SUCCESS ? mosquitto_loop_misc(handle) : result;
}

QString MqttClient::Worker::reasonOf(int result) const
{
    if (!lastError.isEmpty())
        return lastError;
    return result == MOSQ_ERR_ERRNO ? systemReason(errno) : QString(mosquitto_strerror(result));
}

// Fails for good on what TLS has against a certificate. The broker's own objection to that of this client
// rarely arrives: it closes the connection behind it.
std::optional<Failure> MqttClient::Worker::certificateRefusal() const
{
    const QString place = "no secure connection with " + settings.broker.text();
    if (isAboutIdentity(lastError))
        return Failure(
            ExitCode::BrokerRefused, place + ": " + lastError,
            "--ca names the authority that signed the broker's certificate, whose name must be the "
            "host's; --cert and --key are what this client shows");
    if (cuts < kMostCuts || connectionNumber > 0)
        return std::nullopt;
    return Failure(ExitCode::BrokerRefused,
                   place + ": the broker ends it as soon as it has seen this client's certificate",
                   "name one that the broker takes with --cert and --key; its log has the reason");
}

void MqttClient::Worker::endConnection()
{
    if (!refusal)
        refusal = certificateRefusal();
    waiting.clear();
    underWay.clear();
    topicsUnderWay.clear();
    early.clear();
    const std::lock_guard guard(lock);
    handedOver.clear();
    news.connection = 0;
    news.wasLost = true;
    news.lossReason = loss;
    news.refusal = refusal;
}

void MqttClient::Worker::connected(int code)
{
    if (code == 0) {
        isConnected = true;
        pause = kFirstPause;
        const int options = settings.version == 5 ? MQTT_SUB_OPT_SEND_RETAIN_NEVER : 0;
        for (const QByteArray &filter : settings.subscriptions)
            mosquitto_subscribe_v5(current, nullptr, filter.constData(), 1, options, nullptr);
        for (const Message &message : settings.greeting)
            waiting.push_back({0, message});
        const std::lock_guard guard(lock);
        news.connection = ++connectionNumber;
        return;
    }
    const bool isOld = settings.version != 5 || code < MQTT_RC_UNSPECIFIED;
    isLost = true;
    loss = isOld ? mosquitto_connack_string(code) : mosquitto_reason_string(code);
    if (code == kOldBadUser || code == kOldNotAuthorized || code == MQTT_RC_BAD_USERNAME_OR_PASSWORD ||
        code == MQTT_RC_NOT_AUTHORIZED || code == MQTT_RC_BAD_AUTHENTICATION_METHOD)
        refusal =
            Failure(ExitCode::BrokerRefused, filled("%1 lets nobody in: %2", settings.broker.text(), loss),
                    credentialsHint(settings.credentials));
    else if (settings.version == 5 && code < MQTT_RC_UNSPECIFIED)
        loss += " (try --mqtt 3)";
}

void MqttClient::Worker::disconnected(int code)
{
    lose(code);
    if (code >= MQTT_RC_UNSPECIFIED)
        loss = mosquitto_reason_string(code);
}

void MqttClient::Worker::fetchHandedOver()
{
    const std::lock_guard guard(lock);
    for (QueuedMessage &message : handedOver)
        waiting.push_back(std::move(message));
    handedOver.clear();
}

void MqttClient::Worker::sendWaiting()
{
    while (!waiting.empty() && underWay.size() < kMostUnderWay && !isLost) {
        if (topicsUnderWay.count(waiting.front().message.topic) > 0 || !send(waiting.front()))
            return;
        waiting.pop_front();
    }
}

// Returns false when the connection is lost.
bool MqttClient::Worker::send(const QueuedMessage &queued)
{
    const Message &message = queued.message;
    const Properties properties = settings.version == 5 ? correlationProperty(message.correlation) : nullptr;
    int number = 0;
    const int result =
        mosquitto_publish_v5(current, &number, message.topic.constData(), int(message.payload.size()),
                             message.payload.constData(), settings.qos, message.isRetained, properties.get());
    if (result == MOSQ_ERR_NO_CONN || result == MOSQ_ERR_CONN_LOST || result == MOSQ_ERR_ERRNO ||
        result == MOSQ_ERR_TLS) {
        lose(result);
        return false;
    }
    if (result != MOSQ_ERR_SUCCESS) {
        reportTaken(queued.id, mosquitto_strerror(result));
        return true;
    }
    topicsUnderWay.insert(message.topic);
    underWay[number] = {queued.id, message.topic};
    const auto taken = early.find(number);
    if (taken != early.end())
        published(number, taken->second);
    early.clear();
    return true;
}

void MqttClient::Worker::published(int number, int code)
{
    const auto found = underWay.find(number);
    if (found == underWay.end()) {
        early[number] = code;
        return;
    }
    const UnderWay message = found->second;
    underWay.erase(found);
    topicsUnderWay.erase(message.topic);
    reportTaken(message.id, code >= MQTT_RC_UNSPECIFIED ? mosquitto_reason_string(code) : nullptr);
}

void MqttClient::Worker::reportTaken(qint64 id, const char *reason)
{
    const std::lock_guard guard(lock);
    if (id != 0)
        news.taken.push_back(id);
    if (reason) {
        ++news.untaken;
        news.untakenReason = reason;
    }
}

void MqttClient::Worker::received(const mosquitto_message &message, const mosquitto_property *properties)
{
    const SetRequest request = {message.topic,
                                QByteArray(static_cast<const char *>(message.payload), message.payloadlen),
                                message.retain, correlationIn(properties)};
    const std::lock_guard guard(lock);
    if (news.requests.size() < kMostRequests)
        news.requests.push_back(request);
    else
        ++news.lostRequests;
}

// The first error is the reason of those behind it.
void MqttClient::Worker::logged(int level, const char *text)
{
    if (level == MOSQ_LOG_ERR && lastError.isEmpty())
        lastError = QString::fromUtf8(text).remove(QRegularExpression("^(OpenSSL )?Error(\\[[0-9]+\\])?: *"));
}

void MqttClient::Worker::sayFarewell()
{
    send({0, settings.farewell});
}

MqttClient::MqttClient(const MqttSettings &settings) : worker(std::make_unique<Worker>(settings)) {}

MqttClient::~MqttClient() = default;

void MqttClient::publish(int connection, std::vector<QueuedMessage> messages)
{
    worker->publish(connection, std::move(messages));
}

MqttNews MqttClient::takeNews()
{
    return worker->takeNews();
}

} // namespace host
