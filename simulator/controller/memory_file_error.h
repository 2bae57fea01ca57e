// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The error of memory files.

#ifndef SIMULATOR_CONTROLLER_MEMORY_FILE_ERROR_H
#define SIMULATOR_CONTROLLER_MEMORY_FILE_ERROR_H

#include "simulator/text/user_error.h"

namespace sim {

// It is thrown when a memory file cannot be read, used or written.
class MemoryFileError : public UserError
{
public:
    using UserError::UserError;
};

} // namespace sim

#endif
