// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The idle driver as it is.

#include "idle_driver.h"

#include <QtPlugin>

class IdlePlugin : public IdleDriver
{
    Q_OBJECT
    Q_INTERFACES(DriverInterface)
    Q_PLUGIN_METADATA(IID DRIVER_INTERFACE_ID)
};

#include "idle_plugin.moc"
