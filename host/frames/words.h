// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Frames of the line in plain words, for the trace.

#ifndef HOST_FRAMES_WORDS_H
#define HOST_FRAMES_WORDS_H

#include "host/frames/wire.h"

#include <QByteArray>
#include <QString>

namespace host {

// Bytes that a frame beginning so has in all, 0 while that cannot be told yet. A byte that begins no
// frame stands alone.
//
//   E5                             1
//   10 ...                         6
//   68 LE LE 68 ...                LE + 6
int frameSize(const QByteArray &start);

// "poll of station 2", "request 1 to station 2: read 4 bytes at V byte 100", ...; for anything that
// is no whole, sound frame what it is instead.
QString frameWords(const QByteArray &frame);

// The words and the bytes: "poll of station 2: 10 02 00 5c 5e 16".
QString frameLine(const QByteArray &frame);

// Whether it is of the kind that carries requests and answers.
bool isLongFrame(const QByteArray &frame);

} // namespace host

#endif
