// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Opening a port beside others. A kill at the wrong moment leaves an empty lock file, which would keep
// everybody out for half a minute.

#ifndef HOST_PORT_PORT_OPENING_H
#define HOST_PORT_PORT_OPENING_H

#include <QString>

namespace host {

// While one lives, no other s7ppi opens a port: what makes a lock file, and what takes over one that was left
// behind, never meet. Another s7ppi is waited for a second at most.
class PortOpening
{
public:
    // lockFile: the port's, by common::lockFileOf.
    explicit PortOpening(const QString &lockFile);
    ~PortOpening();

    PortOpening(const PortOpening &) = delete;
    PortOpening &operator=(const PortOpening &) = delete;

    // Removes an empty lock file that nobody holds, and tells so. False when it cannot be removed.
    bool removeLeftLock() const;

private:
    bool removeLeft(const QString &file) const;

    QString lockFile;
    int directory; // open and locked; -1 when that does not work
};

} // namespace host

#endif
