// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// Byte arrays and single values. Values stand least significant byte first in arrays, the order in which
/// a host takes words and double words.

#ifndef TOOLS_BYTES_H
#define TOOLS_BYTES_H

#include <QByteArray>
#include <QtGlobal>

/// The value of the first up to four bytes. Missing bytes count as 0, further ones are ignored.
Q_DECL_EXPORT unsigned int QByteArrayToInt(const QByteArray &bytes);

/// The value of the first up to two bytes. Missing bytes count as 0, further ones are ignored.
Q_DECL_EXPORT unsigned short QByteArrayToWord(const QByteArray &bytes);

/// The same as a signed number.
Q_DECL_EXPORT short QByteArrayToShort(const QByteArray &bytes);

/// The two bytes of a value.
Q_DECL_EXPORT QByteArray wordToByteArray(unsigned short value);

/// The two bytes of a signed value.
Q_DECL_EXPORT QByteArray shortToByteArray(short value);

/// The four bytes of a signed value.
Q_DECL_EXPORT QByteArray intToByteArray(int value);

/// A new array with the bytes in reverse order.
Q_DECL_EXPORT QByteArray reverseArray(const QByteArray &bytes);

/// Rotates the n + m elements at data left by n, in place: the first n end up behind the other m. Does
/// nothing when n or m is below 1. Exists for unsigned char only.
template <typename Element> Q_DECL_EXPORT void RotateArray(Element *data, int n, int m);

/// The one instance of it.
extern template void RotateArray<unsigned char>(unsigned char *data, int n, int m);

#endif
