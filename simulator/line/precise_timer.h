// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A timer that fires once, on Qt's event loop, to the microseconds that the machine can keep. QTimer knows
// whole milliseconds only: at 187500 baud that is the time of 17 characters.

#ifndef SIMULATOR_LINE_PRECISE_TIMER_H
#define SIMULATOR_LINE_PRECISE_TIMER_H

#include "simulator/protocol/clock.h"

#include <QObject>
#include <QSocketNotifier>

#include <memory>

namespace sim {

class PreciseTimer : public QObject
{
    Q_OBJECT

public:
    // Throws a LineError when the system has no timer left.
    PreciseTimer();
    ~PreciseTimer() override;

    // Fires after this time, and at once when it is not above zero. An earlier start is forgotten.
    void start(Time wait);
    void stop();

Q_SIGNALS:
    void timeout();

private:
    Q_DISABLE_COPY(PreciseTimer)

    void set(Time wait);
    void fire();

    const int descriptor;
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace sim

#endif
