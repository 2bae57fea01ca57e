// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/dry_run_port.h"

#include "host/frames/words.h"

#include <QVariant>

namespace host {

DryRunPort::DryRunPort(int station_, const TakeFrame &takeFrame_, bool isAcknowledging)
    : station(station_), takeFrame(takeFrame_), acknowledged(!isAcknowledging)
{
}

int DryRunPort::receive(unsigned char *buffer, int maxLength)
{
    if (acknowledged || maxLength < 1)
        return 0;
    acknowledged = true;
    buffer[0] = kAcknowledgement;
    return 1;
}

int DryRunPort::send(const unsigned char *data, int length)
{
    sent = true;
    takeFrame(QByteArray(reinterpret_cast<const char *>(data), length));
    return length;
}

bool DryRunPort::setOption(int /*key*/, const QVariant & /*value*/)
{
    return true;
}

int DryRunPort::retry()
{
    return 0;
}

int DryRunPort::stationId()
{
    return station;
}

int DryRunPort::delay()
{
    return 0;
}

} // namespace host
