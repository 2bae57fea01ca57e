// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/tracing_port.h"

#include "host/frames/words.h"

namespace host {

TracingPort::TracingPort(AbstractDeviceInterface &port_, const std::vector<FrameListener *> &listeners_,
                         bool isProtocolKnown_)
    : ForwardingPort(port_), listeners(listeners_), isProtocolKnown(isProtocolKnown_)
{
}

TracingPort::~TracingPort()
{
    tellReceived();
}

int TracingPort::receive(unsigned char *buffer, int maxLength)
{
    const int length = ForwardingPort::receive(buffer, maxLength);
    if (length > 0)
        pieces += QByteArray(reinterpret_cast<const char *>(buffer), length);
    const bool isWhole = isProtocolKnown && int(pieces.size()) == frameSize(pieces);
    if (length < maxLength || isWhole)
        tellReceived();
    if (length <= 0)
        for (FrameListener *listener : listeners)
            listener->heardNothing(length < 0);
    return length;
}

int TracingPort::send(const unsigned char *data, int length)
{
    tellReceived();
    for (FrameListener *listener : listeners)
        listener->sent(QByteArray(reinterpret_cast<const char *>(data), length));
    return ForwardingPort::send(data, length);
}

void TracingPort::tellReceived()
{
    if (!pieces.isEmpty())
        for (FrameListener *listener : listeners)
            listener->received(pieces);
    pieces.clear();
}

} // namespace host
