// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A controller's memory as a file; memory_json.h tells what stands in it.

#ifndef SIMULATOR_CONTROLLER_MEMORY_FILE_H
#define SIMULATOR_CONTROLLER_MEMORY_FILE_H

#include "simulator/controller/memory_file_error.h"
#include "simulator/controller/memory_json.h"

#include <string>

namespace sim {

// Throws MemoryFileError when the file cannot be read or is no memory file.
StoredMemory loadMemory(const std::string &path);

// Throws UserError when saving could not even begin there. Asked at the start, it spares the user a run whose
// memory is lost at its end.
void checkSavable(const std::string &path);

// Replaces the file as a whole: it is either the old one or the new one at any time. Throws MemoryFileError.
void saveMemory(const StoredMemory &stored, const std::string &path);

} // namespace sim

#endif
