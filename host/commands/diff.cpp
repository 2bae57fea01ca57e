// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/filled.h"
#include "host/base/messages.h"
#include "host/base/outcome.h"
#include "host/cli/command_line.h"
#include "host/commands/plan_options.h"
#include "host/commands/progress_notes.h"
#include "host/commands/raw_addresses.h"
#include "host/driver/connection.h"
#include "host/driver/plan_reader.h"
#include "host/dump/difference_text.h"
#include "host/dump/dump_difference.h"
#include "host/dump/dump_file.h"
#include "host/items/memory_range.h"
#include "host/items/tag_file.h"
#include "host/output/output.h"
#include "host/output/progress.h"
#include "host/text/number_text.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace host {

namespace {

const Schema kDiffSchema = {
    "diff",
    1,
    "differences",
    {"name", "address", "last", "type", "index", "old", "new", "unit", "only", "error"}};

const char kDiffFooter[] = R"(
Two dumps are compared with each other, the first one as the old one; one is compared with the
controller, of which no more is read than the dump holds, and to which nothing is written.

Memory that a tag of an @FILE covers is told as the tag's values, the rest by its addresses.
What only one of the dumps has is told as a range.

--ignore may be given several times. It takes a range, VB0..VB9, or what read takes: V10.3,
VD20, or @FILE for all that its tags cover.

The exit code is 0 when nothing differs, and 8 when something does.)";

struct DiffOptions
{
    QStringList files;   // of dumps, and @FILE
    QStringList ignored; // ranges and items
    bool hex = false;
    PlanOptions plan;
};

// One of the two that are compared.
struct Side
{
    QString name;
    Dump dump;
};

// What was read of the controller, and what stopped that before all was.
struct ControllerReading
{
    Dump dump; // of the whole range; bytes that were not read are 0
    std::vector<Item> blocks;
    std::vector<std::pair<int, std::chrono::system_clock::time_point>> times; // of the bytes up to an offset
    std::optional<Failure> failure;
    std::exception_ptr stop; // the failure, or Ctrl-C
};

// Texts of --ignore with what each of them means.
using Ignored = std::vector<std::pair<QString, std::vector<Item>>>;

Ignored parseIgnored(const QStringList &texts, Outcome &outcome)
{
    Ignored ignored;
    for (const QString &text : texts)
        ignored.emplace_back(text, itemsOf(parseTags({text}, outcome)));
    return ignored;
}

// Whether an item is of the controller that the old dump is of.
bool isOf(const Dump &dump, const Item &item)
{
    return item.station.value_or(dump.station) == dump.station;
}

ComparisonRules rulesFor(const Dump &before, const std::vector<Tag> &tags, const Ignored &ignored, bool hex)
{
    ComparisonRules rules;
    rules.asDigits = hex;
    for (const Tag &tag : tags)
        if (isOf(before, tag.item))
            rules.tags.push_back(tag);
    for (const auto &[text, items] : ignored)
        for (const Item &item : items)
            if (isOf(before, item))
                rules.ignored.push_back(item);
    return rules;
}

void noteSimulated(const Side &side)
{
    if (side.dump.isSimulated)
        reportNote(side.name + " is of a simulated controller");
}

// What is named in vain is most likely named wrongly.
void noteUseless(const Ignored &ignored, const Side &before, const Side &after)
{
    for (const auto &[text, items] : ignored)
        if (std::none_of(items.begin(), items.end(), [&before, &after](const Item &item) {
                return isIn(before.dump.range, item) || isIn(after.dump.range, item);
            }))
            reportNote("--ignore " + text + " leaves nothing out: it lies elsewhere");
}

void noteOutside(const std::vector<Tag> &outside, size_t count)
{
    if (!outside.empty())
        reportNote(filled("tags of memory that is not compared: %1 of %2, %3%4", int(outside.size()),
                          int(count), outside.front().label(), outside.size() > 1 ? " and others" : ""));
}

QString differenceText(const DumpDifferences &found, const Side &before, const Side &after)
{
    QStringList texts;
    if (found.differentSize > 0)
        texts << filled("%1 of %2 bytes", found.differentSize, found.comparedSize);
    for (const auto &[ranges, name] :
         {std::make_pair(found.onlyBefore, before.name), std::make_pair(found.onlyAfter, after.name)})
        if (!ranges.empty())
            texts << filled("%1 only in %2", counted(totalSize(ranges), "byte"), name);
    return texts.join(", ");
}

