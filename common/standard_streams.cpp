// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "common/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

namespace common {

// The kernel gives open() the lowest free descriptor, which is the closed stream's, as the loop goes upwards.
// Opened the wrong way round, the stream fails as a closed one does.
void keepClosedStreams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) < 0)
            static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
}

} // namespace common
