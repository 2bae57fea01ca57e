// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// JSON text, read with what a message to its author needs: the line of every key.

#ifndef SIMULATOR_CONTROLLER_JSON_TEXT_H
#define SIMULATOR_CONTROLLER_JSON_TEXT_H

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace sim {

using Json = nlohmann::ordered_json;

// Moving JSON throws nothing, but the library's own checks of itself look as if it did.
// NOLINTNEXTLINE(bugprone-exception-escape)
struct JsonText
{
    Json json;
    std::vector<int> keyLines; // the lines of all keys, in the order of the text; the first line is 1
};

// Throws a MemoryFileError that tells the place in the text, such as "line 3".
[[noreturn]] void failAt(const std::string &place, const std::string &what);

// Throws MemoryFileError when the text is no JSON, or when a key comes twice in an object: JSON itself allows
// that, but one of the two would silently be lost.
JsonText parseJson(const std::string &text);

} // namespace sim

#endif
