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
constexpr size_t kMaxPduSize = 252;

// Function codes that a station sends.
constexpr uint8_t kAnswer = 0x08;
constexpr uint8_t kNoResource = 0x02;
constexpr uint8_t kServiceNotActive = 0x03;

struct Frame
{
    bool hasPdu = false; // SD2, even when the PDU is empty; otherwise SD1
    uint8_t destination = 0;
    uint8_t source = 0;
    uint8_t function = 0;
    Bytes pdu;
    Bytes wire; // the whole frame
};

// A frame that asks something of its destination, as opposed to an answer.
bool isRequest(const Frame &frame);

// A request to take data (SD2) and to deliver data (SD1), whatever its frame count bits say.
bool isSendAndRequestData(const Frame &frame);

// function is the low byte as it goes on the line. The PDU must not be longer than kMaxPduSize.
Bytes sd1(uint8_t destination, uint8_t source, uint8_t function);
Bytes sd2(uint8_t destination, uint8_t source, uint8_t function, const Bytes &pdu);

// Finds whole, intact frames in a stream of bytes. Whatever does not begin a frame is skipped byte by
// byte, so that a damaged frame or noise never hides the good frame behind it.
class FrameReader
{
public:
    void push(uint8_t byte) { buffer.push_back(byte); }

    // The next complete frame, if there is one. Call until there is none.
    std::optional<Frame> next();

    // Bytes skipped since the last call.
    Bytes takeSkipped();

    // Skips a frame that has begun and not ended, for use when the line has fallen silent.
    void abandon();

    // Whether a frame has begun and not ended.
    bool hasBegun() const { return !buffer.empty(); }

private:
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
