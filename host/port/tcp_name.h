// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The name of a serial server's port, as users write it: tcp:HOST:PORT.

#ifndef HOST_PORT_TCP_NAME_H
#define HOST_PORT_TCP_NAME_H

#include <QString>

#include <QtGlobal>

namespace host {

struct TcpName
{
    QString host; // a name, or an address without brackets
    quint16 port;
};

// "tcp:gateway:4001", "tcp:192.168.0.5:4001", "tcp:[fe80::1%eth0]:4001". Fails on everything else.
TcpName parseTcpName(const QString &text);

} // namespace host

#endif
