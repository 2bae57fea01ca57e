// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/tty_settings.h"

#include "host/base/failure.h"
#include "host/base/system_reason.h"

// The kernel's own header and not <termios.h>: only termios2 tells a speed that is none of the classic
// ones, such as 187500. The two headers exclude each other.
#include <asm/ioctls.h>
#include <asm/termbits.h>

#include <linux/serial.h>
#include <sys/ioctl.h>

#include <cerrno>

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
void switchRs485(int descriptor, const QString &port)
{
    serial_rs485 mode = {};
    mode.flags = SER_RS485_ENABLED | SER_RS485_RTS_ON_SEND;
    serial_rs485 achieved = {};
    if (ioctl(descriptor, TIOCSRS485, &mode) != 0 || ioctl(descriptor, TIOCGRS485, &achieved) != 0)
        throw notSwitched(port, systemReason(errno));
    if (!(achieved.flags & SER_RS485_ENABLED))
        throw notSwitched(port, "the driver leaves it switched off");
}

} // namespace host
