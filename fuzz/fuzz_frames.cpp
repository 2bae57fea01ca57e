// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Frames of any bytes, explained byte by byte: every byte is explained, in its place, and a frame without a
// fault is a sound one.
//
//    input := frames one behind the other

#include "mending_mutator.h"

#include "host/frames/answer_check.h"
#include "host/frames/explanation.h"
#include "host/frames/words.h"

using fuzz::require;
using namespace host;

namespace {

void checkExplained(const ExplainedFrame &explained, const QByteArray &frame)
{
    require(int(explained.bytes.size()) == frame.size(), "every byte is explained");
    for (int i = 0; i < int(frame.size()); ++i) {
        const ExplainedByte &byte = explained.bytes[size_t(i)];
        require(byte.offset == i && byte.byte == uchar(frame.at(i)) && !byte.field.isEmpty(),
                "a byte is explained in its place");
        require(!byte.isFault || !explained.faults.isEmpty(), "a wrong byte is a fault");
    }
    require(explained.missing.isEmpty() || explained.faults.contains(explained.missing),
            "what is missing is a fault");
    const bool isTelegram = frame.size() > 1;
    require(!explained.faults.isEmpty() || !isTelegram || isSoundTelegram(frame),
            "a frame without a fault is sound");
}

// The function code of a request has a bit of its own.
bool isFromMaster(const QByteArray &frame)
{
    return frame.size() > 6 && (frame.at(6) & kRequestBit) != 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzz::arrayOf(data, size);
    const QList<QByteArray> frames = splitFrames(bytes);
    FrameExplainer explainer;
    AnswerCheck check;
    QByteArray all;
    for (const QByteArray &frame : frames) {
        require(!frame.isEmpty(), "a frame has a byte");
        all += frame;
        checkExplained(explainer.explain(frame), frame);
        require(frameLine(frame).size() > frame.size() * 3, "a frame has words and bytes");
        if (isFromMaster(frame))
            check.sent(frame);
        else
            check.received(frame);
        require(!check.shortage() || check.shortage()->came < check.shortage()->asked,
                "what lacks did not come");
        check.heardNothing(false);
    }
    require(!frameWords(QByteArray()).isEmpty() && explainer.explain(QByteArray()).bytes.empty(),
            "nothing has no bytes");
    require(all == bytes, "the frames are all of the bytes");
    return 0;
}
