// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// The host's port object, as a driver sees it.

#ifndef ABSTRACT_DEVICE_INTERFACE_H
#define ABSTRACT_DEVICE_INTERFACE_H

#include <QVariant>

/// The options of a port that drivers set. All other numbers are the host's.
enum PortOption : int {
    kClearInput = 12 ///< throw away what the port has received and nobody has read
};

/// A port that is open. The host implements it, owns it, and lends it to a driver for the time of one
/// call; a driver keeps no pointer to it. Nothing here may throw.
class Q_DECL_EXPORT AbstractDeviceInterface
{
public:
    virtual ~AbstractDeviceInterface();

    /// Waits for up to maxLength bytes under the port's own reply time-out and places them in buffer.
    /// Returns how many came: fewer than maxLength, or 0, when the time ran out; below 0 on an error
    /// of the port, which a driver takes as 0.
    virtual int receive(unsigned char *buffer, int maxLength) = 0;

    /// Writes length bytes to the line. No driver reads the result.
    virtual int send(const unsigned char *data, int length) = 0;

    /// Sets an option of the port. Drivers pass only kClearInput with the integer 0, in initialize() and
    /// before every frame, so that a late answer is never taken for the next one. No driver reads the
    /// result.
    virtual bool setOption(int key, const QVariant &value) = 0;

    /// How many times a failed read or write is repeated; 0 or less means not at all.
    virtual int retry() = 0;

    /// The controller's station address for this request; the low 8 bits go on the line.
    virtual int stationId() = 0;

    /// The pause before every attempt, in milliseconds, below 4295 (see HRSleep).
    virtual int delay() = 0;
};

#endif
