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

// Numbers are drawn from it with % only, as the distributions of one standard library differ from those of
// another.
using Random = std::mt19937;

// The faults of one request, in the order in which they were asked for.
class Faults
{
public:
    void add(const Fault &fault) { faults.push_back(fault); }

    bool has(FaultKind kind) const { return find(kind) != nullptr; }
    const Fault *find(FaultKind kind) const; // returns the first one, null when there is none

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

    // Whether a fault of this kind is with every request.
    bool isPermanent(FaultKind kind) const;

    // The generator is also that of what the faults do by chance.
    Random &random() { return generator; }

private:
    std::vector<Fault> faults;
    Random generator;
    unsigned requests = 0; // so far
};

} // namespace sim

#endif
