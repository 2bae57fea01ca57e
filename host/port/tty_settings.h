// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The kernel's view of an open serial port: what it was really set to, and settings that QSerialPort
// has no name for.

#ifndef HOST_PORT_TTY_SETTINGS_H
#define HOST_PORT_TTY_SETTINGS_H

#include "host/base/options.h"
#include "host/port/line_settings.h"

#include <QString>

namespace host {

// Returns how the kernel runs the line now; everything is 0 when it cannot tell.
LineSettings settingsInForce(int descriptor);

// Makes the kernel throw away bytes that arrive with bad parity. Fails, naming the port, when it does not.
void dropBadParity(int descriptor, const QString &port);

// Makes the port's driver switch an RS-485 transceiver by RTS: active while it sends. Fails, naming the port,
// when the driver does not do that, or does not wait as it is told.
void switchRs485(int descriptor, const QString &port, const Rs485 &pauses);

// Makes the adapter hand over at once what it receives: through the driver, or through the file in which some
// drivers keep the time, which need not exist. Fails, naming the port, when neither does that.
void lowerLatency(int descriptor, const QString &port, const QString &timerFile);

} // namespace host

#endif
