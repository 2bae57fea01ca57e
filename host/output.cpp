// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "output.h"

#include "failure.h"
#include "interruption.h"
#include "output_form.h"
#include "report.h"

#include <QFileInfo>

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace host {

namespace {

const QStringList kFormatNames = {"text", "json", "ndjson", "csv", "tsv", "raw"};

// Of an output file's name; text when that says nothing.
QString formatBySuffix(const Options &options)
{
    const QString suffix = QFileInfo(QString::fromStdString(options.output.value_or(""))).suffix();
    return suffix != "raw" && kFormatNames.contains(suffix) ? suffix : "text";
}

Format formatOf(const Options &options, const Layout &layout)
{
    const QString name = options.format ? QString::fromStdString(*options.format) : formatBySuffix(options);
    const auto format = Format(kFormatNames.indexOf(name));
    if (format == Format::Raw && !layout.hasRaw)
        throw Failure(ExitCode::Usage, layout.command + " has no raw form",
                      "choose --format text, json, ndjson, csv or tsv");
    return format;
}

} // namespace

Output::Output(const Options &options, const Layout &layout)
    : chosen(formatOf(options, layout)), form(outputForm(chosen, layout, outputSink(options)))
{
}

Output::~Output()
{
    if (isFinished || interruptingSignal() == 0)
        return;
    try {
        finish();
    } catch (const Failure &failure) {
        reportFailure(failure);
    } catch (const Interrupted &) { // stdout was closed by what the signal also ended
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

// The digits that tell the float apart, as the double nearest to them: dumped, they are the same digits.
Json jsonNumber(float number)
{
    char digits[32] = {};
    std::to_chars(digits, digits + sizeof digits - 1, number);
    if (!std::isfinite(number))
        return std::string(digits);
    return std::strtod(digits, nullptr);
}

} // namespace host
