// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/line_noise.h"

#include "host/base/filled.h"
#include "host/frames/explanation.h"
#include "host/frames/words.h"
#include "host/text/number_text.h"

#include <QString>

namespace host {

namespace {

constexpr int kShownBytes = 8;

// Frames tell whose they are: the first sound one of those that stand in the bytes, or nothing.
QByteArray soundFrame(const QByteArray &bytes)
{
    for (const QByteArray &frame : splitFrames(bytes))
        if (isSoundTelegram(frame))
            return frame;
    return QByteArray();
}

} // namespace

// What is different each time stands in the hint, so that a watch can count the error.
Failure noiseFailure(const LineNoise &noise, bool isProtocolKnown)
{
    const QByteArray frame = isProtocolKnown ? soundFrame(noise.beginning) : QByteArray();
    const QByteArray shown = frame.isEmpty() ? noise.beginning.left(kShownBytes) : frame;
    return Failure(
        ExitCode::BrokenAnswer, Cause::LineNoise,
        "the line is never silent" + (frame.isEmpty() ? QString() : "; on it: " + telegramTitle(frame)),
        filled("%1 in %2 ms, as %3: something keeps sending and leaves no room for a request; take "
               "stations off the line one by one, and check baud rate, parity, termination and "
               "biasing",
               counted(noise.count, "byte"), noise.milliseconds, QString::fromLatin1(shown.toHex(' '))));
}

} // namespace host
