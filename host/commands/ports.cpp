// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/base/messages.h"
#include "host/base/outcome.h"
#include "host/cli/command_line.h"
#include "host/output/output.h"
#include "host/port/port_details.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace host {

namespace {

constexpr int kPortLabelWidth = 10;

QString line(const char *label, const QString &text)
{
    return text.isEmpty() ? QString()
                          : filled("  %1 %2", QString(label).leftJustified(kPortLabelWidth), text);
}

QString latencyText(const PortDetails &port)
{
    return port.latency ? QString("%1 ms").arg(*port.latency) : QString();
}

QString textOf(const PortDetails &port)
{
    QStringList lines = {port.device,
                         line("by id", port.byId),
                         line("adapter", adapterText(port)),
                         line("rights", rightsText(port)),
                         line("in use by", holderText(port.holders)),
                         line("latency", latencyText(port))};
    for (const QString &advice : portAdvice(port))
        lines << line("advice", advice);
    lines.removeAll(QString());
    return lines.join('\n');
}

// The holders are a text here: their numbers and their names would be two lists in one row of a table.
Json recordOf(const PortDetails &port)
{
    return {{"port", jsonText(port.device)},
            {"byId", jsonText(port.byId)},
            {"driver", jsonText(port.driver)},
            {"description", jsonText(port.description)},
            {"maker", jsonText(port.maker)},
            {"serialNumber", jsonText(port.serialNumber)},
            {"usbId", jsonText(port.usbId)},
            {"group", jsonText(port.group)},
            {"readable", port.isReadable},
            {"writable", port.isWritable},
            {"holders", jsonText(holderText(port.holders))},
            {"latency", port.latency ? Json(*port.latency) : Json()},
            {"advice", jsonText(portAdvice(port).join("; "))}};
}

QStringList chosenPorts(const QStringList &names)
{
    return names.isEmpty() ? serialPorts() : names;
}

// Ports that do not exist are reported, the others listed.
int listPorts(const OutputOptions &options, const QStringList &names)
{
    Output output(options, {"ports",
                            1,
                            "ports",
                            {"port", "byId", "driver", "description", "maker", "serialNumber", "usbId",
                             "group", "readable", "writable", "holders", "latency", "advice"}});
    Outcome outcome;
    const QStringList ports = chosenPorts(names);
    for (const QString &name : ports)
        outcome.attempt("ports", [&] {
            const PortDetails port = portDetails(name);
            output.write(recordOf(port), textOf(port));
        });
    if (ports.isEmpty())
        reportNote(QString("there are no serial ports: plug in an adapter, or use --port ") + kSimulatorPort);
    output.finish();
    return outcome.exitCode();
}

} // namespace

void declarePorts(CLI::App &app, CommandLine &line)
{
    const auto names = std::make_shared<QStringList>();
    CLI::App *ports = addCommand(app, line, "ports", "List serial ports, their adapters and who uses them",
                                 [names](const Options &options) { return listPorts(options, *names); });
    addTexts(*ports, "ports", *names, "PORT", "These instead of all that have hardware behind them");
    setFooter(*ports, "No port is opened. Programs of other users are seen by root only.",
              {"s7ppi ports", "s7ppi ports /dev/ttyUSB0 --json"});
}

} // namespace host
