// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a driver would send for a request. No port is opened.

#ifndef HOST_DRIVER_DRY_RUN_H
#define HOST_DRIVER_DRY_RUN_H

#include "host/base/messages.h"
#include "host/driver/plugin.h"
#include "host/driver/read_plan.h"
#include "host/driver/write_plan.h"
#include "host/port/line_settings.h"

#include <QByteArray>
#include <QList>

#include <functional>
#include <optional>

namespace host {

class DryRunPort;

class DryRun
{
public:
    explicit DryRun(const Options &options);

    // These return the frames of one request: the request itself and the poll behind it. They go to the
    // options' station unless another is named, and fail when the driver refuses the request and sends
    // nothing.
    QList<QByteArray> ofRead(const CommunicatorCommand &command,
                             std::optional<int> otherStation = std::nullopt) const;
    QList<QByteArray> ofWrite(const WriteRequest &request,
                              std::optional<int> otherStation = std::nullopt) const;

    // Why an item cannot be written; nothing when it can. Only its first request is tried: those behind it
    // differ in number and count.
    std::optional<Failure> writeRefusal(const Item &item) const;

    // Whether the frames are of a protocol that is not known here.
    bool hasUnknownFrames() const { return isRaw; }

    // The station that the frames go to unless another is named.
    int usualStation() const { return station; }

    // The line that the frames would be sent on.
    const LineSettings &line() const { return lineInUse; }

private:
    QList<QByteArray> framesOf(const std::function<void(DryRunPort *)> &request,
                               std::optional<int> otherStation) const;

    Plugin plugin;
    int station;
    LineSettings lineInUse;
    bool isRaw;           // the frames are of a protocol that is not known here
    DriverLogPause noLog; // the driver's messages would say only that nobody answers
};

} // namespace host

#endif
