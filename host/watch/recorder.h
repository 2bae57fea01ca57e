// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What was watched, as data: "TIME ADDRESS VALUES" in text, records with the time in other forms; for the
// first values, for every change and after errors.

#ifndef HOST_WATCH_RECORDER_H
#define HOST_WATCH_RECORDER_H

#include "host/output/line_file.h"
#include "host/output/output.h"
#include "host/watch/view.h"

#include <QString>

#include <chrono>
#include <vector>

namespace host {

class Recorder : public View
{
public:
    // all: every poll is recorded, not only changes. A file grows by every record, but for a document of
    // json, which is one whole; there is no rotation then.
    Recorder(const Options &options, bool all, const Rotation &rotation);

    // Whether stdout is for programs, by the form that the data have there.
    static bool isOnStdout(const OutputOptions &options);

    void answered(const Watch &watch, const WatchedItem &item, const Reading &reading,
                  WatchNews news) override;
    void failed(const Watch &watch, const WatchedItem &item, const Failure &failure, bool isNews) override;

    // Ends the data when the watching has come to its end.
    void finish() { output.finish(); }

private:
    Recorder(const Options &options, const Schema &schema, bool all, const Rotation &rotation);

    Origin originOf(const Watch &watch, const WatchedItem &item, std::chrono::system_clock::time_point time);
    const QString &timeTextOf(std::chrono::system_clock::time_point time);

    Output output;
    bool all;
    std::chrono::system_clock::time_point lastTime;
    QString lastTimeText; // empty before the first
};

} // namespace host

#endif
