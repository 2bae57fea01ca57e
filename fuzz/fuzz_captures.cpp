// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Capture files of any bytes, as they come by mail. The frames that are read can be written, and read back
// the same.
//
//    input := capture file

#include "fuzzing.h"

#include "common/capture.h"

#include <string>
#include <string_view>
#include <vector>

using common::CaptureReader;
using fuzz::require;

namespace {

std::vector<CaptureReader::Frame> framesOf(std::string_view file)
{
    std::vector<CaptureReader::Frame> frames;
    CaptureReader reader(file);
    CaptureReader::Frame frame = {};
    while (reader.next(frame)) {
        require(frame.number == reader.packetCount(), "a frame has the number of its packet");
        frames.push_back(frame);
    }
    return frames;
}

bool isSame(const CaptureReader::Frame &one, const CaptureReader::Frame &other)
{
    return one.time == other.time && one.direction == other.direction && one.bytes == other.bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::vector<CaptureReader::Frame> frames =
        framesOf(std::string_view(reinterpret_cast<const char *>(data), size));
    std::string file = common::captureHead("fuzz", "line");
    for (const CaptureReader::Frame &frame : frames) {
        file += common::captureComment(frame.time, frame.bytes);
        file += common::captureFrame(frame.time, frame.direction, frame.bytes);
        file += common::captureData(frame.time, frame.direction, "s7comm", frame.bytes);
    }
    const std::vector<CaptureReader::Frame> again = framesOf(file);
    require(again.size() == frames.size(), "as many frames are read as were written");
    for (size_t i = 0; i < frames.size(); ++i)
        require(isSame(frames[i], again[i]), "a frame reads back the same");
    const bool isCapture = CaptureReader::isCapture(file);
    require(isCapture && common::isCaptureName("a.pcapng") && !common::isCaptureName(".pcapng"),
            "a capture is one");
    return 0;
}