// Fails when something differs.
void conclude(const DumpDifferences &found, const Side &before, const Side &after)
{
    if (!found.isSame())
        throw Failure(
            ExitCode::Different,
            filled("%1 and %2 differ: %3", before.name, after.name, differenceText(found, before, after)),
            "--ignore RANGE leaves out what may differ, as counters and clocks");
    reportNote(filled("%1 and %2 are the same: %3 compared", before.name, after.name,
                      counted(found.comparedSize, "byte")));
}

// The members with which the record of a difference begins.
using JsonOriginOf = std::function<Json(const Difference &)>;

void putDifferences(Output &output, const DumpDifferences &found, const JsonOriginOf &originOf)
{
    output.setField("bytes", found.comparedSize);
    output.setField("different", found.differentSize);
    const DifferenceLines lines(found.differences);
    for (const Difference &difference : found.differences) {
        Json record = originOf(difference);
        record.update(differenceRecord(difference));
        output.write(record, lines.text(difference));
    }
}

void putRanges(Output &output, const std::vector<Item> &ranges, const char *side, const QString &name)
{
    for (const Item &range : ranges) {
        Json record = rangeRecord(range);
        record["only"] = side;
        output.write(record, rangeText(range) + " only in " + name);
    }
}

class DiffCommand
{
public:
    DiffCommand(const Options &options_, const DiffOptions &own_, const Side &before_,
                const std::vector<Tag> &tags, const Ignored &ignored_)
        : options(options_), own(own_), before(before_), ignored(ignored_),
          rules(rulesFor(before.dump, tags, ignored, own.hex))
    {
    }

    void compareWith(const Side &after);
    void compareWithController();

private:
    Schema schemaFor(bool isSimulated) const;
    ControllerReading read(Connection &connection) const;
    void readParts(Connection &connection, ControllerReading &reading) const;
    DumpDifferences compare(const Side &after, const std::vector<Item> &unread) const;
    void putUnread(Output &output, const Origin &origin, const ControllerReading &reading) const;

    const Options &options;
    const DiffOptions &own;
    const Side &before;
    const Ignored &ignored;
    ComparisonRules rules;
};

Schema DiffCommand::schemaFor(bool isSimulated) const
{
    Schema schema = kDiffSchema;
    schema.isSimulated = isSimulated || before.dump.isSimulated;
    return schema;
}

DumpDifferences DiffCommand::compare(const Side &after, const std::vector<Item> &unread) const
{
    noteUseless(ignored, before, after);
    ComparisonRules whole = rules;
    whole.unread = unread;
    DumpDifferences found = compareDumps(before.dump, after.dump, whole);
    noteOutside(found.outsideTags, rules.tags.size());
    return found;
}

void DiffCommand::compareWith(const Side &after)
{
    Output output(options, schemaFor(after.dump.isSimulated));
    noteSimulated(before);
    noteSimulated(after);
    if (before.dump.station != after.dump.station)
        reportNote(filled("%1 is of station %2, %3 of station %4", before.name, before.dump.station,
                          after.name, after.dump.station));
    const DumpDifferences found = compare(after, {});
    output.setField("oldFile", jsonText(before.name));
    output.setField("newFile", jsonText(after.name));
    output.setField("complete", true);
    putDifferences(output, found, [](const Difference &) { return Json::object(); });
    putRanges(output, found.onlyBefore, "old", before.name);
    putRanges(output, found.onlyAfter, "new", after.name);
    output.finish();
    conclude(found, before, after);
}

void DiffCommand::readParts(Connection &connection, ControllerReading &reading) const
{
    const Item &range = before.dump.range;
    const std::vector<Item> parts = partsWithout(range, rules.ignored);
    Progress progress(options,
                      {connection.marked(rangeText(range)) + " compared", "bytes", totalSize(parts), 0, 0});
    const Connection::MessageRedirect notes = notesAbove(progress, connection);
    const TakeBlock take = [&](const Item &block, const QByteArray &data) {
        const int offset = offsetIn(range, block);
        reading.dump.data.replace(offset, int(data.size()), data);
        reading.blocks.push_back(block);
        reading.times.emplace_back(offset + int(data.size()), std::chrono::system_clock::now());
        progress.advance(block.size());
        return true;
    };
    for (const Item &part : parts)
        readRange(connection, part, own.plan.limits(), take);
    progress.finish();
}

