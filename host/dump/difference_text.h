// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Differences of dumps as lines for people, and as records for programs.
//
//   Boiler 21.5 -> 22 °C
//   VB120  old 1  2  3
//          new 9 10 11

#ifndef HOST_DUMP_DIFFERENCE_TEXT_H
#define HOST_DUMP_DIFFERENCE_TEXT_H

#include "host/dump/dump_difference.h"
#include "host/text/json.h"

#include <QString>

#include <vector>

namespace host {

class DifferenceLines
{
public:
    // The differences that are going to come, so that their values can stand in one column.
    explicit DifferenceLines(const std::vector<Difference> &differences);

    // One value is one line, the old behind the new; several have two, the old ones above the new ones, each
    // pair in a column, eight pairs to a line. There is no character that ends the last line.
    QString text(const Difference &difference) const;

private:
    int labelWidth = 0;
};

// {"name", "address", "index", "type", "unit", "old", "new"}; name, index and unit only where there is one.
Json differenceRecord(const Difference &difference);

// {"address", "last"}: a range by its ends.
Json rangeRecord(const Item &range);

} // namespace host

#endif
