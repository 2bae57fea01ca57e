// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The file in /var/lock by which programs tell each other that they have a port open: QSerialPort makes it
// when it opens one, and removes it when it closes it. A kill at the wrong moment leaves an empty one, which
// would keep everybody out for half a minute.

#ifndef HOST_PORT_LOCK_FILE_H
#define HOST_PORT_LOCK_FILE_H

#include <QString>

namespace host {

// Returns where QSerialPort has its lock file for a device; empty when it has none.
QString lockFileOf(const QString &device);

// While one lives, no other s7ppi opens a port: what makes a lock file, and what takes over one that was left
// behind, never meet. Another s7ppi is waited for a second at most.
class PortOpening
{
public:
    explicit PortOpening(const QString &device);
    ~PortOpening();

    PortOpening(const PortOpening &) = delete;
    PortOpening &operator=(const PortOpening &) = delete;

    // Returns what has a lock file's name and is no file; empty when nothing has. QSerialPort would open it,
    // and wait for the other end of a FIFO for ever.
    QString obstacle() const;

    // Removes an empty lock file that nobody holds, and tells so. False when it cannot be removed.
    bool removeLeftLock() const;

private:
    QString guardFile() const;
    bool removeLeft(const QString &file) const;

    QString lockFile;
    int directory; // open and locked; -1 when that does not work
};

} // namespace host

#endif
