// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/rehearsal_port.h"

#include "host/frames/frame_words.h"

namespace host {

RehearsalPort::RehearsalPort(int station_, const TakeFrame &takeFrame_)
    : station(station_), takeFrame(takeFrame_)
{
}

int RehearsalPort::receive(unsigned char *buffer, int maxLength)
{
    if (acknowledged || maxLength < 1)
        return 0;
    acknowledged = true;
    buffer[0] = kAcknowledgement;
    return 1;
}

int RehearsalPort::send(const unsigned char *data, int length)
{
    sent = true;
    takeFrame(QByteArray(reinterpret_cast<const char *>(data), length));
    return length;
}

bool RehearsalPort::setOption(int /*key*/, const QVariant & /*value*/)
{
    return true;
}

int RehearsalPort::retry()
{
    return 0;
}

int RehearsalPort::stationId()
{
    return station;
}

int RehearsalPort::delay()
{
    return 0;
}

} // namespace host
