// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/replay/recording.h"

#include "common/capture.h"
#include "simulator/protocol/hex_text.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>

namespace sim {

namespace {

// Within these years nanoseconds since 1970 can be counted, and added.
constexpr int kFirstYear = 1970;
constexpr int kLastYear = 2100;
constexpr std::uint64_t kLastMicrosecond = 4'102'444'800'000'000;

constexpr size_t kLargestFile = 256U << 20;

const char kOtherFile[] = "name a file that s7ppi --trace or s7ppi-sim --trace has written";

RecordingError unusable(const std::string &path, const std::string &reason)
{
    return RecordingError(path + ": " + reason, kOtherFile);
}

std::string contentOf(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        const int reason = errno;
        throw RecordingError(path + ": cannot be read: " + std::strerror(reason), kOtherFile);
    }
    std::string content;
    std::vector<char> piece(1U << 16);
    while (file.read(piece.data(), std::streamsize(piece.size())) || file.gcount() > 0) {
        content.append(piece.data(), size_t(file.gcount()));
        if (content.size() > kLargestFile)
            throw RecordingError(path + ": is too large: it has more than 256 MiB",
                                 "cut the part out that matters");
    }
    if (file.bad())
        throw RecordingError(path + ": cannot be read", kOtherFile);
    return content;
}

// "2026-01-31T12:00:00.250Z"; nothing for any other text.
std::optional<Time> parseTime(const std::string &text)
{
    std::tm calendar = {};
    const char *rest = strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &calendar);
    const bool isNear = calendar.tm_year >= kFirstYear - 1900 && calendar.tm_year < kLastYear - 1900;
    if (!rest || !isNear || *rest != '.' || std::strspn(rest + 1, "0123456789") != 3 ||
        std::strcmp(rest + 4, "Z") != 0)
        return std::nullopt;
    const int milliseconds = (rest[1] - '0') * 100 + (rest[2] - '0') * 10 + (rest[3] - '0');
    return std::chrono::seconds(timegm(&calendar)) + std::chrono::milliseconds(milliseconds);
}

// TIME ">" BYTES or TIME "<" BYTES; nothing for any other text.
std::optional<Recorded> parseLine(const std::string &line)
{
    const size_t direction = line.find(' ');
    if (direction == std::string::npos || direction + 3 > line.size() || line[direction + 2] != ' ')
        return std::nullopt;
    const char sign = line[direction + 1];
    const std::optional<Time> time = parseTime(line.substr(0, direction));
    const std::optional<Bytes> bytes = parseHex(line.substr(direction + 3));
    if (!time || !bytes || bytes->empty() || (sign != '>' && sign != '<'))
        return std::nullopt;
    return Recorded{{}, *time, sign == '>', *bytes};
}

Recording readTrace(const std::string &path, const std::string &content)
{
    Recording recording;
    std::istringstream lines(content);
    std::string line;
    for (size_t number = 1; std::getline(lines, line); ++number) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty() || line.front() == '#')
            continue;
        std::optional<Recorded> record = parseLine(line);
        const std::string place = "line " + std::to_string(number);
        if (!record)
            throw unusable(path, place + " is no record of a trace");
        record->place = place;
        recording.records.push_back(std::move(*record));
    }
    return recording;
}

Recording readCapture(const std::string &content)
{
    Recording recording;
    common::CaptureReader reader(content);
    common::CaptureReader::Frame frame = {};
    while (reader.next(frame))
        recording.records.push_back({"packet " + std::to_string(frame.number),
                                     std::chrono::microseconds(std::min(frame.time, kLastMicrosecond)),
                                     frame.direction == common::CaptureDirection::FromMaster,
                                     Bytes(frame.bytes.begin(), frame.bytes.end())});
    if (reader.isDamaged())
        recording.damage = "packet " + std::to_string(reader.packetCount());
    return recording;
}

} // namespace

Recording readRecording(const std::string &path)
{
    const std::string content = contentOf(path);
    Recording recording =
        common::CaptureReader::isCapture(content) ? readCapture(content) : readTrace(path, content);
    const auto isAsked = [](const Recorded &record) {
        return record.isFromMaster && wholeFrame(record.bytes);
    };
    if (std::none_of(recording.records.begin(), recording.records.end(), isAsked))
        throw unusable(path, "has no whole frame of a master in it");
    return recording;
}

std::optional<Frame> wholeFrame(const Bytes &bytes)
{
    FrameReader reader;
    for (const uint8_t byte : bytes)
        reader.push(byte);
    std::optional<Frame> frame = reader.next();
    return frame && frame->wire == bytes ? frame : std::nullopt;
}

} // namespace sim
