// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/dry_run.h"

#include "host/driver/driver_fault.h"
#include "host/driver/dry_run_port.h"
#include "host/driver/pause_skip.h"

namespace host {

DryRun::DryRun(const Options &options)
    : plugin(findPlugin(options)), station(options.station.value_or(plugin.driverDefaults()->stationid)),
      lineInUse(withOptions(lineSettings(*plugin.serialDefaults()), options)),
      isRaw(options.rawAddress || plugin.isOtherDriver())
{
}

QList<QByteArray> DryRun::ofRead(const CommunicatorCommand &command, std::optional<int> otherStation) const
{
    return framesOf([&](DryRunPort *port) { plugin.driver().read(port, command); }, otherStation);
}

QList<QByteArray> DryRun::ofWrite(const WriteRequest &request, std::optional<int> otherStation) const
{
    return framesOf([&](DryRunPort *port) { plugin.driver().write(port, request.command, request.data); },
                    otherStation);
}

QList<QByteArray> DryRun::framesOf(const std::function<void(DryRunPort *)> &request,
                                   std::optional<int> otherStation) const
{
    QList<QByteArray> frames;
    DryRunPort port(
        otherStation.value_or(station), [&frames](const QByteArray &frame) { frames += frame; }, !isRaw);
    const PauseSkip noPauses;
    request(&port);
    return port.hasSent() ? frames : throw unsentFailure(plugin.driver().getLastError());
}

std::optional<Failure> DryRun::writeRefusal(const Item &item) const
{
    try {
        ofWrite(planWrite(item, QByteArray(item.size(), '\0')).first(), item.station);
        return std::nullopt;
    } catch (const Failure &failure) {
        return failure;
    }
}

} // namespace host
