// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What is wrong with a memory file.

#ifndef SIMULATOR_CONTROLLER_MEMORY_FILE_ERROR_H
#define SIMULATOR_CONTROLLER_MEMORY_FILE_ERROR_H

#include "simulator/text/user_error.h"

namespace sim {

// A memory file cannot be read, used or written.
class MemoryFileError : public UserError
{
public:
    using UserError::UserError;
};

} // namespace sim

#endif
