// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Memory as a JSON file that people write and read:
//
//    {
//        "V": { "100": "11223344", "200": "00 ff" },
//        "T": { "37": { "value": 300, "preset": 100, "status": true } },
//        "C": { "5": { "value": 5 } },
//        "HC": { "0": 100000 }
//    }
//
// Byte areas (I, Q, V, M, SM, S, AI, AQ): bytes in hexadecimal from a byte number on; blanks between
// bytes are allowed. T, C and HC: objects by number; what is left out is zero or off, as is all memory
// that the file does not mention.

#ifndef SIMULATOR_MEMORY_FILE_H
#define SIMULATOR_MEMORY_FILE_H

#include "simulator/memory.h"

#include <stdexcept>
#include <string>

namespace sim {

// Its text says what is wrong and where, for the user to read.
class MemoryFileError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// Both throw MemoryFileError.
Memory parseMemory(const std::string &text);
Memory loadMemory(const std::string &path);

// Only what is not zero. parseMemory(formatMemory(m)) == m.
std::string formatMemory(const Memory &memory);

// Replaces the file as a whole: it is either the old one or the new one at any time. Throws MemoryFileError.
void saveMemory(const Memory &memory, const std::string &path);

} // namespace sim

#endif
