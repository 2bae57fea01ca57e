// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Layer 7, what the driver asks. Multi-byte fields are most significant byte first.
//
//   read request := header block                             the PDU, 24 bytes
//   header       := 32 01 0000  RRRR  PPPP  DDDD             PDU reference; lengths of block and data
//   block        := 04 01  item                              one item
//   item         := 12 0A 10  TT  NNNN  BBBB  AA  ADDRESS    transport size, count, DB, area, 3 bytes
//
// Every builder of a header advances pduReference by one, modulo 65536, and packs the new value. The
// builders refuse nothing: an unknown prefix gives area 0, and what does not fit its field is cut.

#ifndef PPI_REQUEST_H
#define PPI_REQUEST_H

#include "ppi_bytes.h"

PpiBytes S7_200_PPIPackLayer7ReadReqHeader(unsigned short &pduReference, unsigned short parameterLength);

// address is a byte number, or the number of an object.
PpiBytes S7_200_PPIPackLayer7ReadReqParamBlock(unsigned char transportSize, unsigned short count,
                                               const QByteArray &prefix, unsigned int address);

PpiBytes S7_200_PPIPackLayer7ReadBytesReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                             unsigned int byteAddress, unsigned short count);
PpiBytes S7_200_PPIPackLayer7ReadWordsReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                             unsigned int byteAddress, unsigned short count);
PpiBytes S7_200_PPIPackLayer7ReadDWordsReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                              unsigned int byteAddress, unsigned short count);

// Counters for the prefix "C", timers for "T", high-speed counters for any other.
PpiBytes S7_200_PPIPackLayer7ReadObjectsReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                               unsigned int objectNumber, unsigned short count);

// The whole frame of a read of byteCount bytes of memory. They are asked for in the elements of the
// prefix, so rounded up to whole words or double words; the count of elements carries 16 bits.
PpiBytes S7_200_PPIPackReadBytesReq(unsigned short &pduReference, unsigned char destination,
                                    unsigned char source, const QByteArray &prefix, unsigned int byteAddress,
                                    unsigned int byteCount);

// The whole frame of a read of count objects.
PpiBytes S7_200_PPIPackReadObjectsReq(unsigned short &pduReference, unsigned char destination,
                                      unsigned char source, const QByteArray &prefix,
                                      unsigned int objectNumber, unsigned short count);

#endif
