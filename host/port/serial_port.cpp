// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/serial_port.h"

#include "host/base/files_in_use.h"
#include "host/base/interruption.h"
#include "host/port/lock_file.h"
#include "host/port/port_details.h"
#include "host/port/port_holder.h"
#include "host/port/tty_settings.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QVariant>

#include <algorithm>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace host {

namespace {

// Waits are cut into slices so that a signal is seen soon; milliseconds.
constexpr int kSlice = 50;

// What ends a stretch of bytes that nobody asked for: adapters hand over what they received up to 16 ms late.
constexpr int kSilence = 20;

// What an answer may be late beyond the time that its bytes take on the line, behind a failed attempt.
constexpr int kDelay = 50;

constexpr int kBitsPerByte = 11; // on the line: start, data, parity and stop

// How much is kept of what a line that is never silent brings.
constexpr int kKeptNoise = 300;

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

const char kBusyHint[] = "another program has the port open: end it, or use another port";

QString permissionHint(const QString &name)
{
    const QFileInfo file(name);
    if (file.isReadable() && file.isWritable())
        return kBusyHint;
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

SerialPort::SerialPort(const QString &name_, const LineSettings &line_, const Timing &timing_,
                       Direction direction_)
    : name(fullName(name_)), line(line_), timing(timing_), direction(direction_)
{
    claimFile(name, FileRole::Port);
    port.setPortName(name);
    open();
}

void SerialPort::reopen()
{
    port.close();
    open();
    lost = false;
    isUnknown = true;
    isRecovering = false;
    pending = PendingAnswer();
}

void SerialPort::open()
{
    refuseSharing();
    configure();
    openLocked();
    dropBadParity(handle(), name);
    checkLine();
    if (direction == Direction::ByKernel)
        switchRs485(handle(), name);
}

void SerialPort::openLocked()
{
    const PortOpening opening(name);
    if (!opening.removeLeftLock())
        throw Failure(ExitCode::PortUnusable,
                      name + " cannot be opened: the empty lock file " + lockFileOf(name) + " is in the way",
                      "no program holds it, one that was killed has left it: remove it");
    if (!port.open(QIODevice::ReadWrite))
        throw openFailure();
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

Failure SerialPort::openFailure() const
{
    QString reason = port.errorString();
    if (port.error() == QSerialPort::PermissionError)
        if (const QString holders = holderText(portHolders(name)); !holders.isEmpty())
            reason = "it is in use by " + holders;
    return Failure(ExitCode::PortUnusable, name + " cannot be opened: " + reason,
                   openHint(port.error(), name));
}

// Not every program locks a port that it uses, and two of them take each other's bytes. What holds the port's
// end of a pseudo-terminal may be its maker, so that only a lock counts there.
void SerialPort::refuseSharing() const
{
    if (isPseudoTerminal(name) || !isTerminal(name))
        return;
    const QString holders = holderText(portHolders(name));
    if (!holders.isEmpty())
        throw Failure(ExitCode::PortUnusable, name + " cannot be opened: it is in use by " + holders,
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

// When the time is up there is a last look: a busy machine may wake this program long after the bytes came.
int SerialPort::receive(unsigned char *buffer, int maxLength)
{
    const QDeadlineTimer deadline(receiveTime());
    while (goesOn() && port.bytesAvailable() < maxLength && !deadline.hasExpired()) {
        if (!port.waitForReadyRead(slice(deadline)))
            noteError();
    }
    if (goesOn() && port.bytesAvailable() < maxLength && !port.waitForReadyRead(0))
        noteError();
    if (!goesOn())
        return -1;
    if (babble)
        return 0;
    const int length = int(port.read(reinterpret_cast<char *>(buffer), maxLength));
    pending.received(QByteArray(reinterpret_cast<const char *>(buffer), std::max(0, length)));
    return length;
}

int SerialPort::receiveTime() const
{
    return babble ? 0 : std::max(timing.timeout - int(clearingTime), timing.timeout / 2);
}

int SerialPort::send(const unsigned char *data, int length)
{
    if (!goesOn() || babble || port.write(reinterpret_cast<const char *>(data), length) != length)
        return -1;
    pending.sent(QByteArray(reinterpret_cast<const char *>(data), length));
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
    if (key != kClearInput || !goesOn())
        return false;
    babble.reset();
    clearingTime = 0;
    const bool isClean = !mayBeUnderWay();
    isRecovering = isRecovering ? !pending.isAnswered() : pending.hasFailed();
    if (!isClean)
        clearUntilSilent();
    else if (!port.clear(QSerialPort::Input))
        noteError();
    isUnknown = babble.has_value();
    return goesOn();
}

bool SerialPort::hasReceived() const
{
    int waiting = 0; // in the kernel
    return port.bytesAvailable() > 0 || (ioctl(handle(), FIONREAD, &waiting) == 0 && waiting > 0);
}

// The answer to what an earlier program, or an attempt that was given up, asked for may still be under way.
// In front of the next answer it would be taken for that, and so would every answer after it. A controller
// that was late acknowledges twice, the earlier request and this one.
bool SerialPort::mayBeUnderWay() const
{
    return isUnknown || hasReceived() || pending.missing() > 0 || (isRecovering && pending.isAcknowledged());
}

// It is not silent as long as bytes wait in the kernel: a busy machine may have kept this program from them.
// In the last quarter any gap will do: where other masters speak there may never be a longer one.
void SerialPort::clearUntilSilent()
{
    const int limit = std::max(timing.timeout, 2 * kSilence);
    QElapsedTimer time;
    QElapsedTimer silence;
    LineNoise noise;
    time.start();
    silence.start();
    const auto needed = [&] { return time.elapsed() < limit * 3 / 4 ? neededSilence() : kSilence; };
    const auto isSilent = [&] { return silence.elapsed() >= needed() && !hasReceived(); };
    while (goesOn() && time.elapsed() < limit && !isSilent()) {
        const QByteArray bytes = takeReceived(std::min(kSlice, needed() - int(silence.elapsed())));
        if (bytes.isEmpty())
            continue;
        pending.received(bytes);
        noise.count += bytes.size();
        noise.beginning += bytes.left(kKeptNoise - int(noise.beginning.size()));
        noise.milliseconds = time.elapsed();
        silence.restart();
    }
    clearingTime = noise.milliseconds;
    if (noise.count > 0 && !isSilent())
        babble = noise;
}

// Returns what is there, or comes within the time.
QByteArray SerialPort::takeReceived(int milliseconds)
{
    if (port.bytesAvailable() == 0 && !port.waitForReadyRead(std::max(0, milliseconds)))
        noteError();
    return port.readAll();
}

int SerialPort::neededSilence() const
{
    const int bytes = pending.missing();
    return bytes > 0 ? lineTime(bytes) + kDelay : kSilence;
}

int SerialPort::lineTime(int bytes) const
{
    return bytes * kBitsPerByte * 1000 / std::max(line.baud, 1);
}

bool SerialPort::staysSilent()
{
    const QByteArray bytes = takeReceived(kSilence);
    pending.received(bytes);
    isUnknown = isUnknown || !bytes.isEmpty();
    return bytes.isEmpty();
}

bool SerialPort::hearsItself()
{
    const QDeadlineTimer deadline(std::max(timing.timeout, 2 * kSilence));
    while (goesOn() && pending.isEchoBegun() && !deadline.hasExpired())
        pending.received(takeReceived(slice(deadline)));
    return pending.isEcho();
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
    pollfd device = {int(port.handle()), 0, 0};
    lost = lost || poll(&device, 1, milliseconds) > 0;
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
