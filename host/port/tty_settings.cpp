// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/tty_settings.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/base/system_reason.h"
#include "host/port/port_details.h"

#include <QFile>

// The kernel's own header and not <termios.h>: only termios2 tells a speed that is none of the classic
// ones, such as 187500. The two headers exclude each other.
#include <asm/ioctls.h>
#include <asm/termbits.h>

#include <linux/serial.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <optional>

namespace host {

namespace {

ParityCode parityOf(tcflag_t flags)
{
    if (!(flags & PARENB))
        return kNoParity;
    if (flags & CMSPAR)
        return (flags & PARODD) ? kMarkParity : kSpaceParity;
    return (flags & PARODD) ? kOddParity : kEvenParity;
}

int dataBitsOf(tcflag_t flags)
{
    switch (flags & CSIZE) {
    case CS5:
        return 5;
    case CS6:
        return 6;
    case CS7:
        return 7;
    default:
        return 8;
    }
}

Failure notSwitched(const QString &port, const QString &reason)
{
    return Failure(ExitCode::PortUnusable, QString("%1 cannot be switched to RS-485: %2").arg(port, reason),
                   "its driver has no RS-485 mode; an adapter that switches by itself needs no --rs485");
}

QString pausesText(const Rs485 &pauses)
{
    return filled("%1 ms before and %2 ms after sending", pauses.before, pauses.after);
}

// Whether the driver takes the flag, which some of those do that know a timer, and some that do not.
bool takesLowLatency(int descriptor)
{
    serial_struct settings = {};
    if (ioctl(descriptor, TIOCGSERIAL, &settings) != 0)
        return false;
    settings.flags |= int(ASYNC_LOW_LATENCY);
    serial_struct achieved = {};
    return ioctl(descriptor, TIOCSSERIAL, &settings) == 0 && ioctl(descriptor, TIOCGSERIAL, &achieved) == 0 &&
           (achieved.flags & int(ASYNC_LOW_LATENCY)) != 0;
}

// Milliseconds; nothing when there is no such file.
std::optional<int> timerIn(const QString &name)
{
    QFile file(name);
    bool isNumber = false;
    const int time =
        file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readLine()).trimmed().toInt(&isNumber) : 0;
    return isNumber ? std::optional<int>(time) : std::nullopt;
}

void setTimer(const QString &name)
{
    QFile file(name);
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        file.write("1\n");
}

} // namespace

LineSettings settingsInForce(int descriptor)
{
    termios2 state = {};
    if (ioctl(descriptor, TCGETS2, &state) != 0)
        return {0, kNoParity, 0, 0};
    return {int(state.c_ospeed), parityOf(state.c_cflag), dataBitsOf(state.c_cflag),
            (state.c_cflag & CSTOPB) ? 2 : 1};
}

void dropBadParity(int descriptor, const QString &port)
{
    termios2 state = {};
    bool isDone = ioctl(descriptor, TCGETS2, &state) == 0;
    state.c_iflag = (state.c_iflag & ~tcflag_t(PARMRK | ISTRIP)) | INPCK | IGNPAR;
    isDone = isDone && ioctl(descriptor, TCSETS2, &state) == 0;
    if (!isDone)
        throw Failure(ExitCode::PortUnusable, port + " cannot be told to drop bytes with bad parity",
                      "check that it is a serial port and takes these line settings");
}

// A driver clears the flags that it cannot do.
void switchRs485(int descriptor, const QString &port, const Rs485 &pauses)
{
    serial_rs485 mode = {};
    mode.flags = SER_RS485_ENABLED | SER_RS485_RTS_ON_SEND;
    mode.delay_rts_before_send = unsigned(pauses.before);
    mode.delay_rts_after_send = unsigned(pauses.after);
    serial_rs485 achieved = {};
    if (ioctl(descriptor, TIOCSRS485, &mode) != 0 || ioctl(descriptor, TIOCGRS485, &achieved) != 0) {
        const int reason = errno;
        throw notSwitched(port, systemReason(reason));
    }
    if (!(achieved.flags & SER_RS485_ENABLED))
        throw notSwitched(port, "the driver leaves it switched off");
    const Rs485 kept = {int(achieved.delay_rts_before_send), int(achieved.delay_rts_after_send)};
    if (kept.before != pauses.before || kept.after != pauses.after)
        throw Failure(
            ExitCode::PortUnusable,
            filled("%1 keeps pauses of %2 instead of %3", port, pausesText(kept), pausesText(pauses)),
            "its driver cannot wait so; take the pauses that it keeps, or plain --rs485");
}

void lowerLatency(int descriptor, const QString &port, const QString &timerFile)
{
    const bool isTaken = takesLowLatency(descriptor);
    std::optional<int> timer = timerIn(timerFile);
    if (timer && *timer > kGoodLatency) {
        setTimer(timerFile);
        timer = timerIn(timerFile);
    }
    if (timer.value_or(0) > kGoodLatency)
        throw Failure(
            ExitCode::PortUnusable,
            filled("%1 keeps its latency timer of %2 ms: %3 cannot be written", port, *timer, timerFile),
            "let a udev rule set it, ACTION==\"add\", SUBSYSTEM==\"usb-serial\", "
            "ATTR{latency_timer}=\"1\", and plug the adapter in again; or echo 1 | sudo tee " +
                timerFile);
    if (!timer && !isTaken)
        throw Failure(
            ExitCode::PortUnusable, port + " has no latency timer that could be set",
            "leave out --low-latency: its driver hands over at once what it receives, or cannot be told to");
}

} // namespace host
