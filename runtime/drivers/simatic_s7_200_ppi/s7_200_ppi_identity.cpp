// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the driver says of itself: fixed answers, the same for every object and port.

#include "s7_200_ppi.h"

#include "device_setting.h"
#include "driver_setting.h"
#include "ppi_static.h"

int DriverS7_200_PPI::totalSize()
{
    return 12250;
}

bool DriverS7_200_PPI::validation(const QString & /*text*/)
{
    return false;
}

QString DriverS7_200_PPI::name()
{
    return QLatin1String("Simatic S7-200 PPI");
}

QString DriverS7_200_PPI::vender()
{
    return QLatin1String("Siemens");
}

QString DriverS7_200_PPI::getVersionNumber()
{
    return VERSION_STRING;
}

int DriverS7_200_PPI::supportedCommunicationFlags()
{
    return 16 | 32 | kRs485Port;
}

DeviceSetting *DriverS7_200_PPI::getDefaultSerialDeviceSetting()
{
    return new DeviceSetting(kRs485Port, QLatin1String("COM2"), 9600, 8, kOneStopBit, kEvenParity);
}

DriverSetting *DriverS7_200_PPI::getDefaultDriverSetting()
{
    return new DriverSetting(500, 3, 2, 0);
}

QString DriverS7_200_PPI::getStringBasedDefaultDriverSetting()
{
    return QLatin1String("RS485,9600,EVEN,8,1");
}

int DriverS7_200_PPI::getBlockAccessSize()
{
    return 32;
}

int DriverS7_200_PPI::getBitBlockAccessSize()
{
    return 32;
}

QObject *DriverS7_200_PPI::getThisObject()
{
    return this;
}
