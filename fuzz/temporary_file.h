// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A file in memory, for readers that take the name of a file.

#ifndef FUZZ_TEMPORARY_FILE_H
#define FUZZ_TEMPORARY_FILE_H

#include "fuzzing.h"

#include <sys/mman.h>
#include <unistd.h>

namespace fuzz {

class TemporaryFile
{
public:
    TemporaryFile(const uint8_t *data, size_t size) : descriptor(memfd_create("fuzz", MFD_CLOEXEC))
    {
        require(descriptor >= 0 && write(descriptor, data, size) == ssize_t(size), "a file can be made");
    }
    ~TemporaryFile() { close(descriptor); }

    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    std::string name() const { return "/proc/self/fd/" + std::to_string(descriptor); }

private:
    int descriptor;
};

} // namespace fuzz

#endif
