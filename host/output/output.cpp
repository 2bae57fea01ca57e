// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/output/output.h"

#include "host/base/failure.h"
#include "host/base/interruption.h"
#include "host/base/messages.h"
#include "host/output/forms.h"

#include <QFileInfo>
#include <QStringList>

#include <optional>
#include <utility>

namespace host {

namespace {

// A file of text is looked at long after it was written; who reads stdout has just named the port.

const QStringList kFormatNames = {"text", "json", "ndjson", "csv", "tsv", "raw"};

Format formatNamed(const QString &name)
{
    return Format(kFormatNames.indexOf(name));
}

// The format that the name of the output file ends with, if it ends with one.
std::optional<Format> formatBySuffix(const OutputOptions &options)
{
    const QString suffix = QFileInfo(options.output.value_or(QString())).suffix();
    if (suffix == "txt")
        return Format::Text;
    if (suffix == "raw" || !kFormatNames.contains(suffix))
        return std::nullopt;
    return formatNamed(suffix);
}

// The format when neither the command line nor the file's name asks for one.
Format unaskedFormat(const OutputOptions &options, const Schema &schema)
{
    const Format format = formatNamed(options.usualFormat.value_or("text"));
    return format == Format::Raw && !schema.hasRaw ? Format::Text : format;
}

} // namespace

Schema withSource(Schema schema, const PortOptions &options)
{
    schema.isSimulated = options.isSimulated();
    return schema;
}

Schema withStation(Schema schema, bool hasStations)
{
    if (hasStations)
        schema.columns.insert(schema.columns.indexOf("type") + 1, "station");
    return schema;
}

Format formatOf(const OutputOptions &options, const Schema &schema)
{
    if (!options.format)
        return formatBySuffix(options).value_or(unaskedFormat(options, schema));
    const Format format = formatNamed(*options.format);
    if (format == Format::Raw && !schema.hasRaw)
        throw Failure(ExitCode::Usage, schema.command + " has no raw form",
                      "choose --format text, json, ndjson, csv or tsv");
    return format;
}

void noteUnusedFormat(const OutputOptions &options, const QString &format)
{
    if (options.verbose && options.usualFormat && *options.usualFormat != format)
        reportNote(
            QString("the usual format %1 is left out: the data are %2").arg(*options.usualFormat, format));
}

Output::Output(const OutputOptions &options, const Schema &schema) : Output(options, schema, sinkFor(options))
{
}

Output::Output(const OutputOptions &options, const Schema &schema, std::unique_ptr<OutputSink> sink)
    : chosen(formatOf(options, schema)), form(outputForm(chosen, schema, std::move(sink)))
{
    noteUnusedFormat(options, kFormatNames.at(int(chosen)));
    if (schema.isSimulated && options.output.value_or("-") != "-")
        form->writeHead(kSimulatedLine);
}

Output::~Output()
{
    if (isFinished || interruptingSignal() == 0)
        return;
    try {
        finish();
    } catch (const Failure &failure) {
        reportFailure(failure);
    } catch (const Interrupted &) { // the reader of stdout has been ended by the signal, too
    }
}

void Output::setField(const QString &name, const Json &value)
{
    form->setField(name, value);
}

void Output::write(const Json &record)
{
    form->write(record);
}

void Output::writeBeside(const Json &record)
{
    form->writeBeside(record);
}

void Output::write(const Json &record, const QString &text)
{
    form->writeLine(record, text);
}

void Output::writeUnlessText(const Json &record)
{
    if (chosen != Format::Text)
        form->write(record);
}

void Output::writeText(const QString &text)
{
    form->writeText(text);
}

void Output::writeRaw(const QByteArray &bytes)
{
    form->writeRaw(bytes);
}

void Output::finish()
{
    isFinished = true;
    form->finish();
    form->commit();
}

} // namespace host
