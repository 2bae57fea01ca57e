// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// Bits of values and of bit arrays. In a bit array, bit i lives in byte i / 8 at position i mod 8, least
/// significant bit first.

#ifndef TOOLS_BITS_H
#define TOOLS_BITS_H

#include <QByteArray>
#include <QtGlobal>

/// The value with bit n, 0 to 7, set; unchanged for any other n.
Q_DECL_EXPORT unsigned char setBit(unsigned char value, unsigned short n);

/// The value with bit n, 0 to 15, set; unchanged for any other n.
Q_DECL_EXPORT unsigned short setBit(unsigned short value, unsigned short n);

/// The value with bit n, 0 to 31, set; unchanged for any other n.
Q_DECL_EXPORT unsigned int setBit(unsigned int value, unsigned short n);

/// The value with bit n, 0 to 7, cleared; unchanged for any other n.
Q_DECL_EXPORT unsigned char clearBit(unsigned char value, unsigned short n);

/// The value with bit n, 0 to 15, cleared; unchanged for any other n.
Q_DECL_EXPORT unsigned short clearBit(unsigned short value, unsigned short n);

/// The value with bit n, 0 to 31, cleared; unchanged for any other n.
Q_DECL_EXPORT unsigned int clearBit(unsigned int value, unsigned short n);

/// True when bit n, 0 to 7, is set; false for any other n.
Q_DECL_EXPORT bool getBit(unsigned char value, unsigned short n);

/// True when bit n, 0 to 15, is set; false for any other n.
Q_DECL_EXPORT bool getBit(unsigned short value, unsigned short n);

/// True when bit n, 0 to 31, is set; false for any other n.
Q_DECL_EXPORT bool getBit(unsigned int value, unsigned short n);

/// Bit i of a bit array; false outside the array.
Q_DECL_EXPORT bool getBit(const QByteArray &bits, int i);

/// Bit i of a bit array whose end the caller knows: there must be a byte i / 8. A negative i gives false.
Q_DECL_EXPORT bool getBit(const unsigned char *bits, int i);

/// Sets (on) or clears bit i of a bit array; a negative i changes nothing. An array that ends before byte
/// i / 8 grows to it with zero bytes, whether the bit is set or cleared, and is left as it was when memory
/// does not reach.
Q_DECL_EXPORT void setBit(QByteArray &bits, int i, bool on);

/// Sets (on) or clears bit i of a bit array whose end the caller knows: there must be a byte i / 8. A
/// negative i changes nothing.
Q_DECL_EXPORT void setBit(unsigned char *bits, int i, bool on);

/// Bit 0 of the first byte; false for an empty array.
Q_DECL_EXPORT bool getBitData(const QByteArray &bits);

/// Clears what lies above the first nbits bits in the byte that holds the last of them. Nothing happens when
/// nbits is a multiple of 8 or the array has no such byte; bytes behind it stay.
Q_DECL_EXPORT void clearUnnecessaryBits(QByteArray &bits, int nbits);

/// count bytes, byte k being 1 or 0 for bit start + k; bits beyond the array are 0. Empty for a count below
/// 1, and when memory does not reach.
Q_DECL_EXPORT QByteArray ExpandBitsToBytes(const QByteArray &bits, unsigned short start, int count);

/// Makes bits destStart .. destStart + count - 1 of dest the bits 0 .. count - 1 of src; bits beyond src are
/// 0. dest grows as with setBit; places below bit 0 are left out. Nothing happens for a count below 1 or
/// when memory does not reach.
Q_DECL_EXPORT void CopyBits(QByteArray &dest, QByteArray &src, int destStart, int count);

/// Shifts the array, read as one number with byte 0 the least significant, right by n bits. The n / 8 whole
/// bytes that are shifted out are not lost: they stand unchanged behind the others, and the rest of the
/// shift leaves them out. Kept: they are not zeroed (shiftKeepsWholeBytesAtTheEnd). A shift by the whole
/// array or more therefore changes nothing, nor does one below 1.
Q_DECL_EXPORT void RightShiftNBits(QByteArray &bits, int n);

#endif
