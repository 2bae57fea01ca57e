// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Address texts of the controller, checked before anything is sent.
//
//   address := AREA NUMBER [ "." BIT ]
//   AREA    I Q V M SM S, alone with a bit, or followed by B, W or D for the width   V10.3 VB100 SMW28
//           AIW AQW      analogue words, at even bytes                               AIW2
//           T C HC       timers, counters, high-speed counters                       T37 HC0

#ifndef HOST_ITEMS_ADDRESS_H
#define HOST_ITEMS_ADDRESS_H

#include "host/items/area.h"

#include <QString>
#include <QStringList>

namespace host {

constexpr int kBitsOfByte = 8;

// The address field of a request has 24 bits. It holds the number of a bit, or an object's number, for which
// 16 bits are plenty.
constexpr int kMaxByteNumber = (1 << 24) / kBitsOfByte - 1;
constexpr int kMaxObjectNumber = 0xffff;

// Counts of more than 16 bits are no driver's: requests carry no more on the line.
constexpr int kMaxRawCount = 0xffff;

// Requests carry bits, bytes, words and double words. A value of more bytes than this is several of them.
constexpr int kWidestUnit = 4;

struct Address
{
    AddressKind kind;
    QString prefix;   // the letters; of a raw address the whole text
    int number;       // byte or object
    int bit;          // 0 to 7; 0 for all kinds but Bit
    int elementWidth; // bytes of one element, as the letters say

    QString text() const;
    bool isObject() const { return host::isObject(kind); }
};

// Returns the address that a text names. Fails with a hint that names the nearest valid texts.
Address parseAddress(const QString &text);

// Returns the valid texts nearest to one: that text alone when it is valid, nothing when it is like no
// address.
QStringList nearestAddresses(const QString &text);

// These two are the first and the last address that the letters of an address can name.
Address firstAddress(const Address &like);
Address lastAddress(const Address &like);

} // namespace host

#endif
