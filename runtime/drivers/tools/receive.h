// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// Answers that are received piece by piece: of a known length, or up to a terminator, as in ASCII protocols.
///
/// The port waits its own reply time-out for every piece, so that a device may pause that long within an
/// answer; a piece that does not come at all ends the answer. Never more is asked of the port than surely
/// belongs to the answer: what comes behind it stays in the port, and no time is lost with waiting for it. A
/// port that hands over fewer bytes than it was asked for is asked again.

#ifndef TOOLS_RECEIVE_H
#define TOOLS_RECEIVE_H

#include <QByteArray>
#include <QtGlobal>

class AbstractDeviceInterface;

/// How the reception of an answer ended.
enum ReceptionEnd : int {
    kReceptionWhole = 0, ///< all of it came
    kReceptionShort = 1, ///< the port's time-out passed without another byte, or the port had an error
    kReceptionLong = 2   ///< its terminator is not within the limit, or memory does not reach
};

/// What was received of an answer.
struct Q_DECL_EXPORT Reception
{
    /// Nothing yet.
    Reception();

    /// Whether all of the answer came.
    bool isWhole() const;

    QByteArray bytes; ///< what came, also of an answer that is not whole
    ReceptionEnd end; ///< why there are no more of them
};

/// Receives count bytes. A count below 1 is whole at once, without a call of the port. A count that came over
/// the line has to be checked before: the device could let the driver wait for any number of bytes.
Q_DECL_EXPORT Reception receiveExactly(AbstractDeviceInterface *dev, int count);

/// Receives up to the terminator, which is the end of the bytes then: "OK 17\r\n" for "\r\n". At most limit
/// bytes are received, those of the terminator included. An empty terminator is there at once.
Q_DECL_EXPORT Reception receiveUntil(AbstractDeviceInterface *dev, const QByteArray &terminator, int limit);

/// Receives a line that ends with a line feed, which is not among the bytes then, nor is a carriage return in
/// front of it: "OK 17". Both count for the limit. Devices that end their lines with a carriage return alone
/// take receiveUntil.
Q_DECL_EXPORT Reception receiveLine(AbstractDeviceInterface *dev, int limit);

#endif
