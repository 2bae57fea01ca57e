// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Chance that can be repeated: the same numbers from the same seed on every machine.

#ifndef TESTS_FAULT_RANDOM_H
#define TESTS_FAULT_RANDOM_H

#include <QByteArray>
#include <QtGlobal>

#include <cstddef>
#include <random>

class Random
{
public:
    explicit Random(quint32 seed) : engine(seed) {}

    // 0 to limit - 1.
    int below(int limit) { return int(engine() % quint32(limit)); }
    int between(int first, int last) { return first + below(last - first + 1); }
    bool oneIn(int chances) { return below(chances) == 0; }

    template <typename T, size_t Size> T oneOf(const T (&values)[Size]) { return values[below(int(Size))]; }

    QByteArray bytes(int size)
    {
        QByteArray result;
        while (result.size() < size)
            result += char(below(0x100));
        return result;
    }

private:
    std::mt19937 engine;
};

// The seed of this run, also printed: S7PPI_SEED of the environment, 1 when there is none.
quint32 seedOfRun();

// How often this run draws what a test usually draws that often: S7PPI_DRAWS of the environment is percent.
int drawsOfRun(int usual);

#endif
