// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What this machine knows of a serial port, without opening it.

#ifndef HOST_PORT_PORT_DETAILS_H
#define HOST_PORT_PORT_DETAILS_H

#include "host/port/port_holder.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace host {

struct PortDetails
{
    QString device;      // /dev/ttyUSB0, whatever link led to it
    QString byId;        // its name that stays the same wherever it is plugged in; empty without one
    QString driver;      // of the kernel
    QString description; // what the adapter calls itself
    QString maker;
    QString serialNumber;
    QString usbId; // "0403:6001", vendor and product
    QString group;
    bool isReadable = false;
    bool isWritable = false;
    QList<PortHolder> holders;
    std::optional<int> latency; // milliseconds that the adapter may hold bytes back; not all have that
};

// Returns the ports that have hardware behind them, as /dev/ttyUSB0. The machine's /sys and /dev lie below
// the root, which is another one in tests only.
QStringList serialPorts(const QString &root = QString());

// Returns what is known of a port. Its name may be that of a link, or that of a file in /dev without the
// directory. Fails when there is no such port.
PortDetails portDetails(const QString &name, const QString &root = QString());

// "ftdi_sio, FT232R USB UART, FTDI, serial number A5XK3RJT"; empty for a port that says nothing.
QString adapterText(const PortDetails &port);

// "readable and writable", "readable, not writable, group dialout"
QString rightsText(const PortDetails &port);

// The longest time, in milliseconds, for which an adapter may hold bytes back without being worth a word. An
// exchange waits for it four times, twice the pause that the driver keeps itself.
constexpr int kGoodLatency = 2;

// The file with the time for which a port's adapter holds bytes back, which only some adapters have.
QString latencyFile(const QString &device);

// How a user who may not use a port of this group gets the right to.
QString groupAdvice(const QString &group);

// What is in the way of using the port, or slows it down, a line each; empty when nothing.
QString rightsAdvice(const PortDetails &port);
QString holderAdvice(const PortDetails &port);
QString latencyAdvice(const PortDetails &port);
QStringList portAdvice(const PortDetails &port);

// A pair of file descriptors instead of a line: it has no speed, no parity, and counts no errors.
bool isPseudoTerminal(const QString &device);

} // namespace host

#endif
