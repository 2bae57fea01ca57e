// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "common/nearest_word.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <numeric>

namespace common {

namespace {

using Words = std::vector<std::string>;

// Of options a user writes "--port", "-port" or "port" and means the same, with or without Caps Lock.
std::string plain(const std::string &text)
{
    std::string letters = text.substr(std::min(text.find_first_not_of('-'), text.size()));
    for (char &letter : letters)
        letter = char(std::tolower(static_cast<unsigned char>(letter)));
    return letters;
}

// How many changes turn one text into the other. After each letter of `one`, row[j] is the distance of its
// letters so far from the first j letters of `other`. Only three rows are kept, as a user's text may have any
// length.
size_t distance(const std::string &one, const std::string &other)
{
    std::vector<size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), size_t(0));
    std::vector<size_t> previous(row.size());
    std::vector<size_t> lastButOne(row.size());
    for (size_t i = 1; i <= one.size(); ++i) {
        lastButOne.swap(previous);
        previous.swap(row);
        row[0] = i;
        for (size_t j = 1; j <= other.size(); ++j) {
            const size_t replaced = previous[j - 1] + (one[i - 1] == other[j - 1] ? 0 : 1);
            row[j] = std::min({previous[j] + 1, row[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1])
                row[j] = std::min(row[j], lastButOne[j - 2] + 1);
        }
    }
    return row.back();
}

// A short word is soon like any other: "shell" is two changes away from "help", and means something else.
size_t largestDistance(const std::string &text)
{
    return text.size() / 3;
}

std::string onlyOneThatBegins(const std::string &text, const Words &words)
{
    Words found;
    std::copy_if(words.begin(), words.end(), std::back_inserter(found),
                 [&](const std::string &word) { return plain(word).rfind(text, 0) == 0; });
    return found.size() == 1 ? found.front() : std::string();
}

// There must be at least one word.
std::string closestWord(const std::string &text, const Words &words)
{
    const std::string letters = plain(text);
    std::vector<size_t> distances;
    for (const std::string &word : words)
        distances.push_back(distance(letters, plain(word)));
    return words[size_t(std::min_element(distances.begin(), distances.end()) - distances.begin())];
}

} // namespace

std::string likelyWord(const std::string &text, const Words &words)
{
    const std::string letters = plain(text);
    if (letters.empty() || words.empty())
        return std::string();
    std::string closest = closestWord(text, words);
    const size_t changes = distance(letters, plain(closest));
    std::string longer = changes == 0 ? std::string() : onlyOneThatBegins(letters, words);
    if (!longer.empty())
        return longer;
    return changes <= largestDistance(letters) ? closest : std::string();
}

} // namespace common
