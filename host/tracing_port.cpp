// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "tracing_port.h"

#include "frame_words.h"

namespace host {

namespace {

QString line(const char *direction, const QByteArray &frame)
{
    return QString("%1 %2: %3").arg(direction, frameWords(frame), QString::fromLatin1(frame.toHex(' ')));
}

} // namespace

TracingPort::TracingPort(AbstractDeviceInterface &port_, const WriteLine &writeLine_)
    : port(port_), writeLine(writeLine_)
{
}

TracingPort::~TracingPort()
{
    showReceived();
}

int TracingPort::receive(unsigned char *buffer, int maxLength)
{
    const int length = port.receive(buffer, maxLength);
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
    writeLine(line("->", QByteArray(reinterpret_cast<const char *>(data), length)));
    return port.send(data, length);
}

bool TracingPort::setOption(int key, const QVariant &value)
{
    return port.setOption(key, value);
}

int TracingPort::retry()
{
    return port.retry();
}

int TracingPort::stationId()
{
    return port.stationId();
}

int TracingPort::delay()
{
    return port.delay();
}

void TracingPort::showReceived()
{
    if (!received.isEmpty())
        writeLine(line("<-", received));
    received.clear();
}

} // namespace host
