// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A serial port of this machine.

#ifndef HOST_PORT_SERIAL_PORT_H
#define HOST_PORT_SERIAL_PORT_H

#include "host/base/options.h"
#include "host/port/port.h"

#include <QSerialPort>
#include <QString>

#include <optional>

namespace host {

// What the port's driver is to do beyond the line's settings.
struct AdapterSettings
{
    std::optional<Rs485> rs485 = std::nullopt; // switch the transceiver; otherwise the adapter does by itself
    bool lowLatency = false;                   // hand over at once what was received
};

// Another program has the port, and may give it back.
class PortBusy : public Failure
{
public:
    using Failure::Failure;
};

class SerialPort final : public Port
{
public:
    // Opens the port for this program alone. Fails when that does not work, as PortBusy when another program
    // has it, or when the port does not take the settings. A pseudo-terminal has no parity and always 8 data
    // bits; there the two are not insisted on.
    SerialPort(const QString &name, const LineSettings &line, const Timing &timing,
               const AdapterSettings &adapter = AdapterSettings());

    bool isThere() const override;
    QString portName() const override { return name; }
    int handle() const override { return int(port.handle()); }
    QString settingsText() const override { return lineText(line); }
    QString lineNote() const override { return note; }
    Failure loss() const override;

private:
    void open() override;
    void close() override { port.close(); }
    QIODevice &device() override { return port; }
    bool takeError() override;
    bool clearInput() override;
    void clearOutput() override;
    bool drain() override;
    short hangUpEvent() const override { return 0; }
    bool runsOwnLine() const override { return true; }

    void openLocked();
    void configure();
    [[noreturn]] void failToOpen() const;
    void refuseSharing() const;
    void checkLine();

    QSerialPort port;
    QString name;
    LineSettings line;
    AdapterSettings adapter;
    QString note;
};

} // namespace host

#endif
