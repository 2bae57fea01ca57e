// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Layer 7, what the controller answers. Multi-byte fields are most significant byte first.
//
//   read answer  := header 04 01 item
//   write answer := header 05 01 CODE...                     one return code per item
//   header       := 32 MT 0000  RRRR  PPPP  DDDD  EC EE      MT 02 or 03; PDU reference of the request;
//                                                            PPPP 0000 or 0002; error class and code
//   item         := CODE TS LLLL data                        TS 04: LLLL in bits, TS 09: in bytes
//   data         := memory as it stands | timer... | counter... | high-speed counter...
//   timer        := SS VVVVVVVV                              status in bit 1; the low 16 bits count
//   counter      := SS VVVV                                  status in bit 4
//   hs counter   := xx VVVVVVVV
//
// The decoders trust the length in the item: a caller first sees with S7_200_PPIRspItemFits that the
// frame holds it. They read at most 4 bytes beyond that, for an object cut short. They raise no error
// of their own; one that cannot get its bytes throws std::bad_alloc.

#ifndef PPI_RESPONSE_H
#define PPI_RESPONSE_H

#include "communicator_command.h"

#include <QByteArray>
#include <QString>

#include <vector>

enum PpiLayer7 {
    kSuccess = 0xFF,       // return code of an item
    kReadItemHeadSize = 6, // function to length, in front of an item's data
    kLengthInBits = 0x04,  // transport size of memory
    kLengthInBytes = 0x09  // transport size of timers, counters and high-speed counters
};

// One decoded timer or counter.
struct S7_200_PPI_Timer
{
    unsigned short value;
    unsigned char status; // its bit, 0 or 1
};

// The message of an item's return code; null for success.
QString S7_200_PPIReadRspErrorCodeToStr(unsigned char code);

// Unpacks the header into the last four arguments, whatever it holds. Returns its size, the offset of
// the parameters, or -1 when it is no answer to the request with expectedReference.
int S7_200_PPILayer2UnpackSD2ReadWriteRspHeader(const unsigned char *header, unsigned short expectedReference,
                                                unsigned short &parameterLength, unsigned short &dataLength,
                                                unsigned char &errorClass, unsigned char &errorCode);

// In all that follow, parameters points behind the header, and returnCode receives the item's.

// Whether held bytes behind the item's head are enough for what its decoder reads of the data that it says it
// has: whole elements of elementSize bytes where transportSize counts bits, everything where it counts bytes.
// Items that the decoder of their transport size refuses need none.
bool S7_200_PPIRspItemFits(const unsigned char *parameters, PpiLayer7 transportSize, int elementSize,
                           int held);

// The data of a memory read: words and double words, by the last letter of the prefix, least significant
// byte first, anything else as it came; incomplete elements are left out. Empty when it is no answer with
// data.
QByteArray S7_200_PPIGetRspBytes(const unsigned char *parameters, const QByteArray &prefix,
                                 unsigned char &returnCode);

// Bits firstBit to firstBit + count - 1 of a memory read's data, as one byte of 0 or 1
// each; bit 0 is the least significant of the first byte. False unless the data are exactly as many bytes
// as count bits need and hold the last of them.
//
// Kept: the size is compared without regard to firstBit, so bits that straddle one byte more than
// their number needs are refused (bitsThatStraddleOneByteMoreAreRefused).
bool S7_200_PPIGetRspBits(const unsigned char *parameters, unsigned int firstBit, int count,
                          QByteArray &bits);

// The values of high-speed counters, 4 bytes each, least significant first. Empty when it is no answer
// with data.
QByteArray S7_200_PPIGetRspHSC(const unsigned char *parameters, unsigned char &returnCode);

// Whether the one item of a write was taken.
bool S7_200_PPICheckWriteRspParamData(const unsigned char *parameters, unsigned char &returnCode);

// The return codes of a write of several items, one byte each; empty when it is no answer to a write. Only
// held bytes of the frame stand at parameters: a code beyond them is 0.
QByteArray S7_200_PPIGetWriteRspCodes(const unsigned char *parameters, int held);

// The messages of the return codes with a comma between each two, so that every item has its place.
QString S7_200_PPIWriteRspCodesToStr(const QByteArray &codes);

// Appends the timers or counters of the answer. False when it is no such answer; true and nothing
// appended when it has no data.
bool S7_200_PPIGetRspTimers(const unsigned char *parameters, std::vector<S7_200_PPI_Timer> &timers,
                            unsigned char &returnCode);
bool S7_200_PPIGetRspCounters(const unsigned char *parameters, std::vector<S7_200_PPI_Timer> &counters,
                              unsigned char &returnCode);

#endif
