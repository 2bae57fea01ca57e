// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi watch: the values of some items, again and again.

#ifndef HOST_WATCH_COMMAND_H
#define HOST_WATCH_COMMAND_H

#include "options.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

struct WatchOptions
{
    std::optional<int>
        interval;             // milliseconds from the start of one poll to that of the next; 500 unless given
    std::optional<int> polls; // without a number until interrupted
    bool all = false;         // plain lines for every poll, not only for changes
};

// Shows a table in place on a terminal, unless verbose, and plain lines otherwise; at the end a summary on
// stderr. Items that fail are polled on; the exit code is that of the first failure. A lost port ends it.
int watchCommand(const Options &options, const WatchOptions &watchOptions,
                 const std::vector<std::string> &items);

} // namespace host

#endif
