// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The driver of an invented terminal, whose frames README.md describes.

#ifndef WEIGHING_TERMINAL_H
#define WEIGHING_TERMINAL_H

#include <driver_interface.h>

class WeighingTerminal : public QObject, public DriverInterface
{
    Q_OBJECT
    Q_INTERFACES(DriverInterface)
    Q_PLUGIN_METADATA(IID DRIVER_INTERFACE_ID)

public:
    QByteArray read(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd) override;
    int write(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd, const QByteArray &data) override;
    bool hasError() override { return !lastError.isEmpty(); }
    QString getLastError() override { return lastError; }

    bool initialize(AbstractDeviceInterface *) override { return true; }
    bool validation(const QString &) override { return true; }
    QString name() override { return "Weighing terminal"; }
    QString vender() override { return "Example"; }
    QString getVersionNumber() override { return "0.1.0"; }
    DeviceSetting *getDefaultSerialDeviceSetting() override;
    DriverSetting *getDefaultDriverSetting() override;
    QString getStringBasedDefaultDriverSetting() override { return "RS485,19200,NONE,8,1"; }
    int supportedCommunicationFlags() override;
    int totalSize() override { return 12; }
    int getBlockAccessSize() override { return 4; }
    int getBitBlockAccessSize() override { return 0; }
    void setDebugMode(bool) override {}
    QObject *getThisObject() override { return this; }

private:
    QByteArray request(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd, char command,
                       const QByteArray &value);
    QByteArray attempt(AbstractDeviceInterface *dev, const QByteArray &frame);
    QByteArray failed(const QString &reason);

    QString lastError;
};

#endif
