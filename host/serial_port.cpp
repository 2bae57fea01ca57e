// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "serial_port.h"

#include "failure.h"
#include "interruption.h"
#include "terminal.h"

#include <QDeadlineTimer>
#include <QFileInfo>

#include <algorithm>

#include <poll.h>
#include <termios.h>

namespace host {

namespace {

// The one option drivers set: forget what was received.
constexpr int kPurgeOption = 12;

// Waits are cut into slices so that a signal is seen soon; milliseconds.
constexpr int kSlice = 50;

bool isPseudoTerminal(const QString &name)
{
    return QFileInfo(name).canonicalFilePath().startsWith("/dev/pts/");
}

// QSerialPort takes names without a path for devices below /dev.
QString fullName(const QString &name)
{
    const QFileInfo file(name);
    return file.exists() ? file.absoluteFilePath() : name;
}

QSerialPort::Parity qtParity(Parity parity)
{
    switch (parity) {
    case Parity::Odd:
        return QSerialPort::OddParity;
    case Parity::Even:
        return QSerialPort::EvenParity;
    case Parity::Mark:
        return QSerialPort::MarkParity;
    case Parity::Space:
        return QSerialPort::SpaceParity;
    case Parity::None:
        break;
    }
    return QSerialPort::NoParity;
}

// What a port of this kind can be asked for at all.
LineSettings settable(LineSettings line, const QString &name)
{
    if (isPseudoTerminal(name)) {
        line.parity = Parity::None;
        line.dataBits = 8;
    }
    return line;
}

QString permissionHint(const QString &name)
{
    const QFileInfo file(name);
    if (file.isReadable() && file.isWritable())
        return "another program has the port open: end it, or use another port";
    return "this user may not use the port: join its group, " + file.group();
}

QString openHint(QSerialPort::SerialPortError error, const QString &name)
{
    switch (error) {
    case QSerialPort::DeviceNotFoundError:
        return "check the name and the plug; s7ppi without --port looks for USB adapters";
    case QSerialPort::PermissionError:
        return permissionHint(name);
    default:
        return "check that it is a serial port and takes these line settings";
    }
}

int slice(const QDeadlineTimer &deadline)
{
    return int(std::min<qint64>(deadline.remainingTime(), kSlice));
}

} // namespace

SerialPort::SerialPort(const QString &name_, const LineSettings &line, const Timing &timing_)
    : name(fullName(name_)), timing(timing_)
{
    port.setPortName(name);
    open(settable(line, name));
    checkLine(line);
}

void SerialPort::open(const LineSettings &line)
{
    port.setBaudRate(line.baud);
    port.setParity(qtParity(line.parity));
    port.setDataBits(QSerialPort::DataBits(line.dataBits));
    port.setStopBits(line.stopBits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
    port.setFlowControl(QSerialPort::NoFlowControl);
    if (!port.open(QIODevice::ReadWrite))
        throw Failure(ExitCode::PortUnusable, name + " cannot be opened: " + port.errorString(),
                      openHint(port.error(), name));
    if (!dropBadParity(port.handle()))
        throw Failure(ExitCode::PortUnusable, name + " cannot be told to drop bytes with bad parity",
                      openHint(QSerialPort::UnsupportedOperationError, name));
}

void SerialPort::checkLine(const LineSettings &line)
{
    const LineSettings achieved = settingsInForce(port.handle());
    const QString refused = lineDifference(settable(line, name), achieved);
    if (!refused.isEmpty())
        throw Failure(ExitCode::PortUnusable, name + " keeps " + refused,
                      "this adapter cannot do that; use another adapter or other line settings");
    note = lineDifference(line, achieved);
}

int SerialPort::receive(unsigned char *buffer, int maxLength)
{
    const QDeadlineTimer deadline(timing.timeout);
    while (goesOn() && port.bytesAvailable() < maxLength && !deadline.hasExpired()) {
        if (!port.waitForReadyRead(slice(deadline)))
            noteError();
    }
    return goesOn() ? int(port.read(reinterpret_cast<char *>(buffer), maxLength)) : -1;
}

int SerialPort::send(const unsigned char *data, int length)
{
    if (!goesOn() || port.write(reinterpret_cast<const char *>(data), length) != length)
        return -1;
    const QDeadlineTimer deadline(timing.timeout);
    while (goesOn() && port.bytesToWrite() > 0 && !deadline.hasExpired()) {
        if (!port.waitForBytesWritten(slice(deadline)))
            noteError();
    }
    if (goesOn() && port.bytesToWrite() == 0 && tcdrain(port.handle()) == 0)
        return length;
    port.clear(QSerialPort::Output); // the rest of a frame must not go out in front of the next one
    return -1;
}

bool SerialPort::setOption(int key, const QVariant & /*value*/)
{
    if (key != kPurgeOption || !goesOn())
        return false;
    if (port.clear(QSerialPort::Input))
        return true;
    noteError();
    return false;
}

int SerialPort::retry()
{
    return goesOn() ? timing.retries : 0;
}

int SerialPort::stationId()
{
    return timing.station;
}

int SerialPort::delay()
{
    return goesOn() ? timing.delay : 0;
}

// Asked for no event at all, poll() tells only of hang-ups and errors.
void SerialPort::idle(int milliseconds)
{
    pollfd line = {int(port.handle()), 0, 0};
    lost = lost || poll(&line, 1, milliseconds) > 0;
}

bool SerialPort::goesOn() const
{
    return !lost && interruptingSignal() == 0;
}

// A wait that brought nothing ends with a time-out error; every other error means that the device
// behind the port is gone.
void SerialPort::noteError()
{
    const QSerialPort::SerialPortError error = port.error();
    lost = lost || (error != QSerialPort::NoError && error != QSerialPort::TimeoutError);
    port.clearError();
}

} // namespace host
