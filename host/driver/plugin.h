// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The driver, loaded from its plug-in as a panel does it.

#ifndef HOST_DRIVER_PLUGIN_H
#define HOST_DRIVER_PLUGIN_H

#include "device_setting.h"
#include "driver_interface.h"
#include "driver_setting.h"
#include "host/base/options.h"

#include <QPluginLoader>
#include <QString>
#include <QStringList>

#include <memory>

namespace host {

class Plugin
{
public:
    // Loads the library; fails when it is none or its interface is not this host's.
    explicit Plugin(const QString &file);
    ~Plugin();

    DriverInterface &driver() const { return *interface; }
    QString file() const { return loader.fileName(); }

    // Whether it is a driver of something else than the S7-200, by its name.
    bool isOtherDriver() const;

    // Return the driver's proposals for a new connection, and fail when it makes none.
    std::unique_ptr<DeviceSetting> serialDefaults() const;
    std::unique_ptr<DriverSetting> driverDefaults() const;

private:
    QPluginLoader loader;
    DriverInterface *interface = nullptr;
};

// Where the plug-in is looked for when nobody names it, the first place first: beside the program, then
// in the lib directory that goes with it, of an installation or of a build tree.
QStringList pluginPlaces(const QString &programDirectory);

// The plug-in to load: --plugin, then the environment's S7PPI_PLUGIN, then the first place that has one.
// Fails when none has.
QString findPlugin(const DriverOptions &options);

// Whether addresses are for the driver alone: when the user says so, and when the plug-in that is named
// drives something else. Loads that one, and fails when it is of no use.
bool takesRawAddresses(const DriverOptions &options);

} // namespace host

#endif
