// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How a program ends when there is no memory left. Not every library can do without: some abort, some crash,
// some take what they could not do for an answer of the controller or an error of the user. So the program
// ends with the first allocation that fails, wherever that is: with exit code 70, two lines on stderr, and
// all that it had written. allocator.cpp sees to it.

#ifndef COMMON_END_OF_MEMORY_H
#define COMMON_END_OF_MEMORY_H

namespace common {

// Names the program in these lines, and sets what is done before them; null for nothing. The name has to
// stay. The action may make no calls but async-signal-safe ones.
void prepareEndOfMemory(const char *program, void (*action)());

// Does it.
[[noreturn]] void endOfMemory();

} // namespace common

#endif
