// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/exit_code.h"
#include "host/base/report.h"
#include "host/base/text_input.h"
#include "host/cli/command_line.h"
#include "host/output/output_sink.h"
#include "host/recording/report_page.h"
#include "host/text/counted.h"

#include <QFileInfo>

#include <memory>

namespace host {

namespace {

const char kFooter[] = R"(
  s7ppi watch --count 600 -o press.csv VW100 T37
  s7ppi report press.csv -o press.html

One page with a trend of every value, answer times, and errors by their cause. It needs no
script and no network, and goes to stdout without -o.)";

int report(const Options &options, const QString &fileName)
{
    const WatchLog log = parseWatchLog(fileName, readInput(fileName));
    if (log.leftOut > 0)
        reportWarning(QString("%1: %2 left out, headings that come again or lines that were cut")
                          .arg(fileName, counted(log.leftOut, "line")));
    const std::unique_ptr<OutputSink> sink = outputSink(options);
    sink->put(reportPage(log, QFileInfo(fileName).fileName()));
    sink->commit();
    return int(ExitCode::Success);
}

} // namespace

void declareReport(CLI::App &app, CommandLine &line)
{
    const auto file = std::make_shared<std::string>();
    CLI::App *command =
        addCommand(app, line, "report", "Make a page of what watch -o FILE.csv recorded",
                   [file](const Options &options) { return report(options, QString::fromStdString(*file)); });
    addText(*command, "file", *file, "FILE", "The record, as watch writes it; - reads it from stdin");
    setFooter(*command, kFooter);
}

} // namespace host
