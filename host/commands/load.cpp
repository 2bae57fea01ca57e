// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/files.h"
#include "host/base/files_in_use.h"
#include "host/base/filled.h"
#include "host/base/messages.h"
#include "host/base/outcome.h"
#include "host/base/question.h"
#include "host/cli/command_line.h"
#include "host/commands/dry_run_output.h"
#include "host/commands/plan_options.h"
#include "host/commands/progress_notes.h"
#include "host/commands/raw_addresses.h"
#include "host/commands/write_conditions.h"
#include "host/driver/connection.h"
#include "host/driver/dry_run.h"
#include "host/driver/plan_reader.h"
#include "host/driver/write_plan.h"
#include "host/dump/dump_file.h"
#include "host/dump/load_state.h"
#include "host/items/change.h"
#include "host/items/memory_range.h"
#include "host/items/read_back.h"
#include "host/items/tag_file.h"
#include "host/output/progress.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace host {

namespace {

struct LoadOptions
{
    QString file;
    QStringList tagFiles;          // what they say of writing is kept
    std::optional<QString> target; // an address instead of the one in the file
    bool verify = false;           // read everything back and compare it
    bool dryRun = false;           // print the frames on stdout and send nothing
    bool restart = false;          // forget how far an earlier run came
    bool confirm = false;          // show what changes, and ask
    PlanOptions plan;              // of what is read
};

const char kLoadFooter[] = R"(
FILE is what s7ppi dump makes, or with --format raw and --to plain bytes. It is checked as a
whole before anything is sent.

Until all is written FILE.loading tells how far it came. After Ctrl-C, an error or a kill the
same command goes on from there: what is written is read back first, and from a difference on
it is written anew.
--verify compares everything when all is written.

With tag files nothing is written when the bytes reach into a tag whose access is ro, or set one
outside its min and max; each such tag is told.
--confirm reads everything first, shows on stderr which bytes change, and writes only when y is
typed; any other answer ends with 9. It needs a terminal.)";

// Bytes and the place where they go.
struct Load
{
    Item target;
    QByteArray data;
    std::optional<int> station; // where they came from, if known
    bool isSimulated = false;   // from the simulated controller
};

// Returns as many elements, from an address on, as the data fill.
Item targetAt(const QString &address, const QByteArray &data)
{
    try {
        const Item first = rangeFrom(parseAddress(address), 1);
        if (data.size() % first.valueSize() != 0)
            throw Failure(ExitCode::Usage,
                          QString("%1 bytes are no whole number of elements").arg(data.size()),
                          "choose an address of bytes, as VB0");
        return rangeFrom(first.address, int(data.size()) / first.valueSize());
    } catch (const Failure &failure) {
        throw failure.about(address);
    }
}

Load rawLoad(const LoadOptions &own)
{
    if (!own.target)
        throw Failure(ExitCode::Usage, "plain bytes do not say where they belong",
                      "name the first address with --to ADDRESS");
    const QByteArray data = readFile(own.file, "check the file's name and rights", kLargestDump);
    if (data.isEmpty())
        throw Failure(ExitCode::Usage, own.file + " is empty", "name a file that has bytes in it");
    return {targetAt(*own.target, data), data, std::nullopt};
}

Load loadOf(const OutputOptions &options, const LoadOptions &own)
{
    const QString format = options.format.value_or("text");
    if (format == "raw")
        return rawLoad(own);
    if (format != "text" && !own.dryRun) // then it is the form of the frames
        throw Failure(ExitCode::Usage, "load reads no " + format, "choose --format text or raw");
    const Dump dump = readDump(own.file);
    return {own.target ? targetAt(*own.target, dump.data) : dump.range, dump.data, dump.station,
            dump.isSimulated};
}

// Elements that are not what was written, in all the blocks that were compared.
struct Differences
{
    int count = 0;
    int offset = 0; // of the first, in bytes
    QString first;  // "VB5 reads 00 and not 1f"
};

// Adds the differences of a block, which lies so many bytes behind the beginning.
void addDifferences(Differences &all, const Item &block, int offset, const ValueDifferences &ofBlock)
{
    if (all.count == 0 && ofBlock.count > 0) {
        all.offset = offset + ofBlock.index * block.valueSize();
        all.first = elementText(block, ofBlock.index) + " reads " + ofBlock.first;
    }
    all.count += ofBlock.count;
}

Failure failureOf(const Differences &differences)
{
    const int others = differences.count - 1;
    return notAsWritten(differences.first +
                        (others ? QString(", and %1 more differ").arg(others) : QString()));
}

// A load under way: what was written, and what was found to be so.
class LoadCommand
{
public:
    LoadCommand(Connection &connection_, const Load &load_, const LoadState &state_,
                const OutputOptions &options_, const PlanLimits &limits_)
        : connection(connection_), load(load_), state(state_), options(options_), limits(limits_)
    {
    }

