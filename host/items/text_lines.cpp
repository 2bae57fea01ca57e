// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/text_lines.h"

#include <algorithm>

namespace host {

TextLines::TextLines(const std::vector<Tag> &tags)
{
    for (const Tag &tag : tags)
        labelWidth = std::max(labelWidth, int(tag.label().size()));
}

QString TextLines::line(const Tag &tag, const std::vector<Value> &values) const
{
    return tag.label().leftJustified(labelWidth) + ' ' + shownText(tag, values);
}

} // namespace host
