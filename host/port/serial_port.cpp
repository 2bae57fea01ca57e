// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/serial_port.h"

#include "common/port_lock.h"
#include "host/base/files_in_use.h"
#include "host/port/port_details.h"
#include "host/port/port_holder.h"
#include "host/port/port_opening.h"
#include "host/port/tty_settings.h"

#include <QFileInfo>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace host {

namespace {

// Whether the file is a terminal at all. It is opened for a moment, without waiting for a carrier.
bool isTerminal(const QString &name)
{
    const int descriptor = ::open(qPrintable(name), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    const bool terminal = descriptor >= 0 && isatty(descriptor);
    if (descriptor >= 0)
        close(descriptor);
    return terminal;
}

// QSerialPort takes names without a path for devices below /dev.
QString fullName(const QString &name)
{
    const QFileInfo file(name);
    return file.exists() ? file.absoluteFilePath() : name;
}

QSerialPort::Parity qtParity(ParityCode parity)
{
    switch (parity) {
    case kOddParity:
        return QSerialPort::OddParity;
    case kEvenParity:
        return QSerialPort::EvenParity;
    case kMarkParity:
        return QSerialPort::MarkParity;
    case kSpaceParity:
        return QSerialPort::SpaceParity;
    case kNoParity:
        break;
    }
    return QSerialPort::NoParity;
}

// Returns the settings as far as a port of this kind can be asked for them: a pseudo-terminal takes neither
// parity nor data bits.
LineSettings settable(LineSettings line, const QString &name)
{
    if (isPseudoTerminal(name)) {
        line.parity = kNoParity;
        line.dataBits = 8;
    }
    return line;
}

const char kBusyHint[] =
    "another program has the port open: end it, or use another port, or let --wait-lock 1min wait for it";

bool isAllowed(const QString &name)
{
    const QFileInfo file(name);
    return file.isReadable() && file.isWritable();
}

QString openHint(QSerialPort::SerialPortError error, const QString &name)
{
    switch (error) {
    case QSerialPort::DeviceNotFoundError:
        return "check the name and the plug; s7ppi without --port looks for USB adapters";
    case QSerialPort::PermissionError:
        return isAllowed(name) ? QString(kBusyHint) : groupAdvice(QFileInfo(name).group());
    default:
        return "check that it is a serial port and takes these line settings";
    }
}

} // namespace

SerialPort::SerialPort(const QString &name_, const LineSettings &line_, const Timing &timing_,
                       const AdapterSettings &adapter_)
    : Port(timing_, line_.baud), name(fullName(name_)), line(line_), adapter(adapter_)
{
    claimFile(name, FileRole::Port);
    port.setPortName(name);
    open();
}

void SerialPort::open()
{
    refuseSharing();
    configure();
    openLocked();
    dropBadParity(handle(), name);
    checkLine();
    if (adapter.rs485)
        switchRs485(handle(), name, *adapter.rs485);
    if (adapter.lowLatency)
        lowerLatency(handle(), name, latencyFile(QFileInfo(name).canonicalFilePath()));
}

void SerialPort::openLocked()
{
    const QString lockFile = common::lockFileOf(name);
    const PortOpening opening(lockFile);
    if (const QString obstacle = common::lockObstacle(lockFile); !obstacle.isEmpty())
        throw Failure(ExitCode::PortUnusable,
                      name + " cannot be opened: " + obstacle + " is no lock file, and is in the way",
                      "no program that locks a port makes such a thing: remove it");
    if (!opening.removeLeftLock())
        throw Failure(ExitCode::PortUnusable,
                      name + " cannot be opened: the empty lock file " + lockFile + " is in the way",
                      "no program holds it, one that was killed has left it: remove it");
    if (!port.open(QIODevice::ReadWrite))
        failToOpen();
}

void SerialPort::configure()
{
    const LineSettings possible = settable(line, name);
    port.setBaudRate(possible.baud);
    port.setParity(qtParity(possible.parity));
    port.setDataBits(QSerialPort::DataBits(possible.dataBits));
    port.setStopBits(possible.stopBits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
    port.setFlowControl(QSerialPort::NoFlowControl);
}

void SerialPort::failToOpen() const
{
    QString reason = port.errorString();
    if (port.error() == QSerialPort::PermissionError)
        if (const QString holders = holderText(portHolders(name)); !holders.isEmpty())
            reason = "it is in use by " + holders;
    const QString text = name + " cannot be opened: " + reason;
    if (port.error() == QSerialPort::PermissionError && isAllowed(name))
        throw PortBusy(ExitCode::PortUnusable, text, kBusyHint);
    throw Failure(ExitCode::PortUnusable, text, openHint(port.error(), name));
}

// Not every program locks a port that it uses, and two of them take each other's bytes. What holds the port's
// end of a pseudo-terminal may be its maker, so that only a lock counts there.
void SerialPort::refuseSharing() const
{
    if (isPseudoTerminal(name) || !isTerminal(name))
        return;
    const QString holders = holderText(portHolders(name));
    if (!holders.isEmpty())
        throw PortBusy(ExitCode::PortUnusable, name + " cannot be opened: it is in use by " + holders,
                       kBusyHint);
}

void SerialPort::checkLine()
{
    const LineSettings achieved = settingsInForce(port.handle());
    const QString refused = lineDifference(settable(line, name), achieved);
    if (!refused.isEmpty())
        throw Failure(ExitCode::PortUnusable, name + " keeps " + refused,
                      "this adapter cannot do that; use another adapter or other line settings");
    note = lineDifference(line, achieved);
}

bool SerialPort::isThere() const
{
    return QFileInfo::exists(name);
}

Failure SerialPort::loss() const
{
    return Failure(ExitCode::PortLost, "the port is gone",
                   "was the adapter unplugged? plug it in and start again, or let --reconnect wait for it");
}

// A wait that brought nothing ends with a time-out error; every other error means that the device
// behind the port is gone.
bool SerialPort::takeError()
{
    const QSerialPort::SerialPortError error = port.error();
    port.clearError();
    return error != QSerialPort::NoError && error != QSerialPort::TimeoutError;
}

bool SerialPort::clearInput()
{
    return port.clear(QSerialPort::Input);
}

void SerialPort::clearOutput()
{
    port.clear(QSerialPort::Output);
}

bool SerialPort::drain()
{
    return tcdrain(handle()) == 0;
}

} // namespace host
