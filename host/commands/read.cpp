// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/outcome.h"
#include "host/cli/command_line.h"
#include "host/commands/item_run.h"
#include "host/driver/connection.h"
#include "host/driver/read_plan.h"
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

const Schema kSchema = {
    "read", 1, "items", {"name", "address", "type", "index", "value", "unit", "error"}, true};

const char kFooter[] = R"(

@FILE stands for the items of a file with lines as in a spreadsheet, the first of which names
the columns: name,address,type,scale,offset,unit. What is shown is value * scale + offset.
@FILE:NAME is one of them.)";

class ReadCommand
{
public:
    ReadCommand(const Options &options, const std::vector<Tag> &tags_)
        : tags(tags_), output(options, withSource(kSchema, options)), lines(tags), connection(options)
    {
    }

    int run();

private:
    void read(const Tag &tag);

    const std::vector<Tag> &tags;
    Output output;
    TextLines lines;
    Connection connection;
};

int ReadCommand::run()
{
    return runItems(tags, output, [this](int index) { read(tags[size_t(index)]); });
}

void ReadCommand::read(const Tag &tag)
{
    const QByteArray data = readItem(connection, tag.item);
    if (output.format() == Format::Raw) {
        output.writeRaw(data);
        return;
    }
    const std::vector<Value> values = decodeValues(tag.item, data);
    output.write(tagRecord(tag, values), lines.line(tag, values));
}

// All texts must be right before the first item is read.
int readItems(const Options &options, const QStringList &texts)
{
    Outcome outcome;
    const std::vector<Tag> tags = parseTags(texts, outcome);
    if (!outcome.isSuccess())
        return outcome.exitCode();
    return ReadCommand(options, tags).run();
}

} // namespace

void declareRead(CLI::App &app, CommandLine &line)
{
    const auto items = std::make_shared<QStringList>();
    CLI::App *read = addCommand(app, line, "read", "Read items once, one line each",
                                [items](const Options &options) { return readItems(options, *items); });
    addItems(*read, *items,
             "ADDRESS[:TYPE][*COUNT], as VB100 VW10:i16*4 V10.3*8 VB20:str*16, or @FILE[:NAME]");
    setFooter(*read, QString(kTypesFooter) + kFooter);
}

} // namespace host
