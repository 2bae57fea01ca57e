// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// The host's record of one request to a driver.

#ifndef COMMUNICATOR_COMMAND_H
#define COMMUNICATOR_COMMAND_H

#include <QString>
#include <QtGlobal>

/// The data type of a request: the unit in which its count is meant.
enum DataType : int {
    kBits = 0,        ///< count bits; data of count / 8 bytes, rounded up
    kBytes = 1,       ///< count bytes; data of count bytes
    kWords = 2,       ///< count 16-bit words; data of 2 * count bytes
    kDoubleWords = 3, ///< count 32-bit words; data of 4 * count bytes
    kQuadWords = 4,   ///< count 64-bit words; data of 8 * count bytes
    kBlock = 5,       ///< count bytes; data of count bytes
    kBitBlock = 6     ///< count bits; data of count / 8 bytes, rounded up
};

/// One request.
struct Q_DECL_EXPORT CommunicatorCommand
{
    /// All numbers 0 and no address.
    CommunicatorCommand();

    qint32 linkId;   ///< the host's own; no driver of this library reads it
    qint32 tagId;    ///< the host's own; no driver of this library reads it
    qint32 dataType; ///< a DataType; other codes are invalid, and a driver need not serve all of these
    qint32 count;    ///< number of items; a request on the line carries the low 16 bits
    QString address; ///< the controller's address text of the first item, such as VB100
};

// kQuadWords and kBitBlock have no predicate.

/// Whether the data type is kBits; a kBitBlock is not a bit command.
Q_DECL_EXPORT bool isBitCommand(const CommunicatorCommand &command);

/// Whether the data type is kBytes.
Q_DECL_EXPORT bool isByteCommand(const CommunicatorCommand &command);

/// Whether the data type is kWords.
Q_DECL_EXPORT bool isWordCommand(const CommunicatorCommand &command);

/// Whether the data type is kDoubleWords.
Q_DECL_EXPORT bool isDoubleWordCommand(const CommunicatorCommand &command);

/// Whether the data type is kBlock.
Q_DECL_EXPORT bool isBlockCommand(const CommunicatorCommand &command);

#endif
