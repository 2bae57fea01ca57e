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

// Where the check sum begins to count; the length of a long frame counts from the same byte on.
constexpr int kShortFrameCounted = 1;
constexpr int kLongFrameCounted = 4;

constexpr int kAddressesSize = 3; // destination, source, function code: the least that a length can count
constexpr int kTailSize = 2;      // check sum and end

constexpr int kBroadcast = 127; // the number that means all stations

// A function code: bit 6 tells requests from answers, the low four bits tell which. In a request two bits
// between them keep a repeated frame from being taken for a new one.
constexpr int kRequestBit = 0x40;
constexpr int kSequenceBit = 0x20;
constexpr int kSequenceCounts = 0x10;
constexpr int kFunctionNibble = 0x0f;

// Function codes without the bits of the sequence.
constexpr uchar kPoll = 0x4c;
constexpr uchar kNoResource = 0x02;
constexpr uchar kNotActive = 0x03;

constexpr uchar kProtocol = 0x32;
constexpr int kHeaderSize = 10; // of a request; an answer's has error class and code behind it
constexpr int kErrorSize = 2;

// Message types; those above the last answer's have a layout of their own.
constexpr uchar kJob = 0x01;
constexpr uchar kLastAnswerType = 0x03;

constexpr uchar kReadVariable = 0x04;
constexpr uchar kWriteVariable = 0x05;
constexpr uchar kDone = 0xff;

// How an item of a request begins.
constexpr uchar kVariableItem = 0x12;
constexpr uchar kItemLength = 0x0a; // of the bytes that follow
constexpr uchar kAreaSyntax = 0x10;

constexpr int kVariableMemoryBlock = 1; // all other areas name the data block 0

// Transport sizes of a request.
constexpr uchar kBitElement = 0x01;
constexpr uchar kByteElement = 0x02;
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

// The check sum of a frame's bytes from the first to the one before the last: their sum, modulo 256. They
// must be there.
uchar checkByte(const QByteArray &frame, int first, int last);

// A byte as people read it: "6C".
QString hexByte(uchar byte);

// The bytes that an item's data take on the line. Data of the kinds 03, 04 and 05 have their length in bits,
// of which the last byte need not be full; all other kinds, as the objects' 09, in bytes.
int dataSize(uchar kind, int length);

// The same without a last byte that is not full.
int wholeBytes(uchar kind, int length);

// Names for people; empty for a code that means nothing.
QString requestFunctionName(int nibble); // of the low four bits of a function code
QString answerFunctionName(int nibble);
QString messageTypeName(uchar type);
QString functionName(uchar function);
QString errorClassName(uchar errorClass);
QString dataKindName(uchar kind);

// The name of the elements of a transport size, "byte" or "timer"; empty for one that means nothing.
QString elementName(uchar transportSize);

// The letters of an area, "V", "AI" or "T"; empty for a code that means nothing.
QString areaLetters(uchar code);

bool isObjectArea(uchar code);

// What a return code says, as "no such address"; "unknown reason" for a code that means nothing.
QString returnCodeName(uchar code);

} // namespace host

#endif
