// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A command's run over the items that the command line names.

#ifndef HOST_COMMANDS_ITEM_RUN_H
#define HOST_COMMANDS_ITEM_RUN_H

#include "host/items/tag.h"
#include "host/output/output.h"

#include <functional>
#include <vector>

namespace host {

// Where the data of a tag come from, at the time of the call.
using OriginOf = std::function<Origin(const Tag &)>;

// Runs a part for every tag, which it gets by the tag's index. A part that fails is reported, has its error
// among the data, and does not keep the others from running, unless the port or the output is lost: then none
// of them could succeed. Returns the exit code, which is that of the first failure. The output is finished,
// but for one that is lost.
int runItems(const std::vector<Tag> &tags, const OriginOf &originOf, Output &output,
             const std::function<void(int)> &part);

} // namespace host

#endif
