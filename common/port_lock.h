// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The files by which programs tell each other that they have a serial port open: QSerialPort makes one when
// it opens a port, and removes it when it closes it.

#ifndef COMMON_PORT_LOCK_H
#define COMMON_PORT_LOCK_H

#include <QString>

namespace common {

// Returns where QSerialPort has its lock file for a device; empty when it has none.
QString lockFileOf(const QString &device);

// Returns the lock under which QSerialPort removes a lock file that nobody holds, empty as above. A kill may
// leave it, too.
QString lockGuardOf(const QString &lockFile);

// Returns what has the name of one of them and is no file; empty when nothing has. QSerialPort would open it,
// and wait for the other end of a FIFO for ever.
QString lockObstacle(const QString &lockFile);

} // namespace common

#endif
