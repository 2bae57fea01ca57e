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
//   write request := header block data
//   block        := 05 01  item
//   data         := 00 04 LLLL  payload                      LLLL in bits
//   payload      := bytes | words | double words | timer... | counter...
//   timer        := 000000 VVVV
//   counter      := 00 VVVV
//
//   bit write    := header block data                        k items, one bit each
//   block        := 05 KK  item...                           transport size 01, count 1
//   data         := (00 03 0001 VV 00)...  00 03 0001 VV     a fill byte behind all but the last
//
// Every builder of a header advances pduReference by one, modulo 65536, and packs the new value. The
// builders refuse nothing: an unknown prefix gives area 0, and what does not fit its field is cut. One that
// cannot get its bytes throws std::bad_alloc.

#ifndef PPI_REQUEST_H
#define PPI_REQUEST_H

#include "communicator_command.h"

#include <QByteArray>

QByteArray S7_200_PPIPackLayer7ReadReqHeader(unsigned short &pduReference, unsigned short parameterLength);

// address is a byte number, or the number of an object.
QByteArray S7_200_PPIPackLayer7ReadReqParamBlock(unsigned char transportSize, unsigned short count,
                                                 const QByteArray &prefix, unsigned int address);

QByteArray S7_200_PPIPackLayer7ReadBytesReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                               unsigned int byteAddress, unsigned short count);
QByteArray S7_200_PPIPackLayer7ReadWordsReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                               unsigned int byteAddress, unsigned short count);
QByteArray S7_200_PPIPackLayer7ReadDWordsReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                                unsigned int byteAddress, unsigned short count);

// Counters for the prefix "C", timers for "T", high-speed counters for any other.
QByteArray S7_200_PPIPackLayer7ReadObjectsReqPDU(unsigned short &pduReference, const QByteArray &prefix,
                                                 unsigned int objectNumber, unsigned short count);

// The whole frame of a read of byteCount bytes of memory. They are asked for in the elements of the
// prefix, so rounded up to whole words or double words.
QByteArray S7_200_PPIPackReadBytesReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                      const QByteArray &prefix, unsigned int byteAddress,
                                      unsigned short byteCount);

// The same for the reads of words and double words: up to 65535 of them, the count of elements
// carries 16 bits.
QByteArray S7_200_PPIPackReadMemoryReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                       const QByteArray &prefix, unsigned int byteAddress,
                                       unsigned int byteCount);

// The whole frame of a read of count objects.
QByteArray S7_200_PPIPackReadObjectsReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                        const QByteArray &prefix, unsigned int objectNumber,
                                        unsigned short count);

QByteArray S7_200_PPIPackLayer7WriteReqHeader(unsigned short &pduReference, unsigned short parameterLength,
                                              unsigned short dataLength);

// address is a byte number, or the number of an object.
QByteArray S7_200_PPIPackLayer7WriteByteWordDWordReqParamBlock(const QByteArray &prefix, unsigned int address,
                                                               unsigned char transportSize,
                                                               unsigned short count);

QByteArray S7_200_PPIPackLayer7WriteByteWordDWordReqDataBlock(const QByteArray &payload);

// The whole frame of a write to memory. data are in host byte order; they go out in the elements of the
// prefix, filled with zero bytes to whole ones.
QByteArray S7_200_PPIPackWriteMemoryReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                        const QByteArray &prefix, unsigned int byteAddress,
                                        const QByteArray &data);

// Writes of timers and counters. values are 16-bit, least significant byte first.
//
// Kept: of an odd number of bytes the last makes an element of its own, its high byte zero, which the
// count does not include (anOddByteMakesAnElementThatIsNotCounted).
QByteArray S7_200_PPIPackWriteTimersReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                        unsigned int timerNumber, const QByteArray &values);
QByteArray S7_200_PPIPackLayer7WriteCountersReqPDU(unsigned short &pduReference, unsigned int counterNumber,
                                                   const QByteArray &values);
QByteArray S7_200_PPIPackWriteCountersReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                          unsigned int counterNumber, const QByteArray &values);

// The whole frame of a write of single bits, one byte of values each, sent as it stands. The bits
// follow each other from the given one on; the number is advanced and compared then, so that behind bit 7, or
// any higher number, comes the next byte's bit 0. The block names as many items as the low 8 bits of their
// number say.
QByteArray S7_200_PPIPackWriteBitsReq(unsigned short &pduReference, unsigned char da, unsigned char sa,
                                      const QByteArray &prefix, unsigned int byteAddress,
                                      unsigned int bitNumber, const QByteArray &values);

// The data of a write, cut or extended with zero bytes to what a word or double-word command counts;
// unchanged for other types. Throws std::bad_alloc when no array of that size can be had.
QByteArray DriverS7_200_PPIGetSafeData(const CommunicatorCommand &command, const QByteArray &data);

#endif
