// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
//   run_exchanges --list
//   run_exchanges driver|floor NAME TIMES

#include "exchanges.h"
#include "memory_port.h"

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

int main(int argc, char **argv)
{
    const std::unique_ptr<DriverInterface> driver(CreateDriver());
    const std::vector<bench::Exchange> exchanges = bench::allExchanges(*driver);
    if (argc == 2 && std::string(argv[1]) == "--list") {
        for (const bench::Exchange &exchange : exchanges)
            std::cout << exchange.name << '\n';
        return 0;
    }
    if (argc != 4) {
        std::cerr << "usage: run_exchanges --list | run_exchanges driver|floor NAME TIMES\n";
        return 2;
    }
    for (const bench::Exchange &exchange : exchanges) {
        if (exchange.name != std::string(argv[2]))
            continue;
        bench::MemoryPort port(exchange.answer);
        const bool floorOnly = std::string(argv[1]) == "floor";
        for (int times = std::atoi(argv[3]); times > 0; --times) {
            if (floorOnly)
                bench::runFloor(port, exchange);
            else if (!bench::runDriver(*driver, port, exchange))
                return 1;
        }
        return 0;
    }
    std::cerr << "run_exchanges: no exchange is called " << argv[2] << '\n';
    return 2;
}
