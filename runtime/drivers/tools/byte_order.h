// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Arrays of big-endian elements, the order of the wire. The host side is little-endian, so both directions
// reverse the bytes of every element.

#ifndef TOOLS_BYTE_ORDER_H
#define TOOLS_BYTE_ORDER_H

#include <QByteArray>
#include <QtGlobal>

// Always true, whatever the host: it names the order of the wire. Kept; not to become a test of the host.
Q_DECL_EXPORT bool isBigEndian();

// Appends the high byte, then the low byte.
Q_DECL_EXPORT void appendBigEndianUShort(QByteArray &bytes, unsigned short value);

// A new array of count elements of 2 or 4 bytes, taken from the wire. Empty for a count below 1, and when
// memory does not reach.
Q_DECL_EXPORT QByteArray fromBigEndianUShortArray(const unsigned char *data, int count);
Q_DECL_EXPORT QByteArray fromBigEndianULongArray(const unsigned char *data, int count);

// A new array for the wire. Zero bytes are appended first, up to a whole number of 2- or 4-byte elements.
Q_DECL_EXPORT QByteArray toBigEndianUShortArray(const QByteArray &bytes);
Q_DECL_EXPORT QByteArray toBigEndianULongArray(const QByteArray &bytes);

// Reverses the bytes of every 2- or 4-byte element in place. Bytes behind the last whole element stay.
Q_DECL_EXPORT void toLittleEndianUShortArray(QByteArray &bytes);
Q_DECL_EXPORT void toLittleEndianULongArray(QByteArray &bytes);

#endif
