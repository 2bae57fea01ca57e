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
    QString adapter = onlyAdapter(adapters);
    if (adapter.isEmpty())
        throw Failure(ExitCode::PortUnusable, "no port is named, and there is no USB serial adapter",
                      QString("plug the adapter in, or name a port with --port; --port %1 (or S7PPI_PORT=%1) "
                              "is a simulated controller")
                          .arg(kSimulatorPort));
    return adapter;
}

QString choosePort(const PortOptions &options)
{
    return options.port ? *options.port : usualPort(usbAdapters());
}

} // namespace host
