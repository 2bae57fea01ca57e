// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/dry_run_output.h"

#include "host/frames/words.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace host {

const Schema kFramesSchema = {"frames", 1, "frames", {"meaning", "bytes"}};

DryRunOutput::DryRunOutput(const Options &options, Output &output_) : output(output_), requests(options) {}

void DryRunOutput::write(const WriteRequest &request, std::optional<int> otherStation) const
{
    print(requests.ofWrite(request, otherStation));
}

void DryRunOutput::read(const PlannedRequest &request) const
{
    print(requests.ofRead(request.command, request.pool.station));
}

void DryRunOutput::print(const QList<QByteArray> &frames) const
{
    for (const QByteArray &frame : frames) {
        const bool isUnknown = requests.hasUnknownFrames();
        const QString bytes = QString::fromLatin1(frame.toHex(' '));
        output.write(
            {{"meaning", jsonText(isUnknown ? QString() : frameWords(frame))}, {"bytes", jsonText(bytes)}},
            isUnknown ? bytes : frameLine(frame));
    }
}

} // namespace host
