// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// The pack language: a format names, letter by letter, the fields of a byte sequence.
///
///     format := { letter | count letter }      count := decimal digits, no blanks anywhere
///
///     letter      bytes  single: value or destination       counted: pointer to count elements
///     C c         1      low 8 bits of an int               bytes, as they are
///     n           2      low 16 bits, big-endian            16-bit elements, big-endian
///     v           2      low 16 bits, little-endian         16-bit elements, as they are in memory
///     S s         2      as v                               -
///     N           4      32 bits, big-endian                32-bit elements, big-endian
///     V           4      32 bits, little-endian             32-bit elements, as they are in memory
///     I i L l     4      as V                               -
///     x           1      a zero byte; skipped when          count times the same, but not in
///                        unpacking                          ByteArrayPack
///     X           1      left as it is; a zero byte in      count times the same, but not in
///                        ByteArrayPack                      ByteArrayPack
///
/// Packing takes one argument, an int or a pointer, for each item but x and X; unpacking takes one
/// pointer to where the value goes. "-" is an error, and so is a count of 0 (but of x and X, where
/// nothing is written or skipped), a count that does not fit an int, and one without a letter.
///
/// No function knows how long the caller's buffers are: there must be room for the whole format.

#ifndef TOOLS_PACK_H
#define TOOLS_PACK_H

#include <QByteArray>
#include <QtGlobal>

#include <cstdarg>

/// Packs into buffer, allocating nothing. Returns the number of bytes written, skipped ones included; 0
/// for an empty format and for an unknown letter (kept:
/// unknownLetterEndsPackingWithZeroAndUnpackingWithMinusOne), -1 for an error in a counted item. After an
/// error the items in front of it are packed.
Q_DECL_EXPORT int DataPack(unsigned char *buffer, const char *format, ...);

/// The same with a list of arguments, which stays as it was: the caller starts and ends it.
Q_DECL_EXPORT int VDataPack(unsigned char *buffer, const char *format, va_list values);

/// Packs into a new array. Any error, a lack of memory included, gives an empty array.
Q_DECL_EXPORT QByteArray ByteArrayPack(const char *format, ...);

/// The same with a list of arguments, which stays as it was: the caller starts and ends it.
Q_DECL_EXPORT QByteArray VByteArrayPack(const char *format, va_list values);

/// Unpacks from buffer: 8-, 16- and 32-bit values are stored through the pointers. Returns the number of
/// bytes consumed, skipped ones included, or -1 for any error; the items in front of it are stored then.
Q_DECL_EXPORT int DataUnpack(const unsigned char *buffer, const char *format, ...);

/// The same with a list of pointers, which stays as it was: the caller starts and ends it.
Q_DECL_EXPORT int VDataUnpack(const unsigned char *buffer, const char *format, va_list destinations);

#endif
