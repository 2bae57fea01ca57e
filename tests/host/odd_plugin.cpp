// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A driver that proposes nothing usable: a parity that no port has, no driver settings at all. It
// reads nothing and gives no reason.

#include "device_setting.h"
#include "driver_interface.h"
#include "driver_setting.h"

#include <QObject>
#include <QtPlugin>

class OddPlugin : public QObject, public DriverInterface
{
    Q_OBJECT
    Q_INTERFACES(DriverInterface)
    Q_PLUGIN_METADATA(IID DRIVER_INTERFACE_ID)

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
        return new DeviceSetting(kRs485Port, "COM1", 9600, 8, 0, 9);
    }
    DriverSetting *getDefaultDriverSetting() override { return nullptr; }
    int supportedCommunicationFlags() override { return 0; }
    void setDebugMode(bool) override {}
    int getBlockAccessSize() override { return 0; }
    int getBitBlockAccessSize() override { return 0; }
    bool hasError() override { return false; }
    QString getLastError() override { return QString(); }
    QObject *getThisObject() override { return this; }
};

#include "odd_plugin.moc"
