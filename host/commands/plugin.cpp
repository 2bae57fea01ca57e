// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/failure.h"
#include "host/cli/command_line.h"
#include "host/diagnosis/plugin_examination.h"
#include "host/output/output.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace host {

namespace {

const Schema kPluginSchema = {"plugin", 1, "findings", {"what", "good", "text"}};

const char kPluginFooter[] = R"(
The file is read first: machine, entry points, verification text. Then it is loaded in a process of its
own, so that a library that crashes takes nothing with it. One for another machine is only read.

The exit code is 0 when nothing is missing, and 7 when something is.)";

bool isGood(const Finding &finding)
{
    return finding.verdict == Verdict::Good;
}

QString findingLine(const Finding &finding)
{
    constexpr int kCheckWidth = 34;
    return (isGood(finding) ? "  " : "! ") + finding.check.leftJustified(kCheckWidth) + ' ' + finding.text;
}

int examine(const OutputOptions &options, const QString &fileName)
{
    Output output(options, kPluginSchema);
    const Examination examination = examinePlugin(fileName);
    QStringList bad;
    for (const Finding &finding : examination.findings) {
        output.write(
            {{"what", jsonText(finding.check)}, {"good", isGood(finding)}, {"text", jsonText(finding.text)}},
            findingLine(finding));
        if (!isGood(finding))
            bad << finding.check;
    }
    output.setField("driver", examination.driver);
    if (!examination.driverLines.isEmpty())
        output.writeText("\nThe driver says of itself:");
    for (const QString &line : examination.driverLines)
        output.writeText("  " + line);
    output.finish();
    if (!bad.isEmpty())
        throw Failure(ExitCode::PluginUnusable, fileName + ": not as a panel needs it: " + bad.join(", "),
                      "the lines with ! tell what is missing or wrong");
    return int(ExitCode::Success);
}

} // namespace

void declarePlugin(CLI::App &app, CommandLine &line)
{
    const auto file = std::make_shared<QString>();
    CLI::App *plugin = addCommand(app, line, "plugin", "Examine a library: is it a plug-in for a panel?",
                                  [file](const Options &options) { return examine(options, *file); });
    addText(*plugin, "file", *file, "FILE", "The library, for this machine or another");
    setFooter(*plugin, kPluginFooter,
              {"s7ppi plugin ./libs7_200_ppi.so", "s7ppi plugin --json build/arm/lib/libs7_200_ppi.so"});
}

} // namespace host
