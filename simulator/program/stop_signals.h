// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Turns SIGINT, SIGTERM and SIGHUP (the terminal is closed) into an event of the event loop. There may be one
// object at a time. The signals stay blocked after it, so that none cuts short what is done at the end.

#ifndef SIMULATOR_PROGRAM_STOP_SIGNALS_H
#define SIMULATOR_PROGRAM_STOP_SIGNALS_H

#include <QObject>

class QSocketNotifier;

namespace sim {

class StopSignals : public QObject
{
    Q_OBJECT

public:
    StopSignals();
    ~StopSignals() override;

Q_SIGNALS:
    void received();

private:
    int descriptor = -1; // a signalfd
    QSocketNotifier *notifier = nullptr;
};

} // namespace sim

#endif
