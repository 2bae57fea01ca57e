// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "common/capture.h"

#include <limits>

namespace common {

namespace {

constexpr std::uint32_t kSection = 0x0a0d0d0a; // the same in both byte orders
constexpr std::uint32_t kInterface = 1;
constexpr std::uint32_t kPacket = 6;

constexpr std::uint32_t kByteOrder = 0x1a2b3c4d;
constexpr std::uint32_t kSwappedOrder = 0x4d3c2b1a;

constexpr std::uint32_t kLineLink = 147;
constexpr std::uint32_t kDataLink = 252;
constexpr std::uint32_t kLineInterface = 0;
constexpr std::uint32_t kDataInterface = 1;

// Options of blocks.
constexpr std::uint32_t kEnd = 0;
constexpr std::uint32_t kComment = 1;
constexpr std::uint32_t kInterfaceName = 2;
constexpr std::uint32_t kPacketFlags = 2;
constexpr std::uint32_t kProgram = 4;
constexpr std::uint32_t kTimeResolution = 9;

// What the lowest two bits of a packet's flags say.
constexpr std::uint32_t kInbound = 1;
constexpr std::uint32_t kOutbound = 2;

// Tags in front of exported data, whose numbers are big endian.
constexpr std::uint32_t kHeuristicDissector = 13;

constexpr std::size_t kBlockEnds = 12; // type and both lengths
constexpr std::size_t kPacketHead = 20;
constexpr std::size_t kInterfaceHead = 8;
constexpr std::size_t kSectionHead = 16;

constexpr std::uint64_t kMicroseconds = 1000000;

std::string little(std::uint64_t value, int size)
{
    std::string bytes;
    for (int i = 0; i < size; ++i)
        bytes += char(value >> (8 * i));
    return bytes;
}

std::string big16(std::uint32_t value)
{
    return {char(value >> 8), char(value)};
}

std::size_t padded(std::size_t size)
{
    return (size + 3) / 4 * 4;
}

std::string filled(std::string_view bytes)
{
    return std::string(bytes) + std::string(padded(bytes.size()) - bytes.size(), '\0');
}

std::string option(std::uint32_t code, std::string_view value)
{
    const std::string_view kept = value.substr(0, std::numeric_limits<std::uint16_t>::max());
    return little(code, 2) + little(kept.size(), 2) + filled(kept);
}

std::string block(std::uint32_t type, const std::string &body)
{
    const std::string length = little(body.size() + kBlockEnds, 4);
    return little(type, 4) + length + body + length;
}

// The time counts in microseconds, as it does where an interface does not say otherwise.
std::string interfaceBlock(std::uint32_t linkType, std::string_view name)
{
    return block(kInterface, little(linkType, 2) + little(0, 2) + little(0, 4) +
                                 option(kInterfaceName, name) + option(kEnd, {}));
}

std::string packet(std::uint32_t interface, std::uint64_t time, std::string_view bytes,
                   const std::string &options)
{
    return block(kPacket, little(interface, 4) + little(time >> 32, 4) + little(time, 4) +
                              little(bytes.size(), 4) + little(bytes.size(), 4) + filled(bytes) + options +
                              option(kEnd, {}));
}

std::string directionOption(CaptureDirection direction)
{
    return option(kPacketFlags, little(direction == CaptureDirection::FromMaster ? kOutbound : kInbound, 4));
}

// From ticks to microseconds; a time beyond what can be told is that of the end.
std::uint64_t microseconds(std::uint64_t ticks, std::uint64_t ticksPerSecond)
{
    const std::uint64_t seconds = ticks / ticksPerSecond;
    if (seconds >= std::numeric_limits<std::uint64_t>::max() / kMicroseconds)
        return std::numeric_limits<std::uint64_t>::max();
    const std::uint64_t part = ticks % ticksPerSecond;
    const bool isCoarse = ticksPerSecond <= kMicroseconds;
    return seconds * kMicroseconds +
           (isCoarse ? part * kMicroseconds / ticksPerSecond : part / (ticksPerSecond / kMicroseconds));
}

} // namespace

bool isCaptureName(std::string_view name)
{
    constexpr std::string_view kEnding = ".pcapng";
    return name.size() > kEnding.size() && name.substr(name.size() - kEnding.size()) == kEnding;
}

std::string captureHead(std::string_view program, std::string_view line)
{
    return block(kSection, little(kByteOrder, 4) + little(1, 2) + little(0, 2) +
                               little(std::numeric_limits<std::uint64_t>::max(), 8) +
                               option(kProgram, program) + option(kEnd, {})) +
           interfaceBlock(kLineLink, line) + interfaceBlock(kDataLink, line);
}

std::string captureFrame(std::uint64_t time, CaptureDirection direction, std::string_view frame)
{
    return packet(kLineInterface, time, frame, directionOption(direction));
}

std::string captureData(std::uint64_t time, CaptureDirection direction, std::string_view dissector,
                        std::string_view data)
{
    const std::string name = filled(dissector);
    const std::string tags =
        big16(kHeuristicDissector) + big16(std::uint32_t(name.size())) + name + big16(kEnd) + big16(0);
    return packet(kDataInterface, time, tags + std::string(data), directionOption(direction));
}

std::string captureComment(std::uint64_t time, std::string_view text)
{
    return packet(kLineInterface, time, {}, option(kComment, text));
}

bool CaptureReader::isCapture(std::string_view beginning)
{
    return beginning.substr(0, 4) == little(kSection, 4);
}

bool CaptureReader::next(Frame &frame)
{
    while (readBlock()) {
        if (type == kSection && !takeSection())
            return fail();
        if (type == kInterface && !takeInterface())
            return fail();
        if (type == kPacket && takePacket(frame))
            return true;
        if (damaged)
            return false;
    }
    return false;
}

// Gets the next block. The byte order of a section stands behind its length.
bool CaptureReader::readBlock()
{
    if (rest.empty() || damaged)
        return false;
    if (rest.size() < kBlockEnds)
        return fail();
    if (isCapture(rest)) {
        isBigEndian = false;
        isBigEndian = number(rest, 8, 4) == kSwappedOrder;
        if (number(rest, 8, 4) != kByteOrder)
            return fail();
    }
    type = number(rest, 0, 4);
    const std::size_t length = number(rest, 4, 4);
    if (length < kBlockEnds || length % 4 != 0 || length > rest.size() ||
        number(rest, length - 4, 4) != length)
        return fail();
    body = rest.substr(8, length - kBlockEnds);
    rest.remove_prefix(length);
    return true;
}

bool CaptureReader::takeSection()
{
    interfaces.clear();
    return body.size() >= kSectionHead && number(body, 4, 2) == 1;
}

bool CaptureReader::takeInterface()
{
    if (body.size() < kInterfaceHead)
        return false;
    std::uint64_t ticks = kMicroseconds;
    const std::string_view resolution = option(kInterfaceHead, kTimeResolution);
    if (!resolution.empty()) {
        const unsigned exponent = static_cast<unsigned char>(resolution.front());
        const bool isBinary = exponent & 0x80;
        const unsigned power = exponent & 0x7f;
        if (power > (isBinary ? 40U : 12U))
            return false;
        ticks = 1;
        for (unsigned i = 0; i < power; ++i)
            ticks *= isBinary ? 2 : 10;
    }
    interfaces.push_back({number(body, 0, 2), ticks});
    return true;
}

// Returns whether the packet is a frame of the line with a direction.
bool CaptureReader::takePacket(Frame &frame)
{
    if (body.size() < kPacketHead)
        return fail();
    ++packets;
    const std::size_t interface = number(body, 0, 4);
    const std::size_t size = number(body, 12, 4);
    if (interface >= interfaces.size() || size > body.size() - kPacketHead)
        return fail();
    const std::string_view flags = option(kPacketHead + padded(size), kPacketFlags);
    const std::uint32_t way = flags.size() == 4 ? number(flags, 0, 4) & 3 : 0;
    if (interfaces[interface].linkType != kLineLink || (way != kInbound && way != kOutbound))
        return false;
    const std::uint64_t ticks = std::uint64_t(number(body, 4, 4)) << 32 | number(body, 8, 4);
    frame.number = packets;
    frame.time = microseconds(ticks, interfaces[interface].ticksPerSecond);
    frame.direction = way == kOutbound ? CaptureDirection::FromMaster : CaptureDirection::ToMaster;
    frame.bytes = body.substr(kPacketHead, size);
    return true;
}

// The value of an option of the block; empty when it has none. Options that run out of the block are none.
std::string_view CaptureReader::option(std::size_t from, std::uint32_t code) const
{
    while (from + 4 <= body.size()) {
        const std::uint32_t found = number(body, from, 2);
        const std::size_t size = number(body, from + 2, 2);
        if (found == kEnd || size > body.size() - from - 4)
            return {};
        if (found == code)
            return body.substr(from + 4, size);
        from += 4 + padded(size);
    }
    return {};
}

std::uint32_t CaptureReader::number(std::string_view bytes, std::size_t place, std::size_t size) const
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[place + (isBigEndian ? i : size - 1 - i)]);
    return value;
}

bool CaptureReader::fail()
{
    damaged = true;
    return false;
}

} // namespace common
