// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/tty_settings.h"

// The kernel's own header and not <termios.h>: only termios2 tells a speed that is none of the classic
// ones, such as 187500. The two headers exclude each other.
#include <asm/ioctls.h>
#include <asm/termbits.h>

#include <linux/serial.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <cstring>

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

} // namespace

LineSettings settingsInForce(int descriptor)
{
    termios2 state = {};
    if (ioctl(descriptor, TCGETS2, &state) != 0)
        return {0, kNoParity, 0, 0};
    return {int(state.c_ospeed), parityOf(state.c_cflag), dataBitsOf(state.c_cflag),
            (state.c_cflag & CSTOPB) ? 2 : 1};
}

bool dropBadParity(int descriptor)
{
    termios2 state = {};
    if (ioctl(descriptor, TCGETS2, &state) != 0)
        return false;
    state.c_iflag = (state.c_iflag & ~tcflag_t(PARMRK | ISTRIP)) | INPCK | IGNPAR;
    return ioctl(descriptor, TCSETS2, &state) == 0;
}

// A driver clears the flags that it cannot do.
const char *switchRs485(int descriptor)
{
    serial_rs485 mode = {};
    mode.flags = SER_RS485_ENABLED | SER_RS485_RTS_ON_SEND;
    serial_rs485 achieved = {};
    if (ioctl(descriptor, TIOCSRS485, &mode) != 0 || ioctl(descriptor, TIOCGRS485, &achieved) != 0)
        return std::strerror(errno);
    return (achieved.flags & SER_RS485_ENABLED) ? nullptr : "the driver leaves it switched off";
}

} // namespace host
