// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/files_in_use.h"
#include "host/base/filled.h"
#include "host/base/interruption.h"
#include "host/base/messages.h"
#include "host/cli/command_line.h"
#include "host/commands/plan_options.h"
#include "host/commands/progress_notes.h"
#include "host/commands/raw_addresses.h"
#include "host/driver/connection.h"
#include "host/driver/plan_reader.h"
#include "host/dump/partial_dump.h"
#include "host/items/memory_range.h"
#include "host/output/output.h"
#include "host/output/progress.h"
#include "host/output/sink.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace host {

namespace {

struct DumpOptions
{
    QString range;
    bool restart = false; // forget what an earlier run has read
    PlanOptions plan;
};

const char kDumpFooter[] = R"(
FIRST and LAST are addresses of one area, LAST or its number alone: VB0..VB4095  MB0..31
VW0..VW98  AIW0..62  T0..T255. Both are read.

The file is text, 16 bytes a line, or with --format raw the bytes alone. It appears when
all is read. Until then FILE.part holds what was read: after Ctrl-C or an error the same
command goes on where it stopped, also with another LAST. s7ppi load writes the file back.)";

bool isRaw(const OutputOptions &options)
{
    const QString unasked = options.usualFormat == "raw" ? "raw" : "text";
    const QString format = options.format.value_or(unasked);
    noteUnusedFormat(options, format);
    if (format != "text" && format != "raw")
        throw Failure(ExitCode::Usage, "dump has no " + format + " form", "choose --format text or raw");
    return format == "raw";
}

QString partName(const QString &name)
{
    return name + ".part";
}

// Returns the name of the file, after a look whether it can be written: that should not turn out only after
// the long work.
QString checkedFile(const OutputOptions &options, const Item &range)
{
    if (!options.output || *options.output == "-")
        throw Failure(ExitCode::Usage, "a dump needs a file",
                      filled("name it with -o FILE; s7ppi read '%1:hex*%2' prints the same memory",
                             range.address.text(), range.count));
    sinkFor(options);
    QString name = *options.output;
    claimFile(partName(name), FileRole::Unfinished);
    return name;
}

QString sizesOf(const PartialDump &part)
{
    return filled("%1 of %2 bytes", part.savedSize(), part.dump().range.size());
}

void tellEarlierPart(const PartialDump &part)
{
    const QString time = part.earlierTime().toString("yyyy-MM-dd HH:mm:ss");
    reportNote(QString("%1 of %2 has %3 from an earlier run; --restart begins anew")
                   .arg(part.name(), time, sizesOf(part)));
}

// Tells what is kept of a dump that was not finished, and what the user can do to go on from there.
void leave(PartialDump &part, Progress &progress, const QString &what)
{
    part.removeIfEmpty();
    if (part.savedSize() == 0)
        progress.note(sizesOf(part) + " were read, no part of the dump is kept");
    else
        progress.note(part.name() + " has " + sizesOf(part) + "; " + what + " goes on from there");
}

// Reads the rest of the range.
void readRest(Connection &connection, PartialDump &part, Progress &progress, const PlanLimits &limits)
{
    const Item &range = part.dump().range;
    const int index = int(part.dump().data.size()) / range.valueSize();
    if (index == range.count)
        return;
    readRange(connection, partOf(range, index, range.count - index), limits,
              [&](const Item &block, const QByteArray &data) {
                  part.append(data);
                  progress.advance(block.size());
                  return true;
              });
}

void readAll(Connection &connection, PartialDump &part, const OutputOptions &options,
             const PlanLimits &limits)
{
    const Dump &dump = part.dump();
    const qint64 before = dump.data.size();
    if (before > 0)
        tellEarlierPart(part);
    Progress progress(options,
                      {connection.marked(rangeText(dump.range)), "bytes", dump.range.size(), before, before});
    const Connection::MessageRedirect notes = notesAbove(progress, connection);
    try {
        readRest(connection, part, progress, limits);
    } catch (const Failure &failure) {
        const bool isRefused = failure.code() == ExitCode::Refused;
        leave(part, progress, isRefused ? "a range that ends earlier" : "the same command");
        throw;
    } catch (...) {
        leave(part, progress, "the same command");
        throw;
    }
    progress.finish();
}

int dumpRange(const Options &options, const DumpOptions &own)
{
    refuseRawAddresses(options, "dump");
    const Item range = parseRange(own.range);
    const bool raw = isRaw(options);
    const QString name = checkedFile(options, range);
    Connection connection(options);
    PartialDump part(partName(name), {range, connection.stationId(), connection.portLabel()}, own.restart);
    readAll(connection, part, options, own.plan.limits());

    Dump dump = part.dump();
    dump.isSimulated = connection.isSimulated();
    const std::unique_ptr<OutputSink> sink = sinkFor(options);
    sink->put(raw ? dump.data : dumpText(dump));
    sink->commit();
    part.remove();
    return int(ExitCode::Success);
}

} // namespace

void declareDump(CLI::App &app, CommandLine &line)
{
    const auto own = std::make_shared<DumpOptions>();
    CLI::App *dump = addCommand(app, line, "dump", "Read a stretch of memory into a file",
                                [own](const Options &options) { return dumpRange(options, *own); });
    addText(*dump, "range", own->range, "RANGE", "FIRST..LAST, as VB0..VB4095 or MB0..31; -o names the file");
    addFlag(*dump, "--restart", own->restart, "Begin anew, whatever an earlier run has read");
    addBlockOption(*dump, own->plan);
    setFooter(*dump, kDumpFooter,
              {"s7ppi dump VB0..VB4095 -o press.dump", "s7ppi dump MB0..31 --format raw -o flags.bin"});
}

} // namespace host
