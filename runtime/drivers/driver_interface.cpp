// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "driver_interface.h"

namespace {

const char kNotAssigned[] = "Not Assigned";

}

DriverInterface::~DriverInterface() {}

QString DriverInterface::name()
{
    return QLatin1String(kNotAssigned);
}

QString DriverInterface::vender()
{
    return QLatin1String(kNotAssigned);
}

QString DriverInterface::getVersionNumber()
{
    return QLatin1String(kNotAssigned);
}

QString DriverInterface::getStringBasedDefaultDriverSetting()
{
    return QLatin1String("RS232,9600,EVEN,7,1");
}

bool DriverInterface::isSupportSessionCommand()
{
    return false;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value in the contract
void DriverInterface::setSessionCommand(QList<CommunicatorCommand> /*commands*/) {}

void DriverInterface::clearSessionCommand() {}

bool DriverInterface::deviceSettingChanged(const DeviceSetting * /*setting*/)
{
    return true;
}

bool DriverInterface::isConnected(AbstractDeviceInterface * /*dev*/)
{
    return true;
}
