// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/line/serial_line.h"

#include "common/port_lock.h"

#include <QFileInfo>

namespace sim {

namespace {

// Qt looks in /dev for a name that does not begin like a path. A user who names a file of the working
// directory means that one.
QString locationOf(const QString &device)
{
    const QFileInfo info(device);
    return info.exists() ? info.absoluteFilePath() : device;
}

} // namespace

SerialLine::SerialLine(const QString &device_, qint32 baudRate, QSerialPort::Parity parity) : device(device_)
{
    const QString location = locationOf(device);
    if (const QString obstacle = common::lockObstacle(common::lockFileOf(location)); !obstacle.isEmpty())
        throw LineError(QString::fromLatin1("cannot open %1: %2 is no lock file, and is in the way")
                            .arg(device, obstacle),
                        QString::fromLatin1("no program that locks a port makes such a thing: remove it"));
    port.setPortName(location);
    port.setBaudRate(baudRate);
    port.setParity(parity);
    if (!port.open(QIODevice::ReadWrite))
        throw LineError(
            QString::fromLatin1("cannot open %1: %2").arg(device, port.errorString()),
            QString::fromLatin1("s7ppi ports lists the ports that there are, and who may use them"));
    connect(&port, &QSerialPort::readyRead, this, [this] { Q_EMIT received(port.readAll()); });
    connect(&port, &QSerialPort::errorOccurred, this, &SerialLine::reportError);
}

void SerialLine::send(const Bytes &bytes)
{
    port.write(reinterpret_cast<const char *>(bytes.data()), static_cast<qint64>(bytes.size()));
}

// A port that is gone reports one of several errors, over and over. Only the first one is passed on.
void SerialLine::reportError(QSerialPort::SerialPortError error)
{
    if (error == QSerialPort::NoError)
        return;
    port.disconnect(this);
    Q_EMIT lost();
}

} // namespace sim
