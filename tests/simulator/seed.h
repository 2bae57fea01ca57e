// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A seed for a test's random numbers, another one in every run. It is printed; S7PPI_SEED=N repeats a run.

#ifndef TESTS_SIMULATOR_SEED_H
#define TESTS_SIMULATOR_SEED_H

#include <QString>
#include <QtGlobal>

#include <random>

inline unsigned chooseSeed()
{
    bool given = false;
    const unsigned wanted = qEnvironmentVariable("S7PPI_SEED").toUInt(&given);
    const unsigned seed = given ? wanted : std::random_device()();
    qDebug("S7PPI_SEED=%u", seed);
    return seed;
}

#endif
