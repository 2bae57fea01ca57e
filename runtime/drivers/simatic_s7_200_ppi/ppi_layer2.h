// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Layer 2: the frames that carry requests and answers, and what can be wrong with an answer's frame.
//
//   request     := 68 LE LE 68  DA SA 6C  PDU  FCS 16     LE counts DA, SA, FC and the PDU
//   acknowledge := E5
//   refusal     := 10  DA SA FC  FCS 16                   FC 02 no resource, 03 service not active
//   poll        := 10  DA SA 5C  FCS 16
//   answer      := 68 LE LE 68  DA SA 08  PDU  FCS 16
//
//   FCS is the sum of the bytes from DA up to it, modulo 256. DA and SA are the stations that the
//   frame goes to and comes from.
//
// The checks say what is wrong with a frame; null when nothing is.

#ifndef PPI_LAYER2_H
#define PPI_LAYER2_H

#include <QByteArray>

enum PpiLayer2 {
    kRefusalStart = 0x10,
    kRefusalSize = 6,
    kAnswerHeadSize = 7,     // up to and including FC; the PDU follows
    kReceiveBufferSize = 262 // an answer is at most 261 bytes
};

QByteArray S7_200_PPIPackLayer2SD1Poll(unsigned char da, unsigned char sa);

// A PDU above 252 bytes is not refused: its length byte wraps, and the check sum covers only as many
// bytes as the length byte says.
QByteArray S7_200_PPIPackLayer2SD2Request(unsigned char da, unsigned char sa, const QByteArray &pdu);

// The first answer to a request; length is the number of bytes received.
const char *S7_200_PPIFaultInAcknowledgement(const unsigned char *buffer, int length);

// What a refusal says, or what is wrong with it; never null.
const char *S7_200_PPIReasonOfRefusal(const unsigned char *buffer, int length, unsigned char da,
                                      unsigned char sa);

// The first 7 bytes of the answer to a poll.
const char *S7_200_PPIFaultInAnswerHead(const unsigned char *buffer, int length, unsigned char da,
                                        unsigned char sa);

// The rest of an answer whose head is good: buffer is the whole answer, kReceiveBufferSize bytes;
// length and expectedLength count the bytes behind the head, received and owed.
const char *S7_200_PPIFaultInAnswerRest(const unsigned char *buffer, int length, int expectedLength);

#endif