// What stops the reading is kept: what was read until then is compared all the same.
ControllerReading DiffCommand::read(Connection &connection) const
{
    ControllerReading reading;
    reading.dump = before.dump;
    reading.dump.station = connection.stationId();
    reading.dump.data.fill(0);
    try {
        readParts(connection, reading);
    } catch (const Failure &failure) {
        reading.failure = failure;
        reading.stop = std::current_exception();
    } catch (...) {
        reading.stop = std::current_exception();
    }
    return reading;
}

// Tells what is not compared; programs get a record for it when there is a failure to name.
void DiffCommand::putUnread(Output &output, const Origin &origin, const ControllerReading &reading) const
{
    const std::vector<Item> parts = partsWithout(before.dump.range, rules.ignored);
    reportNote(filled("%1 of %2 bytes were read and compared", totalSize(reading.blocks), totalSize(parts)));
    if (!reading.failure)
        return;
    std::vector<Item> known = rules.ignored;
    known.insert(known.end(), reading.blocks.begin(), reading.blocks.end());
    for (const Item &range : partsWithout(before.dump.range, known)) {
        Json record = originFields(origin);
        record.update(rangeRecord(range));
        record["error"] = jsonText(reading.failure->text());
        record["cause"] = jsonText(causeWord(reading.failure->cause()));
        output.writeUnlessText(record);
    }
}

void DiffCommand::compareWithController()
{
    Output output(options, schemaFor(options.isSimulated()));
    Connection connection(options);
    if (!connection.isSimulated())
        noteSimulated(before);
    if (before.dump.station != connection.stationId())
        reportNote(filled("%1 is of station %2, it is compared with station %3", before.name,
                          before.dump.station, connection.stationId()));
    const ControllerReading reading = read(connection);
    const Side after = {connection.marked("the controller"), reading.dump};
    const DumpDifferences found = compare(after, partsWithout(before.dump.range, reading.blocks));
    output.setField("oldFile", jsonText(before.name));
    output.setField("complete", !reading.stop);
    putDifferences(output, found, [&](const Difference &difference) {
        const auto isRead = [&](const auto &time) { return time.first >= difference.end; };
        const auto time = std::find_if(reading.times.begin(), reading.times.end(), isRead);
        return originFields(connection.origin(std::nullopt, time->second));
    });
    if (reading.stop)
        putUnread(output, connection.origin(std::nullopt), reading);
    output.finish();
    if (reading.stop)
        std::rethrow_exception(reading.stop);
    conclude(found, before, after);
}

int diff(const Options &options, const DiffOptions &own)
{
    QStringList dumps;
    QStringList tagFiles;
    for (const QString &text : own.files)
        if (isTagReference(text))
            tagFiles << text;
        else
            dumps << text;
    if (dumps.isEmpty() || dumps.size() > 2)
        throw Failure(ExitCode::Usage,
                      dumps.isEmpty() ? QString("no dump is named")
                                      : filled("%1 files cannot be compared at once", int(dumps.size())),
                      "name two dumps, or one to compare it with the controller; @FILE names tags");
    if (dumps.size() == 1)
        refuseRawAddresses(options, "diff");
    Outcome outcome;
    const std::vector<Tag> tags = parseTags(tagFiles, outcome);
    const Ignored ignored = parseIgnored(own.ignored, outcome);
    if (!outcome.isSuccess())
        return outcome.exitCode();
    const Side before = {dumps.first(), readDump(dumps.first())};
    DiffCommand command(options, own, before, tags, ignored);
    if (dumps.size() == 2)
        command.compareWith({dumps.last(), readDump(dumps.last())});
    else
        command.compareWithController();
    return int(ExitCode::Success);
}

} // namespace

void declareDiff(CLI::App &app, CommandLine &line)
{
    const auto own = std::make_shared<DiffOptions>();
    CLI::App *command = addCommand(app, line, "diff", "Compare dumps, or a dump with the controller",
                                   [own](const Options &options) { return diff(options, *own); });
    require(*addTexts(*command, "files", own->files, "FILE",
                      "One or two that s7ppi dump has made; @FILE or @FILE:NAME for tags"));
    addTexts(*command, "--ignore", own->ignored, "RANGE", "Leave out memory that may differ, as VB0..VB9");
    addFlag(*command, "--hex", own->hex, "Show hexadecimal digits where no tag names the memory");
    addBlockOption(*command, own->plan);
    setFooter(*command, kDiffFooter,
              {"s7ppi diff press.dump", "s7ppi diff monday.dump friday.dump @press-tags.csv",
               "s7ppi diff press.dump --ignore VB0..VB9 --ignore VD200"});
}

} // namespace host
