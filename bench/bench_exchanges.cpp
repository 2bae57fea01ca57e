// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Every kind of exchange on a port in memory, beside the same port calls with prepared frames.

#include "exchanges.h"
#include "memory_port.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

void driverExchange(benchmark::State &state, DriverInterface &driver, const bench::Exchange &exchange)
{
    bench::MemoryPort port(exchange.answer);
    for (auto _ : state) {
        if (!bench::runDriver(driver, port, exchange)) {
            state.SkipWithError("the exchange fails");
            return;
        }
    }
}

void floorExchange(benchmark::State &state, const bench::Exchange &exchange)
{
    bench::MemoryPort port(exchange.answer);
    for (auto _ : state)
        bench::runFloor(port, exchange);
}

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    const std::unique_ptr<DriverInterface> driver(CreateDriver());
    const std::vector<bench::Exchange> exchanges = bench::allExchanges(*driver);
    for (const bench::Exchange &exchange : exchanges) {
        benchmark::RegisterBenchmark(
            (std::string(exchange.name) + "/driver").c_str(),
            [&](benchmark::State &state) { driverExchange(state, *driver, exchange); });
        benchmark::RegisterBenchmark((std::string(exchange.name) + "/floor").c_str(),
                                     [&](benchmark::State &state) { floorExchange(state, exchange); });
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
