// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// How many units data takes, and data brought to a size. Bytes that are added are zero.

#ifndef TOOLS_SIZES_H
#define TOOLS_SIZES_H

#include <QByteArray>
#include <QtGlobal>

#include "communicator_command.h"

/// The 8-bit units that bits 0 .. start + count - 1 occupy.
Q_DECL_EXPORT unsigned int NumOfBitsToNumOfBytes(unsigned int start, unsigned int count);

/// The 16-bit units that bits 0 .. start + count - 1 occupy.
Q_DECL_EXPORT unsigned int NumOfBitsToNumOfWords(unsigned int start, unsigned int count);

/// The 32-bit units that bits 0 .. start + count - 1 occupy.
Q_DECL_EXPORT unsigned int NumOfBitsToNumOfDWords(unsigned int start, unsigned int count);

/// The 2-byte units that n bytes occupy.
Q_DECL_EXPORT unsigned int NumOfBytesToNumOfWords(unsigned int n);

/// The 4-byte units that n bytes occupy.
Q_DECL_EXPORT unsigned int NumOfBytesToNumOfDWords(unsigned int n);

/// The 8-byte units that n bytes occupy.
Q_DECL_EXPORT unsigned int NumOfBytesToNumOfQuadWords(unsigned int n);

/// Cuts or fills the array to the bytes that nbits bits occupy; a negative nbits counts as 0. Left as it was
/// when memory does not reach.
Q_DECL_EXPORT void FitBitArray(QByteArray &bits, int nbits);

/// The number of bytes that the command's data must have, by the table of CommunicatorCommand; 0 for an
/// invalid type or a negative count, INT_MAX for a length that is no int.
Q_DECL_EXPORT int GetSafeDataLen(const CommunicatorCommand &command);

/// The data cut or filled to the length that the command's data must have; empty when no array can be so
/// long or memory does not reach.
Q_DECL_EXPORT QByteArray ToSafeData(const CommunicatorCommand &command, const QByteArray &data);

/// The data filled to a multiple of 2 bytes.
Q_DECL_EXPORT QByteArray To16bitsData(const QByteArray &data);

/// The data filled to a multiple of 4 bytes.
Q_DECL_EXPORT QByteArray To32bitsData(const QByteArray &data);

/// Fills a length that is 1 to 3 past a multiple of 8 up to 4 past it; other lengths stay. Kept: this is not
/// an alignment to 8 bytes and must not become one (to64bitsDataFillsToFourOnly).
Q_DECL_EXPORT QByteArray To64bitsData(const QByteArray &data);

#endif
