// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The numbers of the line and what they are called; docs/protocol.md has the grammar.

#ifndef HOST_FRAMES_WIRE_H
#define HOST_FRAMES_WIRE_H

#include <QByteArray>
#include <QString>

namespace host {

constexpr uchar kAcknowledgement = 0xe5; // a frame of one byte
constexpr uchar kShortFrame = 0x10;
constexpr uchar kLongFrame = 0x68;
constexpr uchar kEndOfFrame = 0x16;

constexpr int kShortFrameSize = 6;
constexpr int kLongFrameFixed = 6; // four bytes before and two behind what the length counts

constexpr int kHeaderSize = 10; // of a request; an answer's has two bytes of error class and code more

constexpr uchar kJob = 0x01;
constexpr uchar kReadVariable = 0x04;
constexpr uchar kWriteVariable = 0x05;
constexpr uchar kDone = 0xff;

// Transport sizes of a request.
constexpr uchar kBitElement = 0x01;
constexpr uchar kWordElement = 0x04;
constexpr uchar kDoubleWordElement = 0x06;

// Area codes of the objects; their transport sizes are the same numbers.
constexpr uchar kCounterArea = 0x1e;
constexpr uchar kTimerArea = 0x1f;
constexpr uchar kHighSpeedCounterArea = 0x20;

// The place that one item of a request names.
struct WireItem
{
    int transportSize;
    int count;
    int area;
    int address;
};

// The check byte of these bytes of a frame, the last one not included: their sum, modulo 256. They must be
// there.
uchar checkByte(const QByteArray &frame, int first, int last);

// "6C"
QString hexByte(uchar byte);

// "byte", "timer", ...; empty for a transport size that means nothing.
QString elementName(uchar transportSize);

// "V", "AI", "T", ...; empty for a code that means nothing.
QString areaLetters(uchar code);

bool isObjectArea(uchar code);

// "no such address", ...; "unknown reason" for a code that means nothing.
QString returnCodeName(uchar code);

} // namespace host

#endif
