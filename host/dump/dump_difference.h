// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What two dumps have differently, as values: those of tags where tags are given, elsewhere those that an
// address alone stands for.
//
// Dumps are compared where both have the same memory, whatever it is called: VW10..VW98 and VB0..VB49 have
// VB10 to VB49 in common. Elements stay what they are when both dumps have the same ones, and are told byte
// by byte otherwise. Of an element that a tag tells in part the rest is told by bytes, and by bits of a byte.

#ifndef HOST_DUMP_DUMP_DIFFERENCE_H
#define HOST_DUMP_DUMP_DIFFERENCE_H

#include "host/dump/dump_file.h"
#include "host/items/item.h"
#include "host/items/tag.h"
#include "host/items/value.h"

#include <QString>

#include <vector>

namespace host {

struct ComparisonRules
{
    std::vector<Tag> tags;     // their memory is told as their values; two of them may have the same
    std::vector<Item> ignored; // memory that may differ
    std::vector<Item>
        unread;            // memory that the second dump has no bytes of; no value with a part of it is told
    bool asDigits = false; // what no tag tells is told in hexadecimal digits
};

// Neighbouring values all of which differ.
struct Difference
{
    // Whether the values are not all that the tag has, but some of several, counted from the first on.
    bool isOfSeveral() const;

    // What one of the values is called: "VB100", "Boiler", or "Boiler[3]" of several.
    QString label(int value) const;

    Tag tag;       // one without a name for an address alone
    int index = 0; // of the first value in the tag
    std::vector<Value> before;
    std::vector<Value> after;
    int end = 0; // bytes from the first dump's beginning to behind the last value
};

struct DumpDifferences
{
    bool isSame() const { return differentSize == 0 && onlyBefore.empty() && onlyAfter.empty(); }

    std::vector<Difference> differences; // by their addresses
    std::vector<Item> onlyBefore;        // ranges that one dump alone has
    std::vector<Item> onlyAfter;
    int comparedSize = 0;         // bytes that both have, and that are neither ignored nor unread
    int differentSize = 0;        // those of them that differ
    std::vector<Tag> outsideTags; // none of their values is in both dumps
};

DumpDifferences compareDumps(const Dump &before, const Dump &after, const ComparisonRules &rules);

// The parts of a range in which every element has something that none of the items takes.
std::vector<Item> partsWithout(const Item &range, const std::vector<Item> &items);

// Whether an item takes any of a range's memory.
bool isIn(const Item &range, const Item &item);

// Where a part of a range begins, in bytes behind the range's first.
int offsetIn(const Item &range, const Item &part);

// The bytes of several ranges.
int totalSize(const std::vector<Item> &ranges);

} // namespace host

#endif
