// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The options with which a user bounds how items are read together.

#ifndef HOST_COMMANDS_PLAN_OPTIONS_H
#define HOST_COMMANDS_PLAN_OPTIONS_H

#include "host/driver/read_plan.h"

#include <optional>

namespace CLI {
class App;
}

namespace host {

struct PlanOptions
{
    bool noMerge = false;     // every item is read by itself
    std::optional<int> block; // bytes of one request

    PlanLimits limits() const { return {!noMerge, block.value_or(kFrameData)}; }
};

// Declares --block, and --no-merge for a command that reads several items.
void addBlockOption(CLI::App &command, PlanOptions &options);
void addPlanOptions(CLI::App &command, PlanOptions &options);

} // namespace host

#endif
