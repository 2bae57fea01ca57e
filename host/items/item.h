// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// One item of the command line: which memory is meant, and as what.
//
//   item    := ADDRESS [ ":" TYPE ] [ "*" COUNT ] [ "@" STATION ]   VB100  VW10:i16*4@3  V10.3*4  VB20:str*16
//            | ADDRESS "@" STATION [ ":" TYPE ] [ "*" COUNT ]       VB100@3:u16*2
//   TYPE    bool                       bits; the status bits of timers and counters
//           u8 i8 u16 i16 u32 i32 f32  numbers, most significant byte at the lowest address
//           hex bcd                    one value per element of the address's width
//           str                        COUNT characters, one text
//   STATION 1 to 126                   of the controller, as for --station
//
// Without a type an address is taken as what it is: V10.3 bool, VB u8, VW u16, VD u32, AIW and AQW
// i16, T and C u16, HC u32.

#ifndef HOST_ITEMS_ITEM_H
#define HOST_ITEMS_ITEM_H

#include "host/items/address.h"

#include <QString>

#include <optional>

namespace host {

enum class ValueType { Bool, U8, I8, U16, I16, U32, I32, F32, Hex, Bcd, Str };

struct Item
{
    Address address;
    ValueType type;
    int count;
    std::optional<int> station = std::nullopt; // none: that of --station

    // The address, with the station when the item has one of its own: "VB100@3".
    QString place() const;

    // Bytes of one value in the controller; for bits 1, the byte that carries one to the host.
    int valueSize() const;

    // Bytes of all values.
    int size() const { return count * valueSize(); }
};

// Returns the item that a text names. Fails with a hint that names what could have been meant.
Item parseItem(QString text);

// The part of an item's text that names the address, be it right or wrong.
QString addressIn(const QString &itemText);

// Returns the station of a controller that a text names. Fails when there is none of that number.
int parseStation(const QString &text);

// Whether values of the type can lie at the address.
bool canBeTakenAs(const Address &address, ValueType type);

// Fails when the address is not followed by that many values.
void checkCount(const Item &item);

QString typeName(ValueType type);

} // namespace host

#endif
