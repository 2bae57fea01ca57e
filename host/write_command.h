// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi write: values into the controller's memory.

#ifndef HOST_WRITE_COMMAND_H
#define HOST_WRITE_COMMAND_H

#include "options.h"

#include <string>
#include <vector>

namespace host {

struct WriteOptions
{
    bool verify = false; // read back what was written, print it, and fail when it is something else
    bool dryRun = false; // print the frames on stdout and send nothing
};

// Writes the items in order, after all of them were found right. An item that fails is reported and the
// next one written, as long as the port is there; the exit code is that of the first failure.
int writeCommand(const Options &options, const WriteOptions &writeOptions,
                 const std::vector<std::string> &items);

} // namespace host

#endif
