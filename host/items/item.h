// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// One item of the command line: which memory is meant, and as what.
//
//   item    := ADDRESS [ ":" TYPE ] [ "*" COUNT ] [ "@" STATION ]   VB100  VW10:i16*4@3  V10.3*4  VB20:str*16
//            | ADDRESS "@" STATION [ ":" TYPE ] [ "*" COUNT ]       VB100@3:u16*2
//            | RANGE [ ":" TYPE ] [ "@" STATION ]                   VB0..VB15:hex  V0.0..V1.7  T37..T40@3
//   TYPE    bool                     bits; the status bits of timers and counters
//           u8 i8 u16 i16            numbers, most significant byte at the lowest address
//           u32 i32 u64 i64 f32 f64  the same; with ":swap" behind it the words of a value in reversed order
//           hex bcd                  one value per element of the address's width
//           str                      COUNT characters, one text
//           string                   a byte with the length of a text, and room for COUNT characters
//   STATION 1 to 126                 of the controller, as for --station; for RANGE see address_range.h
//
// Without a type an address is taken as what it is: V10.3 bool, VB u8, VW u16, VD u32, AIW and AQW
// i16, T and C u16, HC u32.

#ifndef HOST_ITEMS_ITEM_H
#define HOST_ITEMS_ITEM_H

#include "host/items/address.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace host {

enum class ValueType { Bool, U8, I8, U16, I16, U32, I32, U64, I64, F32, F64, Hex, Bcd, Str, String };

// The controller's strings have no more characters.
constexpr int kLongestString = 254;

// A type as it stands behind an address.
struct NamedType
{
    ValueType type;
    bool isSwapped; // the words of each value lie in reversed order

    QString text() const; // "f32:swap"
};

struct Item
{
    Address address;
    ValueType type;
    int count;                                 // of a string the characters that it has room for
    std::optional<int> station = std::nullopt; // none: that of --station
    bool isSwapped = false;                    // the words of each value lie in reversed order

    // The type as it stands behind the address: "f32:swap".
    QString typeText() const { return NamedType{type, isSwapped}.text(); }

    // The address, with the station when the item has one of its own: "VB100@3".
    QString place() const;

    // The address of one value, counted from 0; also of the one behind the last. "V11.0" of V10.6 and 2.
    Address valueAddress(int index) const;

    // Bytes of one value in the controller; for bits 1, the byte that carries one to the host.
    int valueSize() const;

    // Bytes of all values, the length byte of a string included.
    int size() const { return lengthBytes() + count * valueSize(); }

    // The count of an item that has so many bytes.
    int countOf(int bytes) const { return (bytes - lengthBytes()) / valueSize(); }

private:
    int lengthBytes() const { return type == ValueType::String ? 1 : 0; }
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

// Fails for a type whose count must be named; "item" is the text that lacks one.
void checkNeedsNoCount(ValueType type, const QString &item);

QString typeName(ValueType type);

// The names of all types, in the order in which they are declared.
QStringList typeNames();

// All that can stand as a type: those that may have ":swap" behind them come once without and once with it.
QStringList typeTexts();

// Whether the characters of an item are one value.
bool isText(ValueType type);

// Whether values of the type are amounts, which have limits and can be scaled.
bool hasNumbers(ValueType type);

// Whether values of the type may have fractions.
bool isFloat(ValueType type);

// These return what a text of an item's names, and fail with what could have been meant.
NamedType parseType(const QString &text);
int parseCount(const QString &text);

} // namespace host

#endif
