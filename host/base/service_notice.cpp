// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/service_notice.h"

#include "host/base/filled.h"
#include "host/base/messages.h"
#include "host/base/system_reason.h"

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace host {

namespace {

const char kSocketVariable[] = "NOTIFY_SOCKET";
const char kWatchdogVariable[] = "WATCHDOG_USEC";
const char kProcessVariable[] = "WATCHDOG_PID";

// Signs of life within the watchdog's time, so that it meets one also behind a long request.
constexpr int kSigns = 4;

constexpr std::chrono::seconds kStatusInterval(1);

QByteArray taken(const char *variable)
{
    QByteArray value = qgetenv(variable);
    qunsetenv(variable);
    return value;
}

// Returns the socket's address, empty when the name is none: a file's, or behind an @ one without a file.
QByteArray addressOf(const QByteArray &name)
{
    sockaddr_un address = {};
    const bool isName = name.startsWith('/') || name.startsWith('@');
    if (!isName || name.size() < 2 || size_t(name.size()) >= sizeof address.sun_path)
        return QByteArray();
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, name.constData(), size_t(name.size()));
    if (name.startsWith('@'))
        address.sun_path[0] = '\0';
    return QByteArray(reinterpret_cast<const char *>(&address),
                      int(offsetof(sockaddr_un, sun_path)) + name.size());
}

} // namespace

ServiceNotice::ServiceNotice()
{
    const QByteArray name = taken(kSocketVariable);
    const qlonglong time = taken(kWatchdogVariable).toLongLong();
    const QByteArray process = taken(kProcessVariable);
    address = addressOf(name);
    if (!name.isEmpty() && address.isEmpty())
        reportWarning(filled("%1 names no socket: %2", kSocketVariable, QString::fromUtf8(name)));
    if (address.isEmpty())
        return;
    handle = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (time > 0 && (process.isEmpty() || process.toLongLong() == getpid()))
        watchdog = std::chrono::microseconds(time);
}

ServiceNotice::~ServiceNotice()
{
    if (handle >= 0)
        close(handle);
}

void ServiceNotice::ready()
{
    if (!std::exchange(isReady, true))
        send("READY=1\n", 0);
}

void ServiceNotice::alive()
{
    if (watchdog.count() == 0)
        return;
    const Clock::time_point now = Clock::now();
    if (now >= nextSign && send("WATCHDOG=1\n", MSG_DONTWAIT))
        nextSign = now + watchdog / kSigns;
}

void ServiceNotice::allow(std::chrono::milliseconds longestStep)
{
    if (watchdog.count() == 0 || 2 * longestStep <= watchdog)
        return;
    watchdog = 2 * longestStep;
    send("WATCHDOG_USEC=" + QByteArray::number(qlonglong(watchdog.count())) + '\n', 0);
}

bool ServiceNotice::wantsStatus() const
{
    return isThere() && Clock::now() >= nextStatus;
}

void ServiceNotice::status(const QString &text)
{
    nextStatus = Clock::now() + kStatusInterval;
    if (text != lastStatus && send("STATUS=" + text.simplified().toUtf8() + '\n', MSG_DONTWAIT))
        lastStatus = text;
}

void ServiceNotice::stopping()
{
    send("STOPPING=1\n", 0);
    watchdog = std::chrono::microseconds(0);
    nextStatus = Clock::time_point::max();
}

// Returns whether the manager has it. One that has no room for more gets it with the next call.
bool ServiceNotice::send(const QByteArray &lines, int flags)
{
    if (!isThere())
        return false;
    const auto *to = reinterpret_cast<const sockaddr *>(address.constData());
    if (sendto(handle, lines.constData(), size_t(lines.size()), flags | MSG_NOSIGNAL, to,
               socklen_t(address.size())) >= 0)
        return true;
    if (errno != EAGAIN && !std::exchange(isSilenceTold, true))
        reportWarning("the service manager cannot be told anything: " + systemReason(errno));
    return false;
}

} // namespace host
