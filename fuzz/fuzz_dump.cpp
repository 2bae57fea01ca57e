// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Dumps of any bytes, whole and in part: what is taken has all of its area's bytes, and written again it is
// the same.
//
//    input := dump

#include "fuzzing.h"
#include "refusal.h"

#include "host/dump/dump_file.h"
#include "host/items/memory_range.h"

using fuzz::require;
using namespace host;

namespace {

bool isSame(const Dump &one, const Dump &other)
{
    return rangeText(one.range) == rangeText(other.range) && one.station == other.station &&
           one.data == other.data && one.isSimulated == other.isSimulated;
}

void readWhole(const QByteArray &text)
{
    const Dump dump = parseDump(text, "dump");
    require(dump.data.size() == dump.range.size(), "a whole dump has all of its bytes");
    require(dump.station >= 0 && dump.station <= 126, "a station is one");
    const QByteArray again = dumpText(dump);
    require(isSame(parseDump(again, "again"), dump), "what was read reads back the same");

    int wholeSize = 0;
    const Dump part = parsePartialDump(again.left(int(again.size()) - 1), "part", wholeSize);
    require(wholeSize < again.size() && dump.data.startsWith(part.data),
            "a part is what the whole begins with");
}

void readPart(const QByteArray &text)
{
    int wholeSize = -1;
    const Dump part = parsePartialDump(text, "part", wholeSize);
    require(wholeSize >= 0 && wholeSize <= text.size() && part.data.size() <= part.range.size(),
            "a part is no longer than its whole");
    require((wholeSize == 0 || text.at(wholeSize - 1) == '\n'), "a part ends with a line");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray text = fuzz::arrayOf(data, size);
    fuzz::takeOrRefuse([&] { readWhole(text); });
    fuzz::takeOrRefuse([&] { readPart(text); });
    return 0;
}
