// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/program/stop_signals.h"

#include <QSocketNotifier>

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace sim {

namespace {

sigset_t stopSignals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGHUP);
    return set;
}

} // namespace

StopSignals::StopSignals()
{
    const sigset_t set = stopSignals();
    sigprocmask(SIG_BLOCK, &set, nullptr);
    descriptor = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        notifier->setEnabled(false);
        Q_EMIT received();
    });
}

StopSignals::~StopSignals()
{
    notifier->setEnabled(false);
    close(descriptor);
}

} // namespace sim
