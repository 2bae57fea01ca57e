// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Decides which faults concern the next request. The same faults and the same seed give the same decisions,
// on every machine.

#ifndef SIMULATOR_FAULTS_FAULT_PLAN_H
#define SIMULATOR_FAULTS_FAULT_PLAN_H

#include "simulator/faults/fault.h"

#include <cstdint>
#include <random>
#include <vector>

namespace sim {

// Drawn from with % only: the library's distributions differ from one library to the other.
using Random = std::mt19937;

// The faults of one request, in the order in which they were asked for.
class Faults
{
public:
    void add(const Fault &fault) { faults.push_back(fault); }

    bool has(FaultKind kind) const { return find(kind) != nullptr; }
    const Fault *find(FaultKind kind) const; // the first one; null when there is none

    std::vector<Fault>::const_iterator begin() const { return faults.begin(); }
    std::vector<Fault>::const_iterator end() const { return faults.end(); }

private:
    std::vector<Fault> faults;
};

// Without a seed every run makes the same choices, so that tests can be repeated.
// NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp)
class FaultPlan
{
public:
    void add(const Fault &fault) { faults.push_back(fault); }
    void seed(uint32_t seed) { generator.seed(seed); }

    Faults ofNextRequest();

    // Whether the fault is with every request.
    bool isPermanent(FaultKind kind) const;

    // For what the faults do at random.
    Random &random() { return generator; }

private:
    std::vector<Fault> faults;
    Random generator;
    unsigned requests = 0; // so far
};

} // namespace sim

#endif
