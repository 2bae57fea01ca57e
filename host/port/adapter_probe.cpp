// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/adapter_probe.h"

#include "host/frames/words.h"

#include <algorithm>

namespace host {

void AdapterProbe::sent(const QByteArray &frame)
{
    ++frames;
    if (firstFrame && firstFrame->isEmpty())
        firstFrame = frame;
    if (firstFrame ? frame == *firstFrame : isLongFrame(frame)) {
        ++requests;
        heardSinceRequest = false;
    }
    isFirst = true;
    sinceSent.start();
}

void AdapterProbe::received(const QByteArray & /*frame*/)
{
    heard = heardSinceRequest = true;
    if (isFirst)
        longest = std::max(longest, sinceSent.elapsed());
    isFirst = false;
}

void AdapterProbe::heardNothing(bool /*isOver*/) {}

} // namespace host
