// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/line_watcher.h"

#include "host/frames/frame_words.h"

#include <algorithm>

namespace host {

void LineWatcher::sent(const QByteArray &frame)
{
    lastSent = frame;
    if (isLongFrame(frame))
        ++requests;
    isFirst = true;
    sinceSent.start();
}

void LineWatcher::received(const QByteArray &frame)
{
    heard = true;
    if (isFirst) {
        longest = std::max(longest, sinceSent.elapsed());
        if (isLongFrame(lastSent) && lastSent.startsWith(frame))
            ++echoes;
    }
    isFirst = false;
}

void LineWatcher::heardNothing(bool /*isOver*/) {}

} // namespace host
