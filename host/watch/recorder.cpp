// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/recorder.h"

#include "host/output/forms.h"
#include "host/text/time_text.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>
#include <ratio>

namespace host {

namespace {

const Schema kSchema = {
    "watch",
    1,
    "samples",
    {"time", "name", "address", "type", "index", "value", "unit", "ms", "error", "port", "station"}};

// The answer time in milliseconds, to a tenth of one.
double milliseconds(WatchDuration time)
{
    using Tenths = std::chrono::duration<qint64, std::ratio<1, 10000>>;
    return double(std::chrono::duration_cast<Tenths>(time).count()) / 10;
}

// Lines of text begin with the time.
const char kTextBeginning[] = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}";

// Each line has time and address, so that one is enough for a search.
QString textLines(const QString &time, const WatchedItem &item)
{
    QStringList lines;
    for (const ValueLine &line : valueLines(item.tag, item.values))
        lines << time + ' ' + line.label + ' ' + line.text;
    return lines.join('\n');
}

std::unique_ptr<OutputSink> recordSink(const OutputOptions &options, const Schema &schema,
                                       const Rotation &rotation)
{
    const Format format = formatOf(options, schema);
    const bool isWhole = format == Format::JsonDocument;
    if (options.output && !isWhole)
        return std::make_unique<LineFile>(*options.output, lineStyle(format, schema, kTextBeginning),
                                          rotation);
    if (rotation.size || rotation.daily)
        throw Failure(ExitCode::Usage,
                      isWhole ? "a document of json is one whole, and does not rotate"
                              : "--rotate needs a file",
                      "name one with -o, as FILE.csv, FILE.tsv, FILE.ndjson or FILE.txt");
    return sinkFor(options);
}

} // namespace

Recorder::Recorder(const Options &options, bool all_, const Rotation &rotation)
    : Recorder(options, withSource(kSchema, options), all_, rotation)
{
}

Recorder::Recorder(const Options &options, const Schema &schema, bool all_, const Rotation &rotation)
    : output(options, schema, recordSink(options, schema, rotation)), all(all_)
{
}

bool Recorder::isOnStdout(const OutputOptions &options)
{
    return !options.output && formatOf(options, kSchema) != Format::Text;
}

void Recorder::answered(const Watch &watch, const WatchedItem &item, const Reading &reading, WatchNews news)
{
    if (!all && news == WatchNews::None)
        return;
    const Origin origin = originOf(watch, item, reading.time);
    Json record = tagRecord(origin, item.tag, reading.values);
    record["ms"] = milliseconds(reading.answerTime);
    output.write(record, textLines(origin.time, item));
}

Origin Recorder::originOf(const Watch &watch, const WatchedItem &item,
                          std::chrono::system_clock::time_point time)
{
    return {timeTextOf(time), watch.port, item.tag.item.station.value_or(watch.station)};
}

// What came with one request has one time. Qt looks at the file of the time zone for each text.
const QString &Recorder::timeTextOf(std::chrono::system_clock::time_point time)
{
    if (lastTimeText.isEmpty() || time != lastTime) {
        lastTime = time;
        lastTimeText = timeText(time);
    }
    return lastTimeText;
}

void Recorder::failed(const Watch &watch, const WatchedItem &item, const Failure &failure, bool isNews)
{
    if (all || isNews)
        output.writeUnlessText(
            tagErrorRecord(originOf(watch, item, std::chrono::system_clock::now()), item.tag, failure));
}

} // namespace host
