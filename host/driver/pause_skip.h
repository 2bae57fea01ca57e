// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A driver pauses before each frame, so that what others on the line say has come and can be thrown away.
// Where no line is, nothing is to be waited for.

#ifndef HOST_DRIVER_PAUSE_SKIP_H
#define HOST_DRIVER_PAUSE_SKIP_H

namespace host {

// While it lives, nanosleep() returns at once in the thread that made it.
class PauseSkip
{
public:
    PauseSkip();
    ~PauseSkip();
    PauseSkip(const PauseSkip &) = delete;
    PauseSkip &operator=(const PauseSkip &) = delete;

private:
    const bool before;
};

} // namespace host

#endif
