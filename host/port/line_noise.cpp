// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/line_noise.h"

#include "host/frames/explanation.h"
#include "host/frames/words.h"
#include "host/text/number_text.h"

#include <QString>

namespace host {

namespace {

constexpr int kShownBytes = 8;

// Frames tell whose they are; of anything else the bytes may tell somebody something.
QString appearance(const QByteArray &bytes)
{
    for (const QByteArray &frame : splitFrames(bytes))
        if (isSoundTelegram(frame))
            return "frames such as: " + frameLine(frame);
    return "such as " + QString::fromLatin1(bytes.left(kShownBytes).toHex(' '));
}

} // namespace

Failure noiseFailure(const LineNoise &noise)
{
    return Failure(ExitCode::BrokenAnswer,
                   QString("the line is never silent: %1 in %2 ms, ")
                           .arg(counted(noise.count, "byte"))
                           .arg(noise.milliseconds) +
                       appearance(noise.beginning),
                   "something keeps sending and leaves no room for a request: take stations off the line one "
                   "by one, and check baud rate, parity, termination and biasing");
}

} // namespace host
