// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Connects a station to a line: what the line brings goes to the station, what the station says goes back.

#ifndef SIMULATOR_SERVER_H
#define SIMULATOR_SERVER_H

#include "simulator/line.h"
#include "simulator/station.h"

#include <QTimer>

namespace sim {

class Server : public QObject
{
    Q_OBJECT

public:
    // Both must outlive the server.
    Server(Line &line, Station &station);

private:
    void take(const QByteArray &bytes);

    Line &m_line;
    Station &m_station;
    QTimer m_silence;
};

} // namespace sim

#endif
