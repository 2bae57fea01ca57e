// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/text/nearest_word.h"

#include <algorithm>
#include <cctype>
#include <iterator>

namespace host {

namespace {

using Words = std::vector<std::string>;

std::string plain(const std::string &text)
{
    std::string letters = text.substr(std::min(text.find_first_not_of('-'), text.size()));
    for (char &letter : letters)
        letter = char(std::tolower(static_cast<unsigned char>(letter)));
    return letters;
}

// Letters that are missing, too many or other, and neighbours that are exchanged.
size_t distance(const std::string &one, const std::string &other)
{
    std::vector<std::vector<size_t>> table(one.size() + 1, std::vector<size_t>(other.size() + 1));
    for (size_t i = 0; i <= one.size(); ++i)
        for (size_t j = 0; j <= other.size(); ++j) {
            size_t &best = table[i][j] = i + j;
            if (i == 0 || j == 0)
                continue;
            const bool isSame = one[i - 1] == other[j - 1];
            best =
                std::min({table[i - 1][j] + 1, table[i][j - 1] + 1, table[i - 1][j - 1] + size_t(!isSame)});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1])
                best = std::min(best, table[i - 2][j - 2] + 1);
        }
    return table[one.size()][other.size()];
}

// Short words are soon like any other.
size_t largestDistance(const std::string &text)
{
    return text.size() < 3 ? 0 : text.size() < 5 ? 1 : 2;
}

std::string onlyOneThatBegins(const std::string &text, const Words &words)
{
    Words found;
    std::copy_if(words.begin(), words.end(), std::back_inserter(found),
                 [&](const std::string &word) { return plain(word).rfind(text, 0) == 0; });
    return found.size() == 1 ? found.front() : std::string();
}

} // namespace

std::string nearestWord(const std::string &text, const Words &words)
{
    const std::string letters = plain(text);
    if (letters.empty() || words.empty())
        return std::string();
    const auto nearest =
        std::min_element(words.begin(), words.end(), [&](const auto &one, const auto &other) {
            return distance(letters, plain(one)) < distance(letters, plain(other));
        });
    const size_t least = distance(letters, plain(*nearest));
    std::string longer = least == 0 ? std::string() : onlyOneThatBegins(letters, words);
    if (!longer.empty())
        return longer;
    return least <= largestDistance(letters) ? *nearest : std::string();
}

} // namespace host
