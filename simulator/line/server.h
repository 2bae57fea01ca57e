// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The server runs a simulator in real time on a line: it passes to the simulator what the line brings, and to
// the line what the simulator sends, when it is due.

#ifndef SIMULATOR_LINE_SERVER_H
#define SIMULATOR_LINE_SERVER_H

#include "simulator/line/line.h"
#include "simulator/line/precise_timer.h"
#include "simulator/line/simulator.h"
#include "simulator/protocol/bytes.h"
#include "simulator/protocol/clock.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>

namespace sim {

class Server : public QObject
{
    Q_OBJECT

public:
    // Both must outlive the server. The simulator's clock runs on from where it stands.
    Server(Line &line, Simulator &simulator);

private:
    void take(const QByteArray &bytes);
    void keepTime();
    void send(const Bytes &bytes);
    void setTimer();

    Line &line;
    Simulator &simulator;
    const Time startTime;
    QElapsedTimer sinceStart;
    PreciseTimer timer;
};

} // namespace sim

#endif
