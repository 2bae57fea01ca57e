// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// Arrays of big-endian elements, the order of the wire. The host side is little-endian, so both directions
/// reverse the bytes of every element.

#ifndef TOOLS_BYTE_ORDER_H
#define TOOLS_BYTE_ORDER_H

#include <QByteArray>
#include <QtGlobal>

/// Always true, whatever the host: it names the order of the wire. Kept: this is not to become a test of the
/// host (wireIsAlwaysBigEndian).
Q_DECL_EXPORT bool isBigEndian();

/// Appends the high byte, then the low byte.
Q_DECL_EXPORT void appendBigEndianUShort(QByteArray &bytes, unsigned short value);

/// A new array of count 2-byte elements, taken from the wire. Empty for a count below 1, and when memory does
/// not reach. There must be 2 * count bytes at data.
Q_DECL_EXPORT QByteArray fromBigEndianUShortArray(const unsigned char *data, int count);

/// A new array of count 4-byte elements, taken from the wire. Empty for a count below 1, and when memory does
/// not reach. There must be 4 * count bytes at data.
Q_DECL_EXPORT QByteArray fromBigEndianULongArray(const unsigned char *data, int count);

/// A new array of 2-byte elements for the wire; a zero byte completes the last one. Empty when memory does
/// not reach.
Q_DECL_EXPORT QByteArray toBigEndianUShortArray(const QByteArray &bytes);

/// A new array of 4-byte elements for the wire; zero bytes complete the last one. Empty when memory does not
/// reach.
Q_DECL_EXPORT QByteArray toBigEndianULongArray(const QByteArray &bytes);

/// Swaps the bytes of every 2-byte element in place. A byte behind the last whole element stays.
Q_DECL_EXPORT void toLittleEndianUShortArray(QByteArray &bytes);

/// Reverses the bytes of every 4-byte element in place. Bytes behind the last whole element stay.
Q_DECL_EXPORT void toLittleEndianULongArray(QByteArray &bytes);

#endif
