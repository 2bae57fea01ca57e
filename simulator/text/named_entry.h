// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Tables whose entries users call by name.

#ifndef SIMULATOR_TEXT_NAMED_ENTRY_H
#define SIMULATOR_TEXT_NAMED_ENTRY_H

#include "common/nearest_word.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace sim {

// Returns the entry of a table whose member `name` is that name. Throws std::invalid_argument with a text for
// the user, who looked for such a thing: "kind of fault". There must be at least one entry.
template <typename Table>
const typename Table::value_type &entryNamed(const std::string &name, const Table &table, const char *thing)
{
    std::vector<std::string> names;
    for (const auto &entry : table) {
        if (name == entry.name)
            return entry;
        names.emplace_back(entry.name);
    }
    const std::string nearest = common::likelyWord(name, names);
    if (!nearest.empty())
        throw std::invalid_argument('"' + name + "\" is no " + thing + "; the nearest is " + nearest);
    std::string all;
    for (const std::string &known : names)
        all += (all.empty() ? "" : ", ") + known;
    throw std::invalid_argument('"' + name + "\" is no " + thing + "; there are " + all);
}

} // namespace sim

#endif
