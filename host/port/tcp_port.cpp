// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/tcp_port.h"

#include "host/base/filled.h"
#include "host/base/interruption.h"
#include "host/base/system_reason.h"
#include "host/port/host_lookup.h"

#include <QEventLoop>
#include <QList>
#include <QNetworkProxy>
#include <QTimer>

#include <algorithm>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

namespace host {

namespace {

constexpr int kConnectTime = 5000; // milliseconds

// A server that lost its supply says nothing. It is asked after 10 s in which nothing came, and given up when
// it is silent for 15 s more, as when it does not confirm what was sent.
constexpr int kFirstProbe = 10; // seconds
constexpr int kNextProbe = 5;
constexpr int kProbes = 3;
constexpr int kUnconfirmed = 25000; // milliseconds

QString connectHint(QAbstractSocket::SocketError error, quint16 port)
{
    if (error == QAbstractSocket::ConnectionRefusedError)
        return filled("nothing listens at TCP port %1 there: check its number, and that the serial server "
                      "offers its line as raw TCP",
                      port);
    return "check address, network and firewall, and that the serial server is switched on";
}

} // namespace

const char kServerLine[] = "baud rate, parity, data and stop bits as set at the serial server";

int connectTime(const Timing &timing)
{
    return std::max(kConnectTime, timing.timeout);
}

TcpPort::TcpPort(const QString &name_, int baud_, const Timing &timing_)
    : Port(timing_, baud_), name(name_), place(parseTcpName(name_)), patience(connectTime(timing_))
{
    socket.setProxy(QNetworkProxy::NoProxy);
    open();
}

// A name may have an address that leads nowhere beside one that works: each gets its share of the time.
void TcpPort::open()
{
    const QDeadlineTimer deadline(patience);
    QList<QHostAddress> addresses = addressesOf(place.host, deadline);
    while (socket.state() != QAbstractSocket::ConnectedState) {
        const QDeadlineTimer share(deadline.remainingTime() / addresses.size());
        connectTo(addresses.takeFirst(), share);
        if (socket.state() != QAbstractSocket::ConnectedState && addresses.isEmpty())
            failToConnect(share.hasExpired());
    }
    keepAlive();
}

// QTcpSocket's own wait would not look at signals.
void TcpPort::connectTo(const QHostAddress &address, const QDeadlineTimer &deadline)
{
    QEventLoop loop;
    QTimer look;
    QObject::connect(&socket, &QAbstractSocket::stateChanged, &loop, &QEventLoop::quit);
    QObject::connect(&look, &QTimer::timeout, &loop, &QEventLoop::quit);
    look.start(kInterruptionSlice);
    socket.abort();
    socket.connectToHost(address, place.port);
    while (socket.state() == QAbstractSocket::ConnectingState && !deadline.hasExpired()) {
        if (interruptingSignal() != 0)
            throw Interrupted();
        loop.exec();
    }
}

void TcpPort::failToConnect(bool isLate) const
{
    const QString reason = isLate ? filled("no answer within %1 ms", patience) : socket.errorString();
    throw Failure(ExitCode::PortUnusable, name + " cannot be reached: " + reason,
                  connectHint(isLate ? QAbstractSocket::SocketTimeoutError : socket.error(), place.port));
}

// Requests are small and wait for nothing; QTcpSocket has no names for the times of a silent connection.
// Where the kernel does not take them, its own times hold.
void TcpPort::keepAlive()
{
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket.setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    const auto set = [this](int option, int value) {
        setsockopt(handle(), IPPROTO_TCP, option, &value, sizeof value);
    };
    set(TCP_KEEPIDLE, kFirstProbe);
    set(TCP_KEEPINTVL, kNextProbe);
    set(TCP_KEEPCNT, kProbes);
    set(TCP_USER_TIMEOUT, kUnconfirmed);
}

// A server that has closed its side alone counts, too: nothing comes from it any more.
bool TcpPort::takeError()
{
    return socket.state() != QAbstractSocket::ConnectedState;
}

// What was closed while nothing was under way QTcpSocket has not seen yet.
Failure TcpPort::loss() const
{
    int error = 0;
    socklen_t size = sizeof error;
    const bool isOpen = socket.state() == QAbstractSocket::ConnectedState &&
                        getsockopt(handle(), SOL_SOCKET, SO_ERROR, &error, &size) == 0;
    QString reason = "the serial server closed the connection";
    if (isOpen && error != 0)
        reason = systemReason(error);
    else if (!isOpen && socket.error() != QAbstractSocket::RemoteHostClosedError)
        reason = socket.errorString();
    return Failure(ExitCode::PortLost, "the port is gone: " + reason,
                   "was it restarted, or does it serve another program? start again, or let --reconnect wait "
                   "for it");
}

bool TcpPort::clearInput()
{
    socket.readAll();
    return true;
}

short TcpPort::hangUpEvent() const
{
    return POLLRDHUP;
}

} // namespace host
