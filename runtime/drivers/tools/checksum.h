// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// Check values of frames: sums over a buffer, and CRCs, of which a driver chains the steps itself.
///
///     unsigned int crc = 0xFFFFFFFF;                   // the start value of the driver's protocol
///     for (int i = 0; i < length; ++i)
///         crc = update_crc_32(crc, frame[i]);
///     crc = ~crc;                                      // its final treatment
///
/// Nothing here keeps state, so all of it may be called from any thread.

#ifndef TOOLS_CHECKSUM_H
#define TOOLS_CHECKSUM_H

#include <QtGlobal>

/// The sum of length bytes, modulo 256. 0 for a length below 1 and for a null pointer.
Q_DECL_EXPORT unsigned char UInt8CheckSum(const unsigned char *data, int length);

/// The sum of length unsigned bytes, modulo 65536. 0 for a length below 1 and for a null pointer.
Q_DECL_EXPORT unsigned short UShortCheckSum(const unsigned char *data, int length);

/// The exclusive or of length bytes. 0 for a length below 1 and for a null pointer.
Q_DECL_EXPORT unsigned char XorUInt8CheckSum(const unsigned char *data, int length);

/// CRC-16/ARC of length bytes: update_crc_16() from 0 on, no final exclusive or. 0 for a length below 1 and
/// for a null pointer.
Q_DECL_EXPORT unsigned short CRC16Calculate(const unsigned char *data, int length);

/// The 16-bit CRC after byte c: polynomial 0x1021, most significant bit first.
Q_DECL_EXPORT unsigned short update_crc_ccitt(unsigned short crc, unsigned char c);

/// The 16-bit CRC after byte c: polynomial 0x8005, least significant bit first (0xA001).
Q_DECL_EXPORT unsigned short update_crc_16(unsigned short crc, unsigned char c);

/// The 16-bit CRC after byte c: polynomial 0x1021, least significant bit first (0x8408).
Q_DECL_EXPORT unsigned short update_crc_kermit(unsigned short crc, unsigned char c);

/// The 16-bit CRC after byte c: polynomial 0x3D65, least significant bit first (0xA6BC).
Q_DECL_EXPORT unsigned short update_crc_dnp(unsigned short crc, unsigned char c);

/// The 32-bit CRC after byte c: polynomial 0x04C11DB7, least significant bit first (0xEDB88320).
Q_DECL_EXPORT unsigned int update_crc_32(unsigned int crc, unsigned char c);

/// The 16-bit check value after byte c, whose predecessor in the frame was prev (0 for the first byte):
/// polynomial 0x8005, shifted by one bit a byte, most significant bit first.
Q_DECL_EXPORT unsigned short update_crc_sick(unsigned short crc, unsigned char c, unsigned char prev);

#endif
