// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The name that a mistyped one was probably meant to be.

#ifndef SIMULATOR_TEXT_NEAREST_NAME_H
#define SIMULATOR_TEXT_NEAREST_NAME_H

#include <stdexcept>
#include <string>
#include <vector>

namespace sim {

// The one that takes the fewest inserted, left out and changed characters; the first of equals. There must
// be at least one name.
std::string nearestName(const std::string &text, const std::vector<std::string> &names);

// The entry of a table whose member name is that name. Throws std::invalid_argument with a text for the user,
// who looked for such a thing: "kind of fault".
template <typename Table>
const typename Table::value_type &entryNamed(const std::string &name, const Table &table, const char *thing)
{
    std::vector<std::string> names;
    for (const auto &entry : table) {
        if (name == entry.name)
            return entry;
        names.emplace_back(entry.name);
    }
    throw std::invalid_argument('"' + name + "\" is no " + thing + "; the nearest is " +
                                nearestName(name, names));
}

} // namespace sim

#endif
