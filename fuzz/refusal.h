// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How the host refuses an input, and what it tells the user besides, which nobody reads here.

#ifndef FUZZ_REFUSAL_H
#define FUZZ_REFUSAL_H

#include "fuzzing.h"
#include "host/base/failure.h"

#include <iostream>

namespace fuzz {

inline void requireReason(const host::Failure &failure)
{
    require(!failure.text().isEmpty() && !failure.hint().isEmpty(), "a refusal says why, and what to do");
}

// The messages of Qt and those to the user go nowhere.
inline void silenceHost()
{
    silenceMessages();
    std::cerr.setstate(std::ios::failbit);
}

// Lets the host read an input, which it may refuse.
template <typename Read> void takeOrRefuse(const Read &read)
{
    try {
        read();
    } catch (const host::Failure &failure) {
        requireReason(failure);
    }
}

} // namespace fuzz

#endif
