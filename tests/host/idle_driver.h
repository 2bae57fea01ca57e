// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A driver with good proposals that reads nothing, writes nothing and sees no error in it: what the test
// plug-ins begin with.

#ifndef TESTS_HOST_IDLE_DRIVER_H
#define TESTS_HOST_IDLE_DRIVER_H

#include "device_setting.h"
#include "driver_interface.h"
#include "driver_setting.h"

#include <QObject>

class IdleDriver : public QObject, public DriverInterface
{
public:
    int totalSize() override { return 0; }
    int write(AbstractDeviceInterface *, const CommunicatorCommand &, const QByteArray &) override
    {
        return 0;
    }
    QByteArray read(AbstractDeviceInterface *, const CommunicatorCommand &) override { return QByteArray(); }
    bool initialize(AbstractDeviceInterface *) override { return true; }
    bool validation(const QString &) override { return true; }
    DeviceSetting *getDefaultSerialDeviceSetting() override
    {
        return new DeviceSetting(kRs485Port, "COM1", 9600, 8, 0, 2);
    }
    DriverSetting *getDefaultDriverSetting() override { return new DriverSetting(500, 0, 2, 0); }
    int supportedCommunicationFlags() override { return 0; }
    void setDebugMode(bool) override {}
    int getBlockAccessSize() override { return 0; }
    int getBitBlockAccessSize() override { return 0; }
    bool hasError() override { return false; }
    QString getLastError() override { return QString(); }
    QObject *getThisObject() override { return this; }
};

#endif
