// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A driver that breaks its contract: it lets an exception out.

#include "idle_driver.h"

#include <QtPlugin>

#include <new>

class ThrowingPlugin : public IdleDriver
{
    Q_OBJECT
    Q_INTERFACES(DriverInterface)
    Q_PLUGIN_METADATA(IID DRIVER_INTERFACE_ID)

public:
    QByteArray read(AbstractDeviceInterface *, const CommunicatorCommand &) override
    {
        throw std::bad_alloc();
    }
};

#include "throwing_plugin.moc"
