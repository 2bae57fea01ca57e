// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/failure.h"
#include "host/base/messages.h"
#include "host/cli/command_line.h"
#include "host/output/sink.h"
#include "host/recording/report_page.h"
#include "host/text/number_text.h"

#include <QFileInfo>
#include <QString>

#include <memory>

namespace host {

namespace {

const char kReportFooter[] = R"(
One page with a curve of every value, answer times, and errors over time and by their cause.
It needs no script and no network, and goes to stdout without -o.)";

int report(const OutputOptions &options, const QString &fileName)
{
    const Recording recording = readRecording(fileName);
    if (recording.leftOut > 0)
        reportWarning(QString("%1: %2 left out, headings that come again or lines that were cut")
                          .arg(fileName, counted(recording.leftOut, "line")));
    const std::unique_ptr<OutputSink> sink = sinkFor(options);
    sink->put(reportPage(recording, QFileInfo(fileName).fileName()));
    sink->commit();
    return int(ExitCode::Success);
}

} // namespace

void declareReport(CLI::App &app, CommandLine &line)
{
    const auto file = std::make_shared<QString>();
    CLI::App *command = addCommand(app, line, "report", "Make a page of what watch -o FILE.csv recorded",
                                   [file](const Options &options) { return report(options, *file); });
    addText(*command, "file", *file, "FILE", "The record, as watch writes it; - reads it from stdin");
    setFooter(
        *command, kReportFooter,
        {"s7ppi report press.csv -o press.html", "cat press.*.csv press.csv | s7ppi report - -o all.html"});
}

} // namespace host