    bool isConfirmed() const;
    void write(bool restart);
    void verify();

private:
    void goOn();
    Differences compareEarlier(const Item &earlier) const;
    void writeRest(Progress &progress);
    void writeBlock(const WriteRequest &request, const Item &block);
    Differences compare(const Item &range, Progress &progress, bool onlyFirst) const;
    QByteArray readAll() const;
    void keepState();
    int elementOf(int offset) const { return offset / load.target.valueSize(); }

    Connection &connection;
    const Load &load;
    const LoadState &state;
    const OutputOptions &options;
    PlanLimits limits;
    int written = 0;
    std::optional<Item> doubtful; // written or not: it was sent, and no answer tells
};

bool LoadCommand::isConfirmed() const
{
    const ChangeTable changes = rangeChanges(load.target, readAll(), load.data);
    const QString place = filled("%1 at %2, station %3", rangeText(load.target),
                                 connection.marked(connection.portLabel()), connection.stationId());
    return isWriteConfirmed(place, changes, "bytes");
}

// Goes on behind what an earlier run wrote, as far as that is still there: another controller may be behind
// the port by now, or its program may have written in between.
void LoadCommand::goOn()
{
    const int count = elementOf(state.written());
    if (count == 0)
        return;
    const Item earlier = partOf(load.target, 0, count);
    reportNote(filled("%1 of %2 bytes were written by an earlier run; --restart begins anew", earlier.size(),
                      load.data.size()));
    const Differences differences = compareEarlier(earlier);
    written = differences.count > 0 ? differences.offset : earlier.size();
    if (differences.count > 0)
        reportNote(differences.first + "; from there on it is written anew");
}

Differences LoadCommand::compareEarlier(const Item &earlier) const
{
    Progress progress(options,
                      {connection.marked(rangeText(earlier)) + " compared", "bytes", earlier.size(), 0, 0});
    const Connection::MessageRedirect notes = notesAbove(progress, connection);
    try {
        return compare(earlier, progress, true);
    } catch (...) {
        progress.note("nothing more is written; the same command begins with the comparison");
        throw;
    }
}

void LoadCommand::write(bool restart)
{
    if (!restart)
        goOn();
    if (written == int(load.data.size()))
        return;
    Progress progress(
        options, {connection.marked(rangeText(load.target)), "bytes", load.data.size(), written, written});
    const Connection::MessageRedirect notes = notesAbove(progress, connection);
    try {
        writeRest(progress);
    } catch (...) {
        progress.clear();
        keepState();
        throw;
    }
    progress.finish();
}

// A block that failed is written again when the load goes on.
void LoadCommand::writeBlock(const WriteRequest &request, const Item &block)
{
    try {
        connection.write(request.command, request.data);
    } catch (const Failure &failure) {
        if (failure.code() != ExitCode::Refused)
            doubtful = block;
        throw failure.about(rangeText(block));
    } catch (...) {
        doubtful = block;
        throw;
    }
}

void LoadCommand::writeRest(Progress &progress)
{
    const int index = elementOf(written);
    const Item rest = partOf(load.target, index, load.target.count - index);
    for (const WriteRequest &request : planWrite(rest, load.data.mid(written))) {
        writeBlock(request, partOf(load.target, elementOf(written), request.command.count));
        written += int(request.data.size());
        static_cast<void>(state.save(written)); // whether it could be kept is told when the load is stopped
        progress.advance(request.data.size());
    }
}

void LoadCommand::keepState()
{
    if (doubtful)
        reportNote(rangeText(*doubtful) + " may have been written: no answer tells");
    const QString place = filled("%1 of %2 bytes are written", written, load.data.size());
    if (written == 0)
        reportNote(place);
    else if (state.save(written))
        reportNote(place + "; the same command goes on from there");
    else
        reportNote(place + "; that cannot be kept beside the file, and the same command begins anew");
}

void LoadCommand::verify()
{
    Progress progress(
        options, {connection.marked(rangeText(load.target)) + " read back", "bytes", load.data.size(), 0, 0});
    const Connection::MessageRedirect notes = notesAbove(progress, connection);
    Differences differences;
    try {
        differences = compare(load.target, progress, false);
    } catch (...) {
        progress.clear();
        keepState();
        throw;
    }
    if (differences.count > 0) {
        state.forget();
        throw failureOf(differences);
    }
    progress.finish();
}

Differences LoadCommand::compare(const Item &range, Progress &progress, bool onlyFirst) const
{
    Differences differences;
    int offset = 0;
    readRange(connection, range, limits, [&](const Item &block, const QByteArray &data) {
        const QByteArray wanted = load.data.mid(offset, block.size());
        addDifferences(differences, block, offset, compareValues(block, wanted, data));
        if (onlyFirst && differences.count > 0)
            return false;
        offset += block.size();
        progress.advance(block.size());
        return true;
    });
    return differences;
}

