// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// libFuzzer's mutator with frames mended behind it. Every fourth mutation stays as it is, so that damaged
// frames are tried, too. Included by fuzzers whose input holds frames.

#ifndef FUZZ_MENDING_MUTATOR_H
#define FUZZ_MENDING_MUTATOR_H

#include "fuzzing.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t most);

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t most, unsigned seed)
{
    const size_t mutated = LLVMFuzzerMutate(data, size, most);
    if (seed % 4 != 0)
        fuzz::mendFrames(data, mutated);
    return mutated;
}

#endif
