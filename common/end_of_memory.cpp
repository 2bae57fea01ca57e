// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "common/end_of_memory.h"

#include "common/exit_code.h"

#include <cstring>
#include <initializer_list>

#include <unistd.h>

namespace common {

namespace {

const char *programName = "s7ppi";
void (*lastAction)() = nullptr;

} // namespace

void prepareEndOfMemory(const char *program, void (*action)())
{
    programName = program;
    lastAction = action;
}

void endOfMemory()
{
    if (lastAction)
        lastAction();
    for (const char *text : {programName, ": internal failure: no memory is left\n"
                                          "hint: free some memory, or ask for less at once\n"})
        static_cast<void>(write(STDERR_FILENO, text, std::strlen(text)) < 0);
    _exit(int(ExitCode::Internal));
}

} // namespace common
