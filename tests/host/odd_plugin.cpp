// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A driver that proposes nothing usable: a parity that no port has, no driver settings at all.

#include "idle_driver.h"

#include <QtPlugin>

class OddPlugin : public IdleDriver
{
    Q_OBJECT
    Q_INTERFACES(DriverInterface)
    Q_PLUGIN_METADATA(IID DRIVER_INTERFACE_ID)

public:
    DeviceSetting *getDefaultSerialDeviceSetting() override
    {
        return new DeviceSetting(kRs485Port, "COM1", 9600, 8, 0, 9);
    }
    DriverSetting *getDefaultDriverSetting() override { return nullptr; }
};

#include "odd_plugin.moc"
