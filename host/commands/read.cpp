// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/outcome.h"
#include "host/cli/command_line.h"
#include "host/commands/item_run.h"
#include "host/commands/plan_options.h"
#include "host/commands/raw_addresses.h"
#include "host/driver/connection.h"
#include "host/driver/plan_reader.h"
#include "host/items/tag.h"
#include "host/items/tag_file.h"
#include "host/output/output.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace host {

namespace {

const Schema kReadSchema = {
    "read", 1, "items", {"name", "address", "type", "index", "value", "unit", "error"}, true};

const char kReadFooter[] = R"(

FIRST..LAST, as VB0..VB15, stands for all from the first address to the last.

@STATION asks another station than --station does: VB100@3 VW10:i16*4@3.

@FILE stands for the items of a file with lines as in a spreadsheet, the first of which names
the columns: name,address,type,scale,offset,unit,station,interval,access,min,max,deadband.
What is shown is value * scale + offset; the interval is for watch, access, min and max are for
write and load. @FILE:NAME is one of them.

Neighbours are read together, with the gap between them, where that is quicker than asking
twice; s7ppi check shows the requests. A request that the controller refuses is taken apart
into its items.)";

struct ReadOptions
{
    QStringList items;
    PlanOptions plan;
};

class ReadCommand
{
public:
    ReadCommand(const Options &options, const std::vector<Tag> &tags_, const PlanLimits &limits)
        : tags(tags_), output(options, withSource(withStation(kReadSchema, hasStations(tags)), options)),
          lines(tags), connection(options), reader(connection, itemsOf(tags), limits)
    {
    }

    int run();

private:
    void read(int index);

    const std::vector<Tag> &tags;
    Output output;
    TextLines lines;
    Connection connection;
    PlanReader reader;
};

int ReadCommand::run()
{
    return runItems(
        tags, [this](const Tag &tag) { return connection.origin(tag.item.station); }, output,
        [this](int index) { read(index); });
}

void ReadCommand::read(int index)
{
    const Tag &tag = tags[size_t(index)];
    const QByteArray data = reader.read(index);
    if (output.format() == Format::Raw) {
        output.writeRaw(data);
        return;
    }
    const std::vector<Value> values = decodeValues(tag.item, data);
    output.write(tagRecord(connection.origin(tag.item.station, reader.reading(index).time), tag, values),
                 lines.text(tag, values));
}

// All texts must be right before the first item is read.
int readItems(const Options &options, const ReadOptions &own)
{
    Outcome outcome;
    const std::vector<Tag> tags = parseTags(own.items, outcome, notationOf(options));
    if (!outcome.isSuccess())
        return outcome.exitCode();
    return ReadCommand(options, tags, own.plan.limits()).run();
}

} // namespace

void declareRead(CLI::App &app, CommandLine &line)
{
    const auto own = std::make_shared<ReadOptions>();
    CLI::App *read = addCommand(app, line, "read", "Read items once, one line each",
                                [own](const Options &options) { return readItems(options, *own); });
    addItems(*read, own->items,
             "ADDRESS[:TYPE][*COUNT][@STATION], as VB100 VB0..VB15 VW10:i16*4 V10.3*8, or @FILE[:NAME]");
    addPlanOptions(*read, own->plan);
    setFooter(*read, QString(kTypesFooter) + kReadFooter + kRawFooter,
              {"s7ppi read VB100 VW102:i16 T37", "s7ppi read V10.3*8 VB20:str*16 VD4:f32@3",
               "s7ppi read --json @press-tags.csv"});
}

} // namespace host
