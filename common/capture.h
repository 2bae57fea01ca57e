// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Capture files that Wireshark opens: the pcapng format, as far as two kinds of packets need it.
//
//   interface 0   link type 147, for private use: frames of the line as they passed
//   interface 1   link type 252, exported protocol data: what a frame carries, for a dissector that is named
//
// All numbers are little endian; every block is a multiple of four bytes long.
//
//   block := TYPE(4) LENGTH(4) body LENGTH(4)

#ifndef COMMON_CAPTURE_H
#define COMMON_CAPTURE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace common {

enum class CaptureDirection { FromMaster, ToMaster };

// Whether a name ends like that of a capture file, .pcapng.
bool isCaptureName(std::string_view name);

// What a capture begins with: the program that makes it and the line that it listens to.
std::string captureHead(std::string_view program, std::string_view line);

// A frame of the line. The time is in microseconds since the beginning of 1970, UTC.
std::string captureFrame(std::uint64_t time, CaptureDirection direction, std::string_view frame);

// What a frame carries, for Wireshark's heuristic dissector of that name.
std::string captureData(std::uint64_t time, CaptureDirection direction, std::string_view dissector,
                        std::string_view data);

// A remark between the packets: a packet without bytes, whose comment is the text.
std::string captureComment(std::uint64_t time, std::string_view text);

// The frames of a capture, whoever made it and in which byte order, one after the other.
class CaptureReader
{
public:
    struct Frame
    {
        std::uint64_t number; // of its packet in the file, counted from 1 as Wireshark does
        std::uint64_t time;   // microseconds since the beginning of 1970, UTC
        CaptureDirection direction;
        std::string bytes;
    };

    // The whole of the file, which must outlive the reader.
    explicit CaptureReader(std::string_view file) : rest(file) {}

    // Whether bytes begin as a capture does.
    static bool isCapture(std::string_view beginning);

    // Gets the next frame that says which way it went. Returns false at the end, and at the first block that
    // is cut or damaged.
    bool next(Frame &frame);

    // How many packets were looked at so far.
    std::uint64_t packetCount() const { return packets; }

    // Whether the file ends in the middle of a block, or a block contradicts itself.
    bool isDamaged() const { return damaged; }

private:
    struct Interface
    {
        std::uint32_t linkType;
        std::uint64_t ticksPerSecond;
    };

    bool readBlock();
    bool takeSection();
    bool takeInterface();
    bool takePacket(Frame &frame);
    std::string_view option(std::size_t from, std::uint32_t code) const;
    std::uint32_t number(std::string_view bytes, std::size_t place, std::size_t size) const;
    bool fail();

    std::string_view rest;
    std::string_view body; // of the block that is looked at
    std::uint32_t type = 0;
    bool isBigEndian = false;
    bool damaged = false;
    std::uint64_t packets = 0;
    std::vector<Interface> interfaces;
};

} // namespace common

#endif