QByteArray LoadCommand::readAll() const
{
    Progress progress(options,
                      {connection.marked(rangeText(load.target)) + " read", "bytes", load.data.size(), 0, 0});
    const Connection::MessageRedirect notes = notesAbove(progress, connection);
    QByteArray bytes;
    readRange(connection, load.target, limits, [&](const Item &block, const QByteArray &data) {
        bytes += data;
        progress.advance(block.size());
        return true;
    });
    return bytes;
}

int dryRunLoad(Options options, const LoadOptions &own, const Load &load)
{
    if (options.format == "raw") // says what the file is
        options.format.reset();
    Output output(options, kFramesSchema);
    const DryRunOutput dryRun(options, output);
    const auto readAll = [&] {
        for (const PlannedRequest &request : planRead(load.target, own.plan.limits()).requests)
            dryRun.read(request);
    };
    if (own.confirm)
        readAll();
    for (const WriteRequest &request : planWrite(load.target, load.data))
        dryRun.write(request);
    if (own.verify)
        readAll();
    output.finish();
    return int(ExitCode::Success);
}

int writeLoad(const Options &options, const LoadOptions &own, const Load &load)
{
    noteUnusedFormat(options, options.format.value_or("text"));
    const QString stateName = own.file + ".loading";
    claimFile(stateName, FileRole::Unfinished);
    Connection connection(options);
    const int station = connection.stationId();
    if (load.station && *load.station != station)
        reportNote(filled("the dump is of station %1, it goes to station %2", *load.station, station));
    if (load.isSimulated && !connection.isSimulated())
        reportNote("the dump is of a simulated controller");
    const LoadState state(stateName, load.target, station, load.data);
    LoadCommand command(connection, load, state, options, own.plan.limits());
    if (own.confirm && !command.isConfirmed()) {
        reportNothingWritten();
        return int(ExitCode::Declined);
    }
    command.write(own.restart);
    if (own.verify)
        command.verify();
    state.forget();
    return int(ExitCode::Success);
}

// Reports whatever the tags of the files have against the load.
void checkLoad(const Options &options, const LoadOptions &own, const Load &load, Outcome &outcome)
{
    for (const QString &text : own.tagFiles)
        if (!isTagReference(text))
            throw Failure(ExitCode::Usage, '"' + text + "\" is a second file to load",
                          "load one file at a time; tag files have an @ in front, as @plant.csv");
    const std::vector<Tag> tags = parseTags(own.tagFiles, outcome);
    if (tags.empty() || !outcome.isSuccess())
        return;
    Tag target(load.target);
    target.name = rangeText(load.target);
    checkTags({{target, load.data}}, tags, DryRun(options).usualStation(), outcome);
}

int loadFile(const Options &options, const LoadOptions &own)
{
    refuseRawAddresses(options, "load");
    if (isTagReference(own.file))
        throw Failure(ExitCode::Usage, '"' + own.file + "\" is a tag file",
                      "name the file to load first, and tag files behind it");
    const Load load = loadOf(options, own);
    Outcome outcome;
    checkLoad(options, own, load, outcome);
    if (!outcome.isSuccess())
        return outcome.exitCode();
    if (own.confirm && !own.dryRun)
        checkTerminal();
    return own.dryRun ? dryRunLoad(options, own, load) : writeLoad(options, own, load);
}

} // namespace

void declareLoad(CLI::App &app, CommandLine &line)
{
    const auto own = std::make_shared<LoadOptions>();
    CLI::App *load = addCommand(app, line, "load", "Write a file of memory to a controller",
                                [own](const Options &options) { return loadFile(options, *own); });
    addText(*load, "file", own->file, "FILE", "What s7ppi dump has made");
    addTexts(*load, "tags", own->tagFiles, "@FILE", "Tag files whose access, min and max are kept");
    addText(*load, "--to", own->target, "ADDRESS", "Write it from this address on, not where it came from");
    addFlag(*load, "--verify", own->verify, "Read everything back; exit with 8 when it is different");
    addFlag(*load, "--dry-run", own->dryRun, "Print the frames that would be sent, and send nothing");
    addFlag(*load, "--restart", own->restart, "Begin anew, however far an earlier run came");
    addConfirmOption(*load, own->confirm);
    addBlockOption(*load, own->plan);
    setFooter(*load, kLoadFooter,
              {"s7ppi load --verify press.dump", "s7ppi load --format raw --to MB0 flags.bin",
               "s7ppi load --dry-run press.dump", "s7ppi load --confirm press.dump @press-tags.csv"});
}

} // namespace host
