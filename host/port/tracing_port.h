// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port that shows what passes through it.

#ifndef HOST_PORT_TRACING_PORT_H
#define HOST_PORT_TRACING_PORT_H

#include "host/frames/listener.h"
#include "host/port/forwarding_port.h"

#include <QByteArray>

#include <vector>

namespace host {

// Passes everything on to another port and tells its listeners of every frame. Frames are received in pieces
// and told whole. What stays incomplete is told when a receive falls short or the next frame is sent.
class TracingPort : public ForwardingPort
{
public:
    // The listeners must outlive the port. Where the protocol is not known a frame is whole when the driver
    // sends again, receives too little, or is done.
    TracingPort(AbstractDeviceInterface &port, const std::vector<FrameListener *> &listeners,
                bool isProtocolKnown = true);
    ~TracingPort() override;

    // Tells what was received and not told yet.
    void tellReceived();

    int receive(unsigned char *buffer, int maxLength) override;
    int send(const unsigned char *data, int length) override;

private:
    std::vector<FrameListener *> listeners;
    bool isProtocolKnown;
    QByteArray pieces;
};

} // namespace host

#endif
