// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// The host's record of one request to a driver.

#ifndef COMMUNICATOR_COMMAND_H
#define COMMUNICATOR_COMMAND_H

#include <QString>
#include <QtGlobal>

/// One request. The data type gives the unit in which count is meant:
///
///     dataType   count in      data of the request, bytes
///     0 bit        bits          count / 8, rounded up
///     1 byte       bytes         count
///     2 word       16-bit words  2 * count
///     3 dword      32-bit words  4 * count
///     4 qword      64-bit words  8 * count
///     5 block      bytes         count
///     6 bit block  bits          count / 8, rounded up
///
/// Other codes are invalid. Which codes a driver serves is the driver's business.
struct Q_DECL_EXPORT CommunicatorCommand
{
    /// All numbers 0 and no address.
    CommunicatorCommand();

    qint32 linkId;   ///< the host's own; no driver of this library reads it
    qint32 tagId;    ///< the host's own; no driver of this library reads it
    qint32 dataType; ///< code of the table above
    qint32 count;    ///< number of items; a request on the line carries the low 16 bits
    QString address; ///< the controller's address text of the first item, such as VB100
};

// Quad words (4) and bit blocks (6) have no predicate.

/// Whether the data type is bit (0); a bit block (6) is not a bit command.
Q_DECL_EXPORT bool isBitCommand(const CommunicatorCommand &command);

/// Whether the data type is byte (1).
Q_DECL_EXPORT bool isByteCommand(const CommunicatorCommand &command);

/// Whether the data type is word (2).
Q_DECL_EXPORT bool isWordCommand(const CommunicatorCommand &command);

/// Whether the data type is double word (3).
Q_DECL_EXPORT bool isDoubleWordCommand(const CommunicatorCommand &command);

/// Whether the data type is block (5).
Q_DECL_EXPORT bool isBlockCommand(const CommunicatorCommand &command);

#endif
