// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A driver that crashes as soon as it is asked for its name.

#include "idle_driver.h"

#include <QtPlugin>

#include <csignal>

class CrashingPlugin : public IdleDriver
{
    Q_OBJECT
    Q_INTERFACES(DriverInterface)
    Q_PLUGIN_METADATA(IID DRIVER_INTERFACE_ID)

public:
    QString name() override
    {
        std::raise(SIGSEGV);
        return QString();
    }
};

#include "crashing_plugin.moc"
