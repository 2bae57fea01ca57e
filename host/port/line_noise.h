// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A line that never falls silent: bytes that nobody asked for, without a gap in which a request could be
// sent.

#ifndef HOST_PORT_LINE_NOISE_H
#define HOST_PORT_LINE_NOISE_H

#include "host/base/failure.h"

#include <QByteArray>
#include <QtGlobal>

namespace host {

struct LineNoise
{
    QByteArray beginning; // the first of the bytes
    qint64 count = 0;     // of all of them
    qint64 milliseconds = 0;
};

// What a request ends with that could not be sent.
// Frames are looked for in it only where their protocol is known.
Failure noiseFailure(const LineNoise &noise, bool isProtocolKnown = true);

} // namespace host

#endif
