// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/recorder.h"

#include "host/output/forms.h"

#include <QDateTime>
#include <QString>

#include <chrono>
#include <memory>
#include <ratio>

namespace host {

namespace {

const Schema kSchema = {
    "watch", 1, "samples", {"time", "name", "address", "type", "index", "value", "unit", "ms", "error"}};

// Local time with its distance from UTC: 2026-11-21T10:07:50.123+01:00
QString timeText(std::chrono::system_clock::time_point time)
{
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(sinceEpoch.count());
    return local.toOffsetFromUtc(local.offsetFromUtc()).toString(Qt::ISODateWithMs);
}

Json withTime(const QString &time, const Json &fields)
{
    Json record = {{"time", time.toStdString()}};
    record.update(fields);
    return record;
}

// The answer time in milliseconds, to a tenth of one.
double milliseconds(WatchDuration time)
{
    using Tenths = std::chrono::duration<qint64, std::ratio<1, 10000>>;
    return double(std::chrono::duration_cast<Tenths>(time).count()) / 10;
}

// Lines of text begin with the time.
const char kTextBeginning[] = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}";

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

Recorder::Recorder(const Options &options, const std::vector<Tag> &tags, bool all_, const Rotation &rotation)
    : Recorder(options, withSource(withStation(kSchema, hasStations(tags)), options), all_, rotation)
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

void Recorder::answered(const Watch & /*watch*/, const WatchedItem &item, const Reading &reading,
                        WatchNews news)
{
    if (!all && news == WatchNews::None)
        return;
    const QString time = timeTextOf(reading.time);
    Json record = withTime(time, tagRecord(item.tag, reading.values));
    record["ms"] = milliseconds(reading.answerTime);
    output.write(record, time + ' ' + item.tag.label() + ' ' + item.values);
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

void Recorder::failed(const Watch & /*watch*/, const WatchedItem &item, const Failure &failure, bool isNews)
{
    if (all || isNews)
        output.writeUnlessText(
            withTime(timeText(std::chrono::system_clock::now()), tagErrorRecord(item.tag, failure.text())));
}

} // namespace host
