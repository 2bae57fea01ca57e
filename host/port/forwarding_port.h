// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port that passes everything on to another one: the base of those that look at what passes.

#ifndef HOST_PORT_FORWARDING_PORT_H
#define HOST_PORT_FORWARDING_PORT_H

#include "abstract_device_interface.h"

#include <QVariant>

namespace host {

class ForwardingPort : public AbstractDeviceInterface
{
public:
    // The other port must outlive this one.
    explicit ForwardingPort(AbstractDeviceInterface &port_) : port(port_) {}

    int receive(unsigned char *buffer, int maxLength) override { return port.receive(buffer, maxLength); }
    int send(const unsigned char *data, int length) override { return port.send(data, length); }
    bool setOption(int key, const QVariant &value) override { return port.setOption(key, value); }
    int retry() override { return port.retry(); }
    int stationId() override { return port.stationId(); }
    int delay() override { return port.delay(); }

private:
    AbstractDeviceInterface &port;
};

} // namespace host

#endif
