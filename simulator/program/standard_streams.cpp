// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/program/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

namespace sim {

// The lowest free descriptor is the one that open() gives.
void keepClosedStreams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) < 0)
            static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
}

} // namespace sim
