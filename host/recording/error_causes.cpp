// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/recording/error_causes.h"

#include <algorithm>

namespace host {

namespace {

// So many causes stay where there are too many, which is twice as many.
constexpr size_t kKeptCauses = 500;

constexpr size_t kKeptItems = 20;

constexpr int kLongestText = 500;

} // namespace

QString shortened(const QString &text)
{
    return text.size() > kLongestText ? text.left(kLongestText) + " ..." : text;
}

void ErrorCauses::add(const QString &text, int item)
{
    const QString shown = shortened(text);
    const auto found = places.constFind(shown);
    const size_t place = found == places.constEnd() ? causes.size() : size_t(*found);
    if (place == causes.size()) {
        places[shown] = int(place);
        causes.push_back({shown, 0, {}, false});
    }
    ErrorCause &cause = causes.at(place);
    ++cause.count;
    ++total;
    if (std::find(cause.items.begin(), cause.items.end(), item) == cause.items.end()) {
        cause.hasMoreItems = cause.items.size() >= kKeptItems;
        if (!cause.hasMoreItems)
            cause.items.push_back(item);
    }
    if (causes.size() >= 2 * kKeptCauses)
        dropRareOnes();
}

std::vector<ErrorCause> ErrorCauses::commonest(size_t most) const
{
    std::vector<ErrorCause> ordered = causes;
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const ErrorCause &a, const ErrorCause &b) { return a.count > b.count; });
    ordered.resize(std::min(ordered.size(), most));
    return ordered;
}

void ErrorCauses::dropRareOnes()
{
    causes = commonest(kKeptCauses);
    places.clear();
    for (size_t i = 0; i < causes.size(); ++i)
        places[causes.at(i).text] = int(i);
}

} // namespace host
