// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/plugin.h"

#include "host/base/failure.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QString>

#include <utility>

namespace host {

namespace {

const char kLibrary[] = "libs7_200_ppi.so";
const char kVariable[] = "S7PPI_PLUGIN";
const char kDriverName[] = "Simatic S7-200 PPI";
const char kPlaceHint[] = "name the file with --plugin FILE or in the environment variable S7PPI_PLUGIN";

Failure unusable(const QString &file, const QString &reason, const QString &hint)
{
    return Failure(ExitCode::PluginUnusable, "the plug-in " + file + " is of no use: " + reason, hint);
}

Failure withoutDefaults(const QString &file)
{
    return unusable(file, "it proposes no settings", "use a plug-in that does");
}

} // namespace

Plugin::Plugin(const QString &file) : loader(QFileInfo(file).absoluteFilePath())
{
    if (!QFileInfo::exists(file))
        throw unusable(file, "there is no such file", kPlaceHint);
    const QString identifier = loader.metaData().value("IID").toString();
    if (!identifier.isEmpty() && identifier != DRIVER_INTERFACE_ID)
        throw unusable(file, "its interface is " + identifier + ", not " + DRIVER_INTERFACE_ID,
                       "build host and plug-in with the same S7PPI_INTERFACE_DOMAIN");
    interface = qobject_cast<DriverInterface *>(loader.instance());
    if (!interface)
        throw unusable(file, loader.errorString(), "it must be a driver built for this Qt and this machine");
}

Plugin::~Plugin()
{
    loader.unload();
}

bool Plugin::isOtherDriver() const
{
    return interface->name() != kDriverName;
}

std::unique_ptr<DeviceSetting> Plugin::serialDefaults() const
{
    std::unique_ptr<DeviceSetting> setting(interface->getDefaultSerialDeviceSetting());
    return setting ? std::move(setting) : throw withoutDefaults(file());
}

std::unique_ptr<DriverSetting> Plugin::driverDefaults() const
{
    std::unique_ptr<DriverSetting> setting(interface->getDefaultDriverSetting());
    return setting ? std::move(setting) : throw withoutDefaults(file());
}

QStringList pluginPlaces(const QString &programDirectory)
{
    QStringList places;
    for (const char *directory : {".", "../lib", S7PPI_DRIVER_DIR})
        places << QDir::cleanPath(programDirectory + '/' + directory + '/' + kLibrary);
    return places;
}

QString findPlugin(const DriverOptions &options)
{
    if (options.plugin)
        return *options.plugin;
    if (qEnvironmentVariableIsSet(kVariable))
        return qEnvironmentVariable(kVariable);
    const QStringList places = pluginPlaces(QCoreApplication::applicationDirPath());
    for (const QString &place : places)
        if (QFileInfo::exists(place))
            return place;
    throw Failure(ExitCode::PluginUnusable, "no plug-in found; looked for " + places.join(", "), kPlaceHint);
}

// A driver without proposals could not be used: that is told before anything is said of the items.
bool takesRawAddresses(const DriverOptions &options)
{
    const bool isNamed = options.plugin || qEnvironmentVariableIsSet(kVariable);
    if (options.rawAddress || !isNamed)
        return options.rawAddress;
    const Plugin plugin(findPlugin(options));
    plugin.serialDefaults();
    plugin.driverDefaults();
    return plugin.isOtherDriver();
}

} // namespace host
