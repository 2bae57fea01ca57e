// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a driver would send for some requests, as data: one record per frame, meaning and bytes. No
// port is opened.

#ifndef HOST_COMMANDS_DRY_RUN_OUTPUT_H
#define HOST_COMMANDS_DRY_RUN_OUTPUT_H

#include "host/driver/dry_run.h"
#include "host/output/output.h"

#include <QByteArray>
#include <QList>

#include <optional>

namespace host {

// The form of the data.
extern const Schema kFramesSchema;

class DryRunOutput
{
public:
    // The output must outlive it.
    DryRunOutput(const Options &options, Output &output);

    // These print the frames of a request, a write's to the options' station unless another is named. Both
    // fail when the driver refuses the request and sends nothing.
    void write(const WriteRequest &request, std::optional<int> otherStation = std::nullopt) const;
    void read(const PlannedRequest &request) const;

    // The station of the options.
    int usualStation() const { return requests.usualStation(); }

    // The line that the requests would be sent on.
    LineSettings line() const { return requests.line(); }

private:
    void print(const QList<QByteArray> &frames) const;

    Output &output;
    DryRun requests;
};

} // namespace host

#endif
