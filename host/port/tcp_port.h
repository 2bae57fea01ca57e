// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The port of a serial server in the network, which passes bytes on as they are.

#ifndef HOST_PORT_TCP_PORT_H
#define HOST_PORT_TCP_PORT_H

#include "host/port/port.h"
#include "host/port/tcp_name.h"

#include <QDeadlineTimer>
#include <QHostAddress>
#include <QString>
#include <QTcpSocket>

namespace host {

// How a line behind a serial server runs, for people.
extern const char kServerLine[];

// How long looking up a host's name and connecting may take together, where an answer may take so long;
// milliseconds.
int connectTime(const Timing &timing);

class TcpPort final : public Port
{
public:
    // Connects to a port that is named as parseTcpName() takes it. Fails when that does not work in time; a
    // signal ends it at once. baud: what the line behind the server runs at, as far as anybody says.
    TcpPort(const QString &name, int baud, const Timing &timing);

    // Only connecting tells.
    bool isThere() const override { return true; }
    QString portName() const override { return name; }
    int handle() const override { return int(socket.socketDescriptor()); }
    QString settingsText() const override { return kServerLine; }
    Failure loss() const override;

private:
    void open() override;
    void close() override { socket.abort(); }
    QIODevice &device() override { return socket; }
    bool takeError() override;
    bool clearInput() override;
    void clearOutput() override { socket.abort(); }
    bool drain() override { return true; }
    short hangUpEvent() const override;
    bool runsOwnLine() const override { return false; }

    void connectTo(const QHostAddress &address, const QDeadlineTimer &deadline);
    [[noreturn]] void failToConnect(bool isLate) const;
    void keepAlive();

    QTcpSocket socket;
    QString name;
    TcpName place;
    int patience; // milliseconds
};

} // namespace host

#endif
