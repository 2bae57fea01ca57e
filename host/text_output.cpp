// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "text_output.h"

#include "report.h"

#include <algorithm>

namespace host {

TextOutput::TextOutput(const std::vector<Item> &items)
{
    for (const Item &item : items)
        addressWidth = std::max(addressWidth, int(item.address.text().size()));
}

QString TextOutput::line(const Item &item, const std::vector<Value> &values) const
{
    return item.address.text().leftJustified(addressWidth) + ' ' + valuesText(values);
}

void TextOutput::write(const Item &item, const std::vector<Value> &values) const
{
    printData(line(item, values));
}

} // namespace host
