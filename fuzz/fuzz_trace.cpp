// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Traces, line by line, and hexadecimal text: a record that is taken can be written, as a line and as a part
// of a capture, and reads back the same.
//
//    input := trace, or frames in hexadecimal digits

#include "fuzzing.h"
#include "refusal.h"

#include "host/frames/trace_file.h"
#include "host/frames/words.h"
#include "host/text/hex_text.h"

using fuzz::require;
using namespace host;

namespace {

void writeCapture(const TraceRecord &record)
{
    const CapturedRecords captured = parseCapture(captureBeginning("line") + captureRecord(record));
    require(!captured.isDamaged && captured.records.size() == 1 &&
                captured.records[0].bytes == record.bytes &&
                captured.records[0].direction == record.direction,
            "a record goes into a capture and comes out of it");
}

void readLine(const QByteArray &line)
{
    const std::optional<TraceRecord> record = parseTraceLine(line);
    if (!record)
        return;
    require(record->direction == ">" || record->direction == "<", "a record says which way it went");
    const QDateTime time = QDateTime::fromString(record->time, Qt::ISODateWithMs);
    const QByteArray written = traceLine(time, record->direction.at(0).toLatin1(), record->bytes);
    if (time.isValid() && time.date().year() < 10000) {
        const std::optional<TraceRecord> again = parseTraceLine(written);
        require(again && again->direction == record->direction && again->bytes == record->bytes,
                "a record reads back the same");
    }
    writeCapture(*record);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray text = fuzz::arrayOf(data, size);
    for (const QByteArray &line : text.split('\n'))
        fuzz::takeOrRefuse([&] { readLine(line); });
    fuzz::takeOrRefuse([&] {
        const QByteArray bytes = parseHex(QString::fromUtf8(text));
        require(parseHex(QString::fromLatin1(bytes.toHex(':'))) == bytes, "bytes read back the same");
        require(bytes.isEmpty() || !frameLine(bytes).isEmpty(), "bytes have words");
    });
    return 0;
}
