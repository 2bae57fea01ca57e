// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The controller's address texts, VB100, V10.3, SMB28, T37, and what a request carries of them.
//
//   address := prefix number [ "." bit ]      prefix := letters, as ExtractPrefixSymbol takes them
//
// Nothing here refuses a text: an unknown prefix gives area 0, a text without digits byte 0, and the
// controller answers that with an error of its own.

#ifndef PPI_ADDRESS_H
#define PPI_ADDRESS_H

#include <QByteArray>
#include <QString>

// The number in the text: all its digits in order, everything else skipped, the dot included (V10.3
// gives 103). Wraps modulo 2^32; 0 without digits.
unsigned int S7_200_PPIExtractByteAddress(const QString &text);

// Byte and bit number: the digits before the first dot, and the last character's code less that of
// "0", whatever it is: M13 gives byte 13 and bit 3, V10.12 byte 10 and bit 2, V10.A bit 17. An empty text
// gives 0 and 0. Always true.
bool S7_200_PPIExtractAddress(const QString &text, unsigned int &byteAddress, unsigned int &bitNumber);

// Timers, counters and high-speed counters are objects, addressed by number; all else is memory,
// addressed by bit.
bool S7_200_PPIIsObj(const QByteArray &prefix);

// Variable memory is data block 1, everything else 0. Only the first letter counts.
unsigned short S7_200_PPIDBNumber(const QByteArray &prefix);

// The size of the area's elements on the wire, by the prefix's last letter: 4 for "D", 2 for "W",
// otherwise 1.
int S7_200_PPIElementSize(const QByteArray &prefix);

// The address that a request carries, in its low 24 bits: the number of an object, the bit address of
// anything else.
unsigned int S7_200_PPIWireAddress(const QByteArray &prefix, unsigned int number);

#endif
