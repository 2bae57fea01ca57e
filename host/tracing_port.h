// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port that shows what passes through it.

#ifndef HOST_TRACING_PORT_H
#define HOST_TRACING_PORT_H

#include "forwarding_port.h"

#include <QByteArray>
#include <QString>

#include <functional>

namespace host {

// Passes everything on to another port and writes one line per frame: direction, meaning, bytes.
//
//   -> poll of station 2: 10 02 00 5c 5e 16
//   <- acknowledgement: e5
//
// Frames are received in pieces and shown whole. What stays incomplete is shown when a receive falls
// short or the next frame is sent; a receive that brought nothing is shown as silence.
class TracingPort : public ForwardingPort
{
public:
    using WriteLine = std::function<void(const QString &)>;

    TracingPort(AbstractDeviceInterface &port, const WriteLine &writeLine);
    ~TracingPort() override;

    int receive(unsigned char *buffer, int maxLength) override;
    int send(const unsigned char *data, int length) override;

private:
    void showReceived();

    WriteLine writeLine;
    QByteArray received;
};

} // namespace host

#endif
