// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The frames on the line, seen from the controller.
//
//    SC  := E5                                     short acknowledgement
//    SD1 := 10 DA SA FC FCS 16                     poll, negative answer
//    SD2 := 68 LE LE 68 DA SA FC PDU FCS 16        request, answer
//
//    LE    counts DA, SA, FC and the PDU: 3 to 255
//    FCS   sum of the bytes from DA to the one before FCS, modulo 256

#ifndef SIMULATOR_PROTOCOL_LAYER2_H
#define SIMULATOR_PROTOCOL_LAYER2_H

#include "simulator/protocol/bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace sim {

constexpr uint8_t kShortAcknowledgement = 0xE5;

// LE is one byte, which counts DA, SA and FC, too.
constexpr size_t kMaxPduSize = 252;

// Function codes that a station sends. An answer carries data; the two others refuse a request and come in an
// SD1 frame without data.
constexpr uint8_t kAnswer = 0x08;
constexpr uint8_t kNoResource = 0x02;
constexpr uint8_t kServiceNotActive = 0x03;

struct Frame
{
    bool hasPdu = false; // true for an SD2 frame, even when its PDU is empty, and false for an SD1 frame
    uint8_t destination = 0;
    uint8_t source = 0;
    uint8_t function = 0;
    Bytes pdu;
    Bytes wire; // the whole frame as it came
};

// Whether the frame asks something of its destination, as opposed to an answer.
bool isRequest(const Frame &frame);

// Whether the frame asks the station to take data (SD2) or to deliver data (SD1), whatever its frame count
// bits say. With other services a master asks for the state of a station, or sends without an answer.
bool isSendAndRequestData(const Frame &frame);

// Both build a frame and put the function code into it as it is. The PDU must not be longer than kMaxPduSize.
Bytes sd1(uint8_t destination, uint8_t source, uint8_t function);
Bytes sd2(uint8_t destination, uint8_t source, uint8_t function, const Bytes &pdu);

// A frame reader finds whole, intact frames in a stream of bytes. It skips what does not begin a frame byte
// by byte, so that a damaged frame or noise never hides the good frame behind it.
class FrameReader
{
public:
    void push(uint8_t byte) { buffer.push_back(byte); }

    // Gives the next complete frame, if there is one. Call it until there is none: one byte may complete
    // several.
    std::optional<Frame> next();

    // Gives the bytes that were skipped since the last call.
    Bytes takeSkipped();

    // Skips a frame that has begun and not ended. Its user does so when the line has fallen silent: the rest
    // will not come, and the next frame would be taken for the rest.
    void abandon();

    // Whether a frame has begun and not ended.
    bool hasBegun() const { return !buffer.empty(); }

private:
    // What the bytes so far begin with.
    enum class Start { NoFrame, Incomplete, Whole };

    Start examine() const;
    Start examineSd1() const;
    Start examineSd2() const;
    Frame takeFrame();
    void skipByte();

    Bytes buffer;
    Bytes skipped;
};

} // namespace sim

#endif
