// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/pending_answer.h"

#include "host/frames/wire.h"
#include "host/frames/words.h"

#include <algorithm>

namespace host {

namespace {

constexpr int kLongestFrame = 255 + kLongFrameFixed;

// An echo and a few answers; what comes behind them tells nothing more.
constexpr int kMostKept = 4 * kLongestFrame;

bool startsWith(const QByteArray &bytes, uchar first)
{
    return !bytes.isEmpty() && uchar(bytes.at(0)) == first;
}

} // namespace

void PendingAnswer::sent(const QByteArray &sentFrame)
{
    frame = sentFrame;
    heard.clear();
}

void PendingAnswer::received(const QByteArray &bytes)
{
    heard += bytes.left(std::max(0, kMostKept - int(heard.size())));
}

bool PendingAnswer::isRequest() const
{
    return isLongFrame(frame);
}

bool PendingAnswer::isPoll() const
{
    return startsWith(frame, kShortFrame);
}

// What came behind the frame's own echo and behind acknowledgements, also late ones of earlier requests.
QByteArray PendingAnswer::answer() const
{
    int begin = isEcho() ? int(frame.size()) : 0;
    while (begin < heard.size() && uchar(heard.at(begin)) == kAcknowledgement)
        ++begin;
    return heard.mid(begin);
}

int PendingAnswer::missing() const
{
    if (!isRequest() && !isPoll())
        return 0;
    const QByteArray rest = answer();
    if (rest.isEmpty())
        return isPoll() ? kLongestFrame : 0;
    const int size = startsWith(rest, kShortFrame) || isLongFrame(rest) ? frameSize(rest) : 0;
    return size > 0 ? std::max(0, size - int(rest.size())) : kLongestFrame;
}

bool PendingAnswer::isAcknowledged() const
{
    return isRequest() && answer().isEmpty() && heard.endsWith(char(kAcknowledgement));
}

bool PendingAnswer::isAnswered() const
{
    return isPoll() && missing() == 0;
}

bool PendingAnswer::hasFailed() const
{
    return missing() > 0 || (isRequest() && !isAcknowledged());
}

bool PendingAnswer::isEcho() const
{
    return frame.size() > 1 && heard.startsWith(frame);
}

bool PendingAnswer::isEchoBegun() const
{
    return !heard.isEmpty() && heard.size() < frame.size() && frame.startsWith(heard);
}

} // namespace host
