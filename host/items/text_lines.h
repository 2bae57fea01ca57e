// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Values as text: one line per tag, its label and its values, blanks between.

#ifndef HOST_ITEMS_TEXT_LINES_H
#define HOST_ITEMS_TEXT_LINES_H

#include "host/items/tag.h"

#include <vector>

namespace host {

class TextLines
{
public:
    // The tags that are going to come, so that their values can stand in one column.
    explicit TextLines(const std::vector<Tag> &tags);

    // The line without its end.
    QString line(const Tag &tag, const std::vector<Value> &values) const;

private:
    int labelWidth = 0;
};

} // namespace host

#endif
