// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Recordings of any bytes that the simulator plays in the place of controllers: a recording that is taken is
// played to its own master without a difference, and to another one without harm.
//
//    input := trace or capture

#include "temporary_file.h"

#include "simulator/replay/recording.h"
#include "simulator/replay/replay.h"

#include <chrono>

using fuzz::require;

namespace {

using namespace std::chrono_literals;

void play(const sim::Recording &recording, double speed)
{
    sim::Replay replay(recording.records, speed, 0s);
    int told = 0;
    replay.setTell([&told](const std::string &text) { told += text.empty() ? 0 : 1; });
    for (const sim::Recorded &record : recording.records) {
        if (!record.isFromMaster || !sim::wholeFrame(record.bytes))
            continue;
        replay.feed(record.bytes.data(), record.bytes.size());
        replay.advanceTo(replay.now() + 1min);
    }
    require(replay.differenceCount() == 0 && told == 1, "its own master hears the recording to its end");
    const sim::Bytes stranger = sim::sd1(9, 8, 0x5c);
    for (int i = 0; i < 2; ++i)
        replay.feed(stranger.data(), stranger.size());
    replay.advanceTo(replay.now() + 24h);
    require(!replay.nextDue(), "the line comes to rest");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    sim::Recording recording;
    try {
        recording = sim::readRecording(fuzz::TemporaryFile(data, size).name());
    } catch (const sim::RecordingError &error) {
        require(*error.what() != '\0' && *error.hint() != '\0', "a refusal says why, and what to do");
        return 0;
    }
    require(!recording.records.empty(), "a recording has records");
    play(recording, 0);
    play(recording, 1);
    return 0;
}
