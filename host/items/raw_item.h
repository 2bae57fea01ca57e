// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Items whose address is for the driver alone, and the two ways in which items are written.
//
//   item := TEXT ":" TYPE [ "*" COUNT ] [ "@" STATION ]     N1:i32  40001:f32:swap*4  "tank 3: level:f32@5"
//
// TEXT is any text that is not empty: the last colon with a type behind it is that of the type. What is
// written is divided at the first "=" behind a type instead, as values may be any text, too. The types are
// those of every item; hex and bcd are taken byte by byte.
//
// The driver gets TEXT as the address and COUNT items of a data type:
//
//   bool                        bits
//   u8 i8 hex bcd str string    bytes, one behind the other as the device keeps them
//   u64 i64 f64                 eight bytes for each value, the most significant first
//   u16 i16                     words
//   u32 i32 f32                 double words

#ifndef HOST_ITEMS_RAW_ITEM_H
#define HOST_ITEMS_RAW_ITEM_H

#include "host/items/item.h"

#include <QString>

namespace host {

// How an item's address is written: as the S7-200 has it, or as the driver takes it.
enum class Notation { Controller, Raw };

Item parseItem(const QString &text, Notation notation);

// The text of an assignment, divided at its "=".
struct AssignmentText
{
    QString target;
    QString values;
    bool hasValues; // an "=" is there
};

AssignmentText splitAssignment(const QString &text, Notation notation);

} // namespace host

#endif
