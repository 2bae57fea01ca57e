// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What it costs to plan the reading of so many items: words, floating-point numbers, bits, timers and
// counters, which lie scattered over the memory of a controller, alike in every run. And the same where
// nothing may come together.

#include "host/driver/read_plan.h"
#include "host/items/item.h"
#include "host/port/line_settings.h"

#include <benchmark/benchmark.h>

#include <QString>

#include <iterator>
#include <random>
#include <vector>

namespace {

constexpr int kSmallest = 1000;
constexpr int kLargest = 100000;

std::vector<host::Item> drawnItems(int count)
{
    std::mt19937 draw; // with its usual seed
    const auto below = [&](unsigned limit) { return QString::number(draw() % limit); };
    std::vector<host::Item> items;
    for (int i = 0; i < count; ++i) {
        const QString texts[] = {"VW" + below(10000),
                                 "VD" + below(10000) + ":f32",
                                 "V" + below(10000) + '.' + below(8),
                                 "VB" + below(9000) + "*1" + below(100),
                                 "T" + below(256),
                                 "C" + below(256)};
        items.push_back(host::parseItem(texts[draw() % std::size(texts)]));
    }
    return items;
}

void plan(benchmark::State &state, bool merges)
{
    const std::vector<host::Item> items = drawnItems(int(state.range(0)));
    host::PlanLimits limits;
    limits.merges = merges;
    const host::RequestCost cost = host::requestCost({9600, kEvenParity, 8, 1});
    for (auto _ : state)
        benchmark::DoNotOptimize(host::planReads(items, cost, limits));
    state.SetComplexityN(state.range(0));
}

} // namespace

BENCHMARK_CAPTURE(plan, merged, true)
    ->RangeMultiplier(10)
    ->Range(kSmallest, kLargest)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plan, separate, false)
    ->RangeMultiplier(10)
    ->Range(kSmallest, kLargest)
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
