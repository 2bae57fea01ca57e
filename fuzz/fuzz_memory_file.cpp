// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Memory files of any bytes: memory that is taken is written and read again the same, with its live values,
// and these can be stored at any time.
//
//    input := memory file

#include "temporary_file.h"

#include "simulator/controller/memory_file.h"
#include "simulator/controller/memory_file_error.h"
#include "simulator/controller/memory_json.h"

#include <chrono>

using fuzz::require;

namespace {

void storeLiveValues(const sim::StoredMemory &stored)
{
    sim::Memory memory = stored.memory;
    for (const int hours : {0, 1, 100000})
        for (const sim::LiveValue &value : stored.live)
            value.store(memory, std::chrono::hours(hours) + std::chrono::milliseconds(hours),
                        std::chrono::hours(0));
    for (const auto &[code, bytes] : stored.memory.byteAreas)
        require(memory.bytes(code).size() == bytes.size(), "a live value changes no area's size");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    sim::StoredMemory stored;
    try {
        stored = sim::loadMemory(fuzz::TemporaryFile(data, size).name());
    } catch (const sim::MemoryFileError &error) {
        require(*error.what() != '\0' && *error.hint() != '\0', "a refusal says why, and what to do");
        return 0;
    }
    const std::string written = sim::formatMemory(stored);
    const sim::StoredMemory again = sim::parseMemory(written);
    require(again.memory == stored.memory, "memory reads back the same");
    require(sim::formatMemory(again) == written && again.live.size() == stored.live.size(),
            "what was written is written again the same");
    storeLiveValues(stored);
    return 0;
}
