// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// JSON text taken apart, with what a message to the text's author needs: the line of every key.

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
    std::vector<int> keyLines; // of all keys, in the order of the text; counted from 1
};

// Throws the MemoryFileError of a place in the text, such as "line 3".
[[noreturn]] void failAt(const std::string &place, const std::string &what);

// Throws MemoryFileError: no JSON, or a key that comes twice in an object. JSON itself allows that, and one
// of the two would silently be lost.
JsonText parseJson(const std::string &text);

} // namespace sim

#endif
