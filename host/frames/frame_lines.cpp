// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/frame_lines.h"

#include "host/frames/frame_words.h"

namespace host {

FrameLines::FrameLines(const WriteLine &writeLine_) : writeLine(writeLine_) {}

void FrameLines::sent(const QByteArray &frame)
{
    writeLine("-> " + frameLine(frame));
}

void FrameLines::received(const QByteArray &frame)
{
    writeLine("<- " + frameLine(frame));
}

void FrameLines::heardNothing(bool isOver)
{
    writeLine(isOver ? "<- nothing more" : "<- silence");
}

} // namespace host
