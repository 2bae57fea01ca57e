// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/faults/fault_plan.h"

#include <algorithm>
#include <cmath>

namespace sim {

namespace {

// Whether it happens this time, with a probability in steps of a hundredth of a percent.
bool happens(double percent, Random &random)
{
    return percent >= 100 || static_cast<double>(random() % 10000) < std::ceil(percent * 100);
}

} // namespace

const Fault *Faults::find(FaultKind kind) const
{
    const auto found =
        std::find_if(faults.begin(), faults.end(), [kind](const Fault &fault) { return fault.kind == kind; });
    return found == faults.end() ? nullptr : &*found;
}

Faults FaultPlan::ofNextRequest()
{
    ++requests;
    Faults chosen;
    for (const Fault &fault : faults) {
        const bool numbered = fault.request == 0 || fault.request == requests;
        if (numbered && happens(fault.percent, generator))
            chosen.add(fault);
    }
    return chosen;
}

bool FaultPlan::isPermanent(FaultKind kind) const
{
    return std::any_of(faults.begin(), faults.end(), [kind](const Fault &fault) {
        return fault.kind == kind && fault.request == 0 && fault.percent >= 100;
    });
}

} // namespace sim
