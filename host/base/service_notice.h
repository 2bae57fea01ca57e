// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a service of systemd's Type=notify tells its manager: that it has begun, that it lives, what it does,
// that it ends. Each of these is one datagram of lines NAME=VALUE to a socket that the manager names in the
// environment, an interface that stays as it is; systemd's own library would bring six more into every
// program that is linked with it. Where no manager listens nothing is sent.

#ifndef HOST_BASE_SERVICE_NOTICE_H
#define HOST_BASE_SERVICE_NOTICE_H

#include <QByteArray>
#include <QString>

#include <chrono>

namespace host {

class ServiceNotice
{
public:
    // Takes NOTIFY_SOCKET, WATCHDOG_USEC and WATCHDOG_PID out of the environment: programs that are started
    // from here have nothing to tell.
    ServiceNotice();
    ~ServiceNotice();

    ServiceNotice(const ServiceNotice &) = delete;
    ServiceNotice &operator=(const ServiceNotice &) = delete;

    // The service has begun; every call but the first does nothing.
    void ready();

    // A sign of life for the watchdog, which ends a service that gives none. Costs nothing when called often.
    void alive();

    // Has the watchdog wait for twice as long as a step may take that gives no sign of life.
    void allow(std::chrono::milliseconds longestStep);

    // Whether the status may be told anew: once a second, if anybody listens.
    bool wantsStatus() const;

    // What the service does, one line; the same again is not sent.
    void status(const QString &text);

    // The service is about to end; nothing else is sent after this.
    void stopping();

private:
    using Clock = std::chrono::steady_clock;

    bool isThere() const { return handle >= 0; }
    bool send(const QByteArray &lines, int flags);

    int handle = -1;
    QByteArray address;                    // as the kernel wants it
    std::chrono::microseconds watchdog{0}; // how long it waits for a sign of life; 0: there is none
    bool isReady = false;
    bool isSilenceTold = false;
    Clock::time_point nextSign;
    Clock::time_point nextStatus;
    QString lastStatus;
};

} // namespace host

#endif
