// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/failure.h"
#include "host/cli/command_line.h"
#include "host/diagnosis/plugin_description.h"
#include "host/driver/dry_run.h"
#include "host/driver/plugin.h"
#include "host/driver/read_plan.h"
#include "host/driver/write_plan.h"
#include "host/items/area.h"
#include "host/items/item.h"
#include "host/output/output.h"

#include <QString>
#include <QStringList>

namespace host {

namespace {

// The widths in which an area of bits can be named, besides its bits.
const char kWidths[] = {'B', 'W', 'D'};

// The first addresses of an area in every way in which it can be named.
QStringList firstAddresses(const Area &area)
{
    if (!area.hasBits())
        return {area.letters + '0'};
    QStringList addresses = {area.letters + "0.0"};
    for (const char width : kWidths)
        addresses << area.letters + width + '0';
    return addresses;
}

Json areaFields(const Area &area, const DryRun &frames)
{
    Json addresses = Json::array();
    for (const QString &text : firstAddresses(area)) {
        const Item item = parseItem(text);
        addresses.push_back({{"first", jsonText(text)},
                             {"last", jsonText(lastAddress(item.address).text())},
                             {"type", jsonText(typeName(item.type))},
                             {"writable", !frames.writeRefusal(item)}});
    }
    return {{"area", jsonText(area.letters)}, {"name", jsonText(area.name)}, {"addresses", addresses}};
}

// What can be asked of the controllers that this driver is for.
Json memoryFields(const Options &options)
{
    const DryRun frames(options);
    Json memory = {{"areas", Json::array()}, {"types", Json::array()}};
    for (const Area &area : areas())
        memory["areas"].push_back(areaFields(area, frames));
    for (const QString &type : typeTexts())
        memory["types"].push_back(jsonText(type));
    memory["limits"] = {{"firstStation", kFirstStation + 1},
                        {"lastStation", kLastStation},
                        {"readBytes", kFrameData},
                        {"writeBytes", kWrittenFrameData}};
    return memory;
}

int describe(const Options &options)
{
    const Plugin plugin(findPlugin(options));
    Output output(options, {"describe", 1, {}, {}, false});
    Description description;
    addIdentity(description, plugin);
    addDefaults(description, plugin);
    addSizes(description, plugin);
    Json fields = description.fields();
    if (!plugin.isOtherDriver())
        fields.update(memoryFields(options));
    output.write(fields, description.lines().join('\n'));
    output.finish();
    return int(ExitCode::Success);
}

} // namespace

void declareDescribe(CLI::App &app, CommandLine &line)
{
    CLI::App *command =
        addCommand(app, line, "describe", "Show what the plug-in says about itself", describe);
    setFooter(
        *command, QString(),
        {"s7ppi describe", "s7ppi describe --json", "s7ppi --plugin ./libweighing_terminal.so describe"});
}

} // namespace host
