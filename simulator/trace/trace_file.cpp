// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/trace/trace_file.h"

#include "common/capture.h"
#include "simulator/protocol/hex_text.h"
#include "simulator/protocol/layer2.h"
#include "simulator/text/user_error.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <cstdint>
#include <ctime>
#include <optional>

namespace sim {

namespace {

std::string timeText(Time time)
{
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(time).count();
    const std::time_t seconds = static_cast<std::time_t>(milliseconds / 1000);
    std::tm calendar = {};
    gmtime_r(&seconds, &calendar);
    std::array<char, 32> date = {};
    static_cast<void>(std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &calendar));
    std::array<char, 8> fraction = {};
    static_cast<void>(std::snprintf(fraction.data(), fraction.size(), ".%03uZ",
                                    static_cast<unsigned>(milliseconds % 1000)));
    return std::string(date.data()) + fraction.data();
}

// Wireshark's own dissector of the PDUs.
constexpr char kPduDissector[] = "s7comm_cotp";

std::string text(const Bytes &bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

// The bytes as they passed, and the PDUs of the frames that are whole and sound.
std::string capturePackets(Time time, Traffic traffic, const Bytes &bytes)
{
    using common::CaptureDirection;
    const auto count = std::chrono::floor<std::chrono::microseconds>(time).count();
    const auto microseconds = static_cast<std::uint64_t>(count);
    const CaptureDirection way =
        traffic == Traffic::Sent ? CaptureDirection::ToMaster : CaptureDirection::FromMaster;
    std::string packets = common::captureFrame(microseconds, way, text(bytes));
    FrameReader reader;
    for (const uint8_t byte : bytes)
        reader.push(byte);
    while (const std::optional<Frame> frame = reader.next())
        if (frame->hasPdu && !frame->pdu.empty())
            packets += common::captureData(microseconds, way, kPduDissector, text(frame->pdu));
    return packets;
}

} // namespace

std::string traceRecord(Time time, Traffic traffic, const Bytes &bytes)
{
    return timeText(time) + (traffic == Traffic::Sent ? " < " : " > ") + hexText(bytes);
}

TraceFile::TraceFile(const std::string &path, const std::string &heading)
    : file(path, std::ios::binary), isCapture(common::isCaptureName(path))
{
    if (!put(isCapture ? common::captureHead("s7ppi-sim", heading) : "# " + heading + '\n')) {
        const int reason = errno;
        throw UserError(path + ": cannot write: " + std::strerror(reason),
                        "check the trace file's folder, its rights and its room");
    }
}

bool TraceFile::write(Time time, Traffic traffic, const Bytes &bytes)
{
    return !isGood() ||
           put(isCapture ? capturePackets(time, traffic, bytes) : traceRecord(time, traffic, bytes) + '\n');
}

bool TraceFile::put(const std::string &piece)
{
    file << piece << std::flush;
    return isGood();
}

} // namespace sim
