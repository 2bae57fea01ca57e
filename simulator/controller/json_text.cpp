// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/controller/json_text.h"

#include "simulator/controller/memory_file_error.h"

#include <cstddef>
#include <iterator>
#include <set>

namespace sim {

namespace {

// An iterator that goes through a text and counts the lines that it has begun. When the parser reports a key,
// the iterator has come just behind it; so the line of the key is known.
class LineCounter
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = const char &;

    LineCounter(const char *place_, int &line_) : place(place_), line(&line_) {}

    reference operator*() const { return *place; }
    LineCounter &operator++()
    {
        *line += *place++ == '\n' ? 1 : 0;
        return *this;
    }
    bool operator==(const LineCounter &other) const { return place == other.place; }
    bool operator!=(const LineCounter &other) const { return place != other.place; }

private:
    const char *place;
    int *line;
};

std::string lineText(int line)
{
    return "line " + std::to_string(line);
}

// Takes the place and the reason out of what the parser says:
// "[json.exception.parse_error.101] parse error at line 3, column 5: what"
[[noreturn]] void failWith(const Json::exception &error, int line)
{
    const std::string text = error.what();
    const std::string place = "parse error at ";
    const size_t found = text.find(place + "line ");
    if (found == std::string::npos)
        failAt(lineText(line), "not JSON: " + text.substr(text.find("] ") + 2));
    const size_t begin = found + place.size();
    const size_t colon = text.find(": ", begin);
    failAt(text.substr(begin, colon - begin), "not JSON: " + text.substr(colon + 2));
}

} // namespace

void failAt(const std::string &place, const std::string &what)
{
    throw MemoryFileError(place + ": " + what, "s7ppi-sim --help shows a memory file");
}

JsonText parseJson(const std::string &text)
{
    JsonText result;
    int line = 1;
    std::vector<std::set<std::string>> open;
    const auto watch = [&](int, Json::parse_event_t event, Json &key) {
        if (event == Json::parse_event_t::object_start)
            open.emplace_back();
        else if (event == Json::parse_event_t::object_end)
            open.pop_back();
        else if (event == Json::parse_event_t::key) {
            result.keyLines.push_back(line);
            if (!open.back().insert(key.get<std::string>()).second)
                failAt(lineText(line), '"' + key.get<std::string>() + "\": comes twice");
        }
        return true;
    };
    try {
        const char *begin = text.data();
        result.json = Json::parse(LineCounter(begin, line), LineCounter(begin + text.size(), line), watch);
    } catch (const Json::exception &error) {
        failWith(error, line);
    }
    return result;
}

} // namespace sim
