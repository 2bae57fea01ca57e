// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The server runs controllers in real time on a line: it passes to them what the line brings, and to the line
// what they send, when it is due.

#ifndef SIMULATOR_LINE_SERVER_H
#define SIMULATOR_LINE_SERVER_H

#include "simulator/line/controllers.h"
#include "simulator/line/line.h"
#include "simulator/line/precise_timer.h"
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
    // Both must outlive the server. The controllers' clock runs on from where it stands.
    Server(Line &line, Controllers &controllers);

private:
    void take(const QByteArray &bytes);
    void keepTime();
    void send(const Bytes &bytes);
    void setTimer();

    Line &line;
    Controllers &controllers;
    const Time startTime;
    QElapsedTimer sinceStart;
    PreciseTimer timer;
};

} // namespace sim

#endif
