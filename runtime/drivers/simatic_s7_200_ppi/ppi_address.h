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

// The letters in front of the number, as ExtractPrefixSymbol takes them.
QByteArray S7_200_PPIExtractPrefix(const QString &text);

// The number in the text: all its digits in order, everything else skipped, the dot included (V10.3
// gives 103). Wraps modulo 2^32; 0 without digits.
unsigned int S7_200_PPIExtractByteAddress(const QString &text);

// Byte and bit number: the digits before the first dot, and the last character's code less that of
// "0", whatever it is: M13 gives byte 13 and bit 3, V10.12 byte 10 and bit 2, V10.A bit 17. An empty text
// gives 0 and 0. Always true.
bool S7_200_PPIExtractAddress(const QString &text, unsigned int &byteAddress, unsigned int &bitNumber);

// The area code of the prefix, 0 when it has none.
unsigned char S7_200_PPIAreaCode(const QByteArray &prefix);

// Timers, counters and high-speed counters are objects, addressed by number; all else is memory,
// addressed by bit.
inline bool S7_200_PPIIsObj(const QByteArray &prefix)
{
    const char *letters = prefix.constData(); // at least a terminating zero
    if (letters[0] == 'C' || letters[0] == 'T')
        return prefix.size() == 1;
    return letters[0] == 'H' && letters[1] == 'C' && prefix.size() == 2;
}

// Variable memory is data block 1, everything else 0. Only the first letter counts.
inline unsigned char S7_200_PPIDBNumber(const QByteArray &prefix)
{
    return prefix.constData()[0] == 'V' ? 1 : 0;
}

// The size of the area's elements on the wire, by the prefix's last letter: 4 for "D", 2 for "W",
// otherwise 1.
inline int S7_200_PPIElementSize(const QByteArray &prefix)
{
    const char width = prefix.isEmpty() ? '\0' : prefix.constData()[prefix.size() - 1];
    if (width == 'D')
        return 4;
    return width == 'W' ? 2 : 1;
}

// The 24-bit address of a request: the number of an object, the bit address of anything else.
inline unsigned int S7_200_PPIWireAddress(const QByteArray &prefix, unsigned int number)
{
    return S7_200_PPIIsObj(prefix) ? number : number * 8;
}

#endif
