// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/request_frames.h"

#include "host/base/driver_log.h"
#include "host/driver/driver_fault.h"
#include "host/driver/rehearsal_port.h"

namespace host {

RequestFrames::RequestFrames(const Options &options)
    : plugin(findPlugin(options)), station(options.station.value_or(plugin.driverDefaults()->stationid)),
      showsLog(options.verbose)
{
    installDriverLog(false);
}

RequestFrames::~RequestFrames()
{
    installDriverLog(showsLog);
}

QList<QByteArray> RequestFrames::ofRead(const CommunicatorCommand &command) const
{
    return framesOf([&](RehearsalPort *port) { plugin.driver().read(port, command); });
}

QList<QByteArray> RequestFrames::ofWrite(const WriteRequest &request) const
{
    return framesOf([&](RehearsalPort *port) { plugin.driver().write(port, request.command, request.data); });
}

QList<QByteArray> RequestFrames::framesOf(const std::function<void(RehearsalPort *)> &request) const
{
    QList<QByteArray> frames;
    RehearsalPort port(station, [&frames](const QByteArray &frame) { frames += frame; });
    request(&port);
    return port.hasSent() ? frames : throw driverFailure(plugin.driver().getLastError());
}

} // namespace host
