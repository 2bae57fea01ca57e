// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Read values as text on stdout: one line per item, the address and its values, blanks between.

#ifndef HOST_TEXT_OUTPUT_H
#define HOST_TEXT_OUTPUT_H

#include "value.h"

#include <vector>

namespace host {

class TextOutput
{
public:
    // The items that are going to come, so that their values can stand in one column.
    explicit TextOutput(const std::vector<Item> &items);

    // The line without its end.
    QString line(const Item &item, const std::vector<Value> &values) const;

    void write(const Item &item, const std::vector<Value> &values) const;

private:
    int addressWidth = 0;
};

} // namespace host

#endif
