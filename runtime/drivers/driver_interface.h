// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// What the host runtime asks of every communication driver.

#ifndef DRIVER_INTERFACE_H
#define DRIVER_INTERFACE_H

#include "communicator_command.h"
#include "interface_id.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>

class AbstractDeviceInterface;
class DeviceSetting;
class DriverSetting;

/// A communication driver. The host calls the operations through their slots, so their order is
/// part of the interface: never reorder, and add only at the end together with a new version.
///
/// Order of calls: obtain the driver, read its identity and defaults, initialize() once the port is
/// open, then read() and write() per request, and after each hasError() and getLastError(). One driver
/// object serves one thread at a time. No operation throws.
class Q_DECL_EXPORT DriverInterface
{
public:
    virtual ~DriverInterface();

    /// A size that the driver reports to the host, in bytes.
    virtual int totalSize() = 0;

    /// Writes data, host byte order, to the place that cmd names, over the open port dev (not null).
    /// Repeats a failed attempt as often as the port's retry() says, with its delay() before each.
    /// Returns nonzero on success; 0 on failure, the reason in getLastError().
    virtual int write(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                      const QByteArray &data) = 0;

    /// Reads what cmd names over the open port dev (not null), repeating like write(). Returns the data
    /// in host byte order; an empty array on failure, the reason in getLastError().
    virtual QByteArray read(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd) = 0;

    /// Prepares the open port for the driver. dev may be null. Returns true on success.
    virtual bool initialize(AbstractDeviceInterface *dev) = 0;

    /// Whether the driver vouches for a text the host gives it.
    virtual bool validation(const QString &text) = 0;

    /// The driver's name, for people; "Not Assigned" unless the driver says otherwise.
    virtual QString name();

    /// The maker of the controllers, for people; "Not Assigned" unless the driver says otherwise.
    virtual QString vender();

    /// The driver's version, for people; "Not Assigned" unless the driver says otherwise.
    virtual QString getVersionNumber();

    /// The port's settings for a new connection: a new record, owned by the caller.
    virtual DeviceSetting *getDefaultSerialDeviceSetting() = 0;

    /// The timing and station for a new connection: a new record, owned by the caller.
    virtual DriverSetting *getDefaultDriverSetting() = 0;

    /// The same serial line as a text, "RS232,9600,EVEN,7,1" unless the driver says otherwise.
    virtual QString getStringBasedDefaultDriverSetting();

    /// The kinds of port that the driver can use, a bit set of the host's port kinds.
    virtual int supportedCommunicationFlags() = 0;

    /// Tells the driver that somebody looks for a fault. What it then does differently is its own business.
    virtual void setDebugMode(bool on) = 0;

    /// The largest block of one request, in bytes.
    virtual int getBlockAccessSize() = 0;

    /// The largest block of one request, in bits.
    virtual int getBitBlockAccessSize() = 0;

    /// Whether the last attempt of the last read or write failed.
    virtual bool hasError() = 0;

    /// Why it failed, in English. Null before the first request, empty after a success.
    virtual QString getLastError() = 0;

    /// The driver as a QObject; still owned as before.
    virtual QObject *getThisObject() = 0;

    /// Whether the driver can fetch a fixed set of items, its session commands, in one go. False unless the
    /// driver says otherwise.
    virtual bool isSupportSessionCommand();

    /// Sets the session commands; ignored where they are not supported.
    virtual void setSessionCommand(QList<CommunicatorCommand> commands);

    /// Takes the session commands back; ignored where they are not supported.
    virtual void clearSessionCommand();

    /// Tells the driver of new port settings; false refuses them. Accepts all unless the driver says
    /// otherwise.
    virtual bool deviceSettingChanged(const DeviceSetting *setting);

    /// Whether the controller is reachable, for drivers that keep a connection. True unless the driver
    /// says otherwise.
    virtual bool isConnected(AbstractDeviceInterface *dev);
};

Q_DECLARE_INTERFACE(DriverInterface, DRIVER_INTERFACE_ID)

/// The library's own way to a driver, beside Qt's plug-in loader: a new driver object on every call,
/// owned by the caller, who deletes it.
extern "C" Q_DECL_EXPORT DriverInterface *CreateDriver();

#endif
