// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/port_details.h"

#include "host/base/failure.h"
#include "host/base/files.h"
#include "host/base/options.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

#include <unistd.h>

namespace host {

namespace {

QString withDirectory(const QString &name, const QString &root)
{
    const QString below = "/dev/" + name;
    return QFileInfo::exists(root + name) || !QFileInfo::exists(root + below) ? name : below;
}

// Goes up from a device's directory, to that of the bus that the device is on and so forth, and returns the
// first one that has an entry of that name.
QString nearestWith(const QString &entry, const QString &directory)
{
    for (QDir place(directory); !place.isRoot(); place.setPath(QFileInfo(place.path()).path()))
        if (QFileInfo::exists(place.filePath(entry)))
            return place.path();
    return QString();
}

QString classDirectory(const QString &root)
{
    return root + "/sys/class/tty";
}

std::optional<int> numberIn(const QString &name)
{
    bool isNumber = false;
    const int number = firstLine(name).toInt(&isNumber);
    return isNumber ? std::optional<int>(number) : std::nullopt;
}

// A main board's ports have a bus of their own below their controller's, whose driver says nothing.
QString driverOf(const QString &hardware)
{
    const QString place = nearestWith("driver", hardware);
    if (place.isEmpty())
        return QString();
    const QString driver = QFileInfo(place + "/driver").canonicalFilePath();
    return driver.contains("/bus/serial-base/") ? driverOf(QFileInfo(place).path())
                                                : QFileInfo(driver).fileName();
}

// The kernel keeps some names for ports that no board has.
bool hasHardware(const QFileInfo &tty)
{
    return QFileInfo::exists(tty.filePath() + "/device") && numberIn(tty.filePath() + "/type") != 0;
}

// Adds what the kernel knows of the adapter; it knows nothing of a port that is no hardware.
void describeAdapter(PortDetails &port, const QString &hardware)
{
    if (hardware.isEmpty())
        return;
    port.driver = driverOf(hardware);
    const QString usb = nearestWith("idVendor", hardware);
    if (usb.isEmpty())
        return;
    port.description = firstLine(usb + "/product");
    port.maker = firstLine(usb + "/manufacturer");
    port.serialNumber = firstLine(usb + "/serial");
    port.usbId = firstLine(usb + "/idVendor") + ':' + firstLine(usb + "/idProduct");
}

bool hasRight(const QString &name, int right)
{
    return access(QFile::encodeName(name).constData(), right) == 0;
}

// The device's name that begins with /dev, whatever link was followed.
QString deviceName(const QFileInfo &file, const QString &root)
{
    return file.canonicalFilePath().mid(int(QFileInfo(root).canonicalFilePath().size()));
}

// The link of a directory that leads to the file; empty without one.
QString linkTo(const QFileInfo &file, const QString &directory)
{
    const QFileInfoList links = QDir(directory).entryInfoList(QDir::System | QDir::Files, QDir::Name);
    for (const QFileInfo &link : links)
        if (link.canonicalFilePath() == file.canonicalFilePath())
            return link.filePath();
    return QString();
}

} // namespace

QStringList serialPorts(const QString &root)
{
    QStringList devices;
    const QFileInfoList ttys = QDir(classDirectory(root)).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QFileInfo &tty : ttys) {
        const QString device = "/dev/" + tty.fileName();
        if (hasHardware(tty) && QFileInfo::exists(root + device))
            devices << device;
    }
    return devices;
}

PortDetails portDetails(const QString &name, const QString &root)
{
    if (name.startsWith(kTcpPrefix))
        throw Failure(ExitCode::PortUnusable, name + " is no port of this machine",
                      "s7ppi doctor --port " + name + " looks at the port of a serial server");
    const QString device = withDirectory(name, root);
    const QFileInfo file(root + device);
    if (!file.exists())
        throw Failure(ExitCode::PortUnusable, device + " does not exist",
                      "check the name and the plug; s7ppi ports lists what is there");
    const QString tty = file.canonicalFilePath().section('/', -1);
    const QString known = classDirectory(root) + '/' + tty;
    if (!QFileInfo::exists(known) && !isPseudoTerminal(file.filePath()))
        throw Failure(ExitCode::PortUnusable, device + " is no port",
                      "s7ppi ports lists the serial ports of this machine");
    PortDetails port;
    port.device = deviceName(file, root);
    port.byId = linkTo(file, root + "/dev/serial/by-id").mid(int(root.size()));
    port.group = file.group();
    port.isReadable = hasRight(file.filePath(), R_OK);
    port.isWritable = hasRight(file.filePath(), W_OK);
    port.holders = portHolders(file.filePath());
    port.latency = numberIn(root + latencyFile(file.canonicalFilePath()));
    describeAdapter(port, QFileInfo(known + "/device").canonicalFilePath());
    return port;
}

QString adapterText(const PortDetails &port)
{
    if (isPseudoTerminal(port.device))
        return "none, it is a pseudo-terminal";
    const QString number = port.serialNumber.isEmpty() ? QString() : "serial number " + port.serialNumber;
    QStringList texts = {port.driver, port.description, port.maker, port.usbId, number};
    texts.removeAll(QString());
    return texts.join(", ");
}

QString rightsText(const PortDetails &port)
{
    if (port.isReadable && port.isWritable)
        return "readable and writable";
    return QString("%1readable, %2writable, group %3")
        .arg(port.isReadable ? "" : "not ", port.isWritable ? "" : "not ", port.group);
}

// Nobody should join root: it may do everything.
QString groupAdvice(const QString &group)
{
    if (group == "root" || group.isEmpty())
        return "only root may use the port: let a udev rule give it to the group dialout, and join that";
    return QString("join the port's group: sudo usermod -a -G %1 \"$USER\", and log in again").arg(group);
}

QString rightsAdvice(const PortDetails &port)
{
    return port.isReadable && port.isWritable ? QString() : groupAdvice(port.group);
}

QString holderAdvice(const PortDetails &port)
{
    return port.holders.isEmpty() ? QString() : "end the other program, or use another port";
}

QString latencyAdvice(const PortDetails &port)
{
    if (port.latency.value_or(0) <= kGoodLatency)
        return QString();
    return QString("answers wait for the adapter's timer: echo 1 | sudo tee %1")
        .arg(latencyFile(port.device));
}

QStringList portAdvice(const PortDetails &port)
{
    QStringList advice = {rightsAdvice(port), holderAdvice(port), latencyAdvice(port)};
    advice.removeAll(QString());
    return advice;
}

QString latencyFile(const QString &device)
{
    return QString("/sys/bus/usb-serial/devices/%1/latency_timer").arg(device.section('/', -1));
}

bool isPseudoTerminal(const QString &device)
{
    return QFileInfo(device).canonicalFilePath().startsWith("/dev/pts/");
}

} // namespace host
