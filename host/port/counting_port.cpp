// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/counting_port.h"

#include "host/frames/frame_words.h"

namespace host {

int CountingPort::send(const unsigned char *data, int length)
{
    if (isLongFrame(QByteArray(reinterpret_cast<const char *>(data), length)))
        ++requests;
    return ForwardingPort::send(data, length);
}

} // namespace host
