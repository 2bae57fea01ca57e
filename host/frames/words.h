// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Tells frames of the line in plain words, for the trace.

#ifndef HOST_FRAMES_WORDS_H
#define HOST_FRAMES_WORDS_H

#include "host/frames/wire.h"

#include <QByteArray>
#include <QString>

namespace host {

// How many bytes a frame has in all that begins like this; 0 while that cannot be told yet. A byte that
// begins no frame counts as one of a single byte.
//
//   E5                             1
//   10 ...                         6
//   68 LE LE 68 ...                LE + 6
int frameSize(const QByteArray &start);

// What a frame says: "poll of station 2", "request 1 to station 2: read 4 bytes at V byte 100". For anything
// that is no whole, sound frame the words tell what is wrong with it.
QString frameWords(const QByteArray &frame);

// What a sound telegram is and whose, without what differs from one to the next: "poll of station 2",
// "request to station 2", "answer from station 2".
QString telegramTitle(const QByteArray &telegram);

// The words of a frame with its bytes: "poll of station 2: 10 02 00 5c 5e 16".
QString frameLine(const QByteArray &frame);

// Whether the frame is a short or a long one, whole, and has the right check sum.
bool isSoundTelegram(const QByteArray &frame);

// Whether the frame is a long one, which carries requests and answers.
bool isLongFrame(const QByteArray &frame);

} // namespace host

#endif
