// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/text/nearest_name.h"

#include <algorithm>
#include <numeric>

namespace sim {

namespace {

// Row by row: costs[i] turns the characters of a so far into the first i characters of b.
size_t editDistance(const std::string &a, const std::string &b)
{
    std::vector<size_t> costs(b.size() + 1);
    std::iota(costs.begin(), costs.end(), size_t(0));
    for (size_t row = 0; row < a.size(); ++row) {
        size_t diagonal = costs[0];
        costs[0] = row + 1;
        for (size_t i = 0; i < b.size(); ++i) {
            const size_t changed = diagonal + (a[row] == b[i] ? 0 : 1);
            diagonal = costs[i + 1];
            costs[i + 1] = std::min({changed, costs[i + 1] + 1, costs[i] + 1});
        }
    }
    return costs.back();
}

} // namespace

std::string nearestName(const std::string &text, const std::vector<std::string> &names)
{
    return *std::min_element(names.begin(), names.end(), [&text](const auto &one, const auto &other) {
        return editDistance(text, one) < editDistance(text, other);
    });
}

} // namespace sim
