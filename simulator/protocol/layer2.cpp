// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/protocol/layer2.h"

#include <cassert>
#include <utility>

namespace sim {

namespace {

constexpr uint8_t kSd1 = 0x10;
constexpr uint8_t kSd2 = 0x68;
constexpr uint8_t kEndDelimiter = 0x16;

constexpr size_t kSd1Size = 6;
constexpr size_t kSd2HeadSize = 4; // 68 LE LE 68
constexpr size_t kAddressSize = 3; // DA SA FC
constexpr size_t kTailSize = 2;    // FCS 16

// A function code: bit 6 tells a request from an answer, the low nibble is the service. In a request, bits 4
// and 5 number the frames, so that a station can tell a repeated one. This one does a repeated job again,
// which leaves the memory as it is. A master's requests have 6C and its polls 5C, which differ in these bits
// alone.
constexpr uint8_t kRequestBit = 0x40;
constexpr uint8_t kFrameCountBits = 0x30;
constexpr uint8_t kSendAndRequestData = 0x0C;

// The sum of the bytes from number first to the one before number last, modulo 256.
uint8_t checkSum(const Bytes &frame, size_t first, size_t last)
{
    uint8_t sum = 0;
    for (size_t i = first; i < last; ++i)
        sum = static_cast<uint8_t>(sum + frame[i]);
    return sum;
}

void appendTail(Bytes &frame, size_t firstSummed)
{
    frame.push_back(checkSum(frame, firstSummed, frame.size()));
    frame.push_back(kEndDelimiter);
}

// Looks at the first size bytes; others may follow them.
bool hasGoodTail(const Bytes &frame, size_t firstSummed, size_t size)
{
    const size_t fcs = size - kTailSize;
    return frame[fcs + 1] == kEndDelimiter && frame[fcs] == checkSum(frame, firstSummed, fcs);
}

} // namespace

bool isRequest(const Frame &frame)
{
    return (frame.function & kRequestBit) != 0;
}

bool isSendAndRequestData(const Frame &frame)
{
    return (frame.function & ~kFrameCountBits) == (kRequestBit | kSendAndRequestData);
}

Bytes sd1(uint8_t destination, uint8_t source, uint8_t function)
{
    Bytes frame = {kSd1, destination, source, function};
    appendTail(frame, 1);
    return frame;
}

Bytes sd2(uint8_t destination, uint8_t source, uint8_t function, const Bytes &pdu)
{
    assert(pdu.size() <= kMaxPduSize);
    const auto length = static_cast<uint8_t>(kAddressSize + pdu.size());
    Bytes frame = {kSd2, length, length, kSd2, destination, source, function};
    append(frame, pdu);
    appendTail(frame, kSd2HeadSize);
    return frame;
}

std::optional<Frame> FrameReader::next()
{
    for (Start start = examine(); start != Start::Incomplete; start = examine()) {
        if (start == Start::Whole)
            return takeFrame();
        skipByte();
    }
    return std::nullopt;
}

Bytes FrameReader::takeSkipped()
{
    return std::exchange(skipped, {});
}

void FrameReader::abandon()
{
    append(skipped, buffer);
    buffer.clear();
}

FrameReader::Start FrameReader::examine() const
{
    if (buffer.empty())
        return Start::Incomplete;
    if (buffer[0] == kSd1)
        return examineSd1();
    return buffer[0] == kSd2 ? examineSd2() : Start::NoFrame;
}

FrameReader::Start FrameReader::examineSd1() const
{
    if (buffer.size() < kSd1Size)
        return Start::Incomplete;
    return hasGoodTail(buffer, 1, kSd1Size) ? Start::Whole : Start::NoFrame;
}

// Refuses a bad head at its first wrong byte. To wait for the whole frame that a false length promises would
// hold up the good frames in it.
FrameReader::Start FrameReader::examineSd2() const
{
    const size_t received = buffer.size();
    if (received > 1 && buffer[1] < kAddressSize)
        return Start::NoFrame;
    if (received > 2 && buffer[2] != buffer[1])
        return Start::NoFrame;
    if (received > 3 && buffer[3] != kSd2)
        return Start::NoFrame;
    if (received < kSd2HeadSize)
        return Start::Incomplete;
    const size_t size = kSd2HeadSize + buffer[1] + kTailSize;
    if (received < size)
        return Start::Incomplete;
    return hasGoodTail(buffer, kSd2HeadSize, size) ? Start::Whole : Start::NoFrame;
}

Frame FrameReader::takeFrame()
{
    Frame frame;
    frame.hasPdu = buffer[0] == kSd2;
    const size_t head = frame.hasPdu ? kSd2HeadSize : 1;
    const size_t size = frame.hasPdu ? kSd2HeadSize + buffer[1] + kTailSize : kSd1Size;
    const auto end = buffer.begin() + static_cast<std::ptrdiff_t>(size);
    frame.destination = buffer[head];
    frame.source = buffer[head + 1];
    frame.function = buffer[head + 2];
    frame.pdu.assign(buffer.begin() + static_cast<std::ptrdiff_t>(head + kAddressSize),
                     end - static_cast<std::ptrdiff_t>(kTailSize));
    frame.wire.assign(buffer.begin(), end);
    buffer.erase(buffer.begin(), end);
    return frame;
}

void FrameReader::skipByte()
{
    skipped.push_back(buffer.front());
    buffer.erase(buffer.begin());
}

} // namespace sim
