// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/plan_options.h"

#include "host/cli/command_line.h"

#include <string>

namespace host {

void addBlockOption(CLI::App &command, PlanOptions &options)
{
    addNumber(command, "--block", options.block, 1, kFrameData,
              "Read so many bytes in one request at most, as a panel may do", std::to_string(kFrameData));
}

void addPlanOptions(CLI::App &command, PlanOptions &options)
{
    addFlag(command, "--no-merge", options.noMerge, "Read every item by itself, and no neighbours together");
    addBlockOption(command, options);
}

} // namespace host
