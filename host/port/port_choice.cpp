// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/port_choice.h"

#include "host/base/failure.h"

#include <QSerialPortInfo>
#include <QStringList>

namespace host {

namespace {

QString adapterText(const UsbAdapter &adapter)
{
    return adapter.description.isEmpty() ? adapter.device
                                         : QString("%1 (%2)").arg(adapter.device, adapter.description);
}

} // namespace

// Ports of the main board have no vendor.
QList<UsbAdapter> usbAdapters()
{
    QList<UsbAdapter> adapters;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &port : ports)
        if (port.hasVendorIdentifier())
            adapters << UsbAdapter{port.systemLocation(), port.description()};
    return adapters;
}

QString onlyAdapter(const QList<UsbAdapter> &adapters)
{
    if (adapters.size() < 2)
        return adapters.isEmpty() ? QString() : adapters.first().device;
    QStringList texts;
    for (const UsbAdapter &adapter : adapters)
        texts << adapterText(adapter);
    throw Failure(ExitCode::Usage, "there are several USB serial adapters: " + texts.join(", "),
                  "choose one with --port, as --port " + adapters.first().device);
}

QString usualPort(const QList<UsbAdapter> &adapters)
{
    const QString adapter = onlyAdapter(adapters);
    return adapter.isEmpty() ? QString(kSimulatorPort) : adapter;
}

QString choosePort(const PortOptions &options)
{
    return options.port ? *options.port : usualPort(usbAdapters());
}

} // namespace host
