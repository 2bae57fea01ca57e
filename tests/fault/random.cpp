// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "random.h"

#include <cstdio>

quint32 seedOfRun()
{
    const QByteArray given = qgetenv("S7PPI_SEED");
    const quint32 seed = given.isEmpty() ? 1 : given.toUInt();
    std::printf("seed %u; S7PPI_SEED=%u repeats this run\n", seed, seed);
    std::fflush(stdout);
    return seed;
}

int drawsOfRun(int usual)
{
    const QByteArray given = qgetenv("S7PPI_DRAWS");
    return given.isEmpty() ? usual : usual * given.toInt() / 100;
}
