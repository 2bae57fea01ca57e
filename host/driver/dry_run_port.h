// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port that leads nowhere, for a look at what a driver would send.

#ifndef HOST_DRIVER_DRY_RUN_PORT_H
#define HOST_DRIVER_DRY_RUN_PORT_H

#include "abstract_device_interface.h"

#include <QByteArray>
#include <QVariant>

#include <functional>

namespace host {

// Hands over what is sent, frame by frame, to a function. The first receive finds the acknowledgement,
// without which the driver would not go on to its poll; the answer to the poll never comes, and nothing is
// repeated. A driver of something else receives nothing. One port serves one request.
class DryRunPort : public AbstractDeviceInterface
{
public:
    using TakeFrame = std::function<void(const QByteArray &)>;

    DryRunPort(int station, const TakeFrame &takeFrame, bool isAcknowledging = true);

    int receive(unsigned char *buffer, int maxLength) override;
    int send(const unsigned char *data, int length) override;
    bool setOption(int key, const QVariant &value) override;
    int retry() override;
    int stationId() override;
    int delay() override;

    bool hasSent() const { return sent; }

private:
    int station;
    TakeFrame takeFrame;
    bool sent = false;
    bool acknowledged; // nothing more comes
};

} // namespace host

#endif
