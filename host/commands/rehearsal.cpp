// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/rehearsal.h"

#include "host/frames/frame_words.h"

namespace host {

const Schema kFramesSchema = {"frames", 1, "frames", {"meaning", "bytes"}};

Rehearsal::Rehearsal(const Options &options, Output &output_) : output(output_), requests(options) {}

void Rehearsal::write(const WriteRequest &request) const
{
    print(requests.ofWrite(request));
}

void Rehearsal::read(const ReadRequest &request) const
{
    print(requests.ofRead(request.command));
}

void Rehearsal::print(const QList<QByteArray> &frames) const
{
    for (const QByteArray &frame : frames)
        output.write({{"meaning", jsonText(frameWords(frame))}, {"bytes", frame.toHex(' ').toStdString()}},
                     frameLine(frame));
}

} // namespace host
