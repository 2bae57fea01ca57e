// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/server.h"

namespace sim {

namespace {

// A frame's bytes follow each other at once. At 9600 baud this is the time of some 170 characters, enough
// for any serial adapter's buffering and well below a master's reply time-out.
constexpr int kSilenceMs = 200;

} // namespace

Server::Server(Line &line, Station &station) : m_line(line), m_station(station)
{
    m_silence.setSingleShot(true);
    m_silence.setInterval(kSilenceMs);
    connect(&m_silence, &QTimer::timeout, this, [this] { m_station.lineFellSilent(); });
    connect(&m_line, &Line::received, this, &Server::take);
}

void Server::take(const QByteArray &bytes)
{
    const auto *data = reinterpret_cast<const uint8_t *>(bytes.constData());
    const Bytes reply = m_station.receive(data, static_cast<size_t>(bytes.size()));
    if (!reply.empty())
        m_line.send(reply);
    m_silence.start();
}

} // namespace sim
