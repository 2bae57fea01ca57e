// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "tracing_port.h"

#include "frame_words.h"

namespace host {

TracingPort::TracingPort(AbstractDeviceInterface &port_, const WriteLine &writeLine_)
    : ForwardingPort(port_), writeLine(writeLine_)
{
}

TracingPort::~TracingPort()
{
    showReceived();
}

int TracingPort::receive(unsigned char *buffer, int maxLength)
{
    const int length = ForwardingPort::receive(buffer, maxLength);
    if (length > 0)
        received += QByteArray(reinterpret_cast<const char *>(buffer), length);
    if (length < maxLength || int(received.size()) == frameSize(received))
        showReceived();
    if (length <= 0)
        writeLine(length < 0 ? "<- nothing more" : "<- silence");
    return length;
}

int TracingPort::send(const unsigned char *data, int length)
{
    showReceived();
    writeLine("-> " + frameLine(QByteArray(reinterpret_cast<const char *>(data), length)));
    return ForwardingPort::send(data, length);
}

void TracingPort::showReceived()
{
    if (!received.isEmpty())
        writeLine("<- " + frameLine(received));
    received.clear();
}

} // namespace host
