// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/filled.h"
#include "host/base/interruption.h"
#include "host/base/outcome.h"
#include "host/base/question.h"
#include "host/cli/command_line.h"
#include "host/commands/dry_run_output.h"
#include "host/commands/item_run.h"
#include "host/commands/plan_options.h"
#include "host/commands/raw_addresses.h"
#include "host/commands/write_conditions.h"
#include "host/driver/connection.h"
#include "host/driver/dry_run.h"
#include "host/driver/plan_reader.h"
#include "host/driver/write_plan.h"
#include "host/items/assignment.h"
#include "host/items/read_back.h"
#include "host/items/tag.h"
#include "host/items/tag_file.h"
#include "host/output/output.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace host {

namespace {

struct WriteOptions
{
    QStringList items;
    QStringList expected; // values that must be there before anything is written
    bool verify = false;  // read back what was written, print it, and fail when it is something else
    bool dryRun = false;  // print the frames on stdout and send nothing
    bool confirm = false; // show what changes, and ask
    PlanOptions plan;     // of what is read
};

// What the command line means.
struct WriteWork
{
    std::vector<Assignment> assignments;
    std::vector<Assignment> expected;
    std::vector<Tag> tags; // of all files that it names
};

// The form of the data: what was written, or with --verify what was read back.
const Schema kWriteSchema = {
    "write", 1, "items", {"name", "address", "type", "index", "value", "unit", "error"}};

const char kWriteFooter[] = R"(

Values
  bool             0 1 off on false true
  u8 ... i64 bcd   10  -10  0x0a  0b1010
  f32 f64          1.5  -2e3  inf  nan; two whole numbers as 1.0,5.0: 1,5 may be one
  hex              0x1a2b or 1a2b: the bytes as they lie in the controller
  str string       one text, quoted or not; \" is a quote, \\ a backslash, \xNN any byte

A string has the room that stands behind *, as VB100:string*20=Hello: its length byte and the
text are written, and nothing behind them. "" is a string without a character.

A range has as many values as it names, as VB0..VB3=1,2,3,4.

VB100@3=17 writes to station 3, not to that of --station.

@FILE:NAME is a tag in a file, as for read; its value is written as it is shown: scaled.

What the columns access, min and max of the file say is kept: nothing at all is written when an
item reaches into a tag that is ro, or sets one outside its limits. A plain address is held to
the tag files that the command line names, and to no other.

All items are checked before anything is sent, and when the driver refuses one nothing is.
Nothing is printed unless --verify or --dry-run is given. Long items go in several requests:
one that fails tells how much had been written. Values that do not fill whole elements of the
address, as VW10:u8=1, are written as bytes: no byte changes that was not named. --verify
reads back when all items are written, or before one is written again.

--expect reads first; unless every value is there to the last bit nothing is written. The
controller's program may still change it between that reading and the writing: the protocol
has nothing that would close this gap.
--confirm reads the old values, shows what changes on stderr, and writes only when y is typed;
any other answer ends with 9. It needs a terminal.)";

QString progress(const Item &item, int written)
{
    return filled("%1 of %2 values had been written", written, item.size() / item.valueSize());
}

Failure partFailure(const Failure &failure, const Item &item, const WriteRequest &part, int written)
{
    return failure.withText(QString("%1; this is the part from %2 on, %3 before it")
                                .arg(failure.text(), part.command.address, progress(item, written)));
}

// Writes one item. When that takes several requests, whatever ends them early tells how far they got.
void writeItem(const Assignment &assignment, Connection &connection)
{
    const Item &item = assignment.tag.item;
    const QList<WriteRequest> requests = planWrite(item, assignment.data);
    const bool hasParts = requests.size() > 1;
    int written = 0;
    for (const WriteRequest &request : requests) {
        try {
            connection.write(request.command, request.data);
        } catch (const Interrupted &) {
            if (hasParts)
                reportNote(assignment.tag.label() + ": " + progress(item, written));
            throw;
        } catch (const Failure &failure) {
            throw hasParts ? partFailure(failure, item, request, written) : failure;
        }
        written += int(request.data.size()) / item.valueSize();
    }
}

std::vector<Tag> tagsOf(const std::vector<Assignment> &assignments)
{
    std::vector<Tag> tags;
    tags.reserve(assignments.size());
    for (const Assignment &assignment : assignments)
        tags.push_back(assignment.tag);
    return tags;
}

// Items are read back when as many are written as do not touch each other: what is written twice is read back
// in between. Returns the index behind the last of those that begin with the first.
size_t batchEnd(const std::vector<Item> &items, size_t first)
{
    TakenPlaces taken;
    size_t end = first;
    while (end < items.size() && taken.take(items[end]))
        ++end;
    return end;
}

// Writes items, and reads them back when that is wanted.
class WriteCommand
{
public:
    WriteCommand(const Options &options_, const WriteWork &work, const WriteOptions &own_)
        : options(options_), own(own_), assignments(work.assignments), expected(work.expected),
          tags(tagsOf(assignments)), items(itemsOf(tags)),
          output(options, withSource(withStation(kWriteSchema, hasStations(tags)), options)), lines(tags),
          connection(options)
    {
    }

    int run();

private:
    // Items that are read back together, and why some of them could not be written.
    struct Batch
    {
        int first = 0;
        int end = 0;
        std::vector<std::optional<Failure>> failures;
        std::unique_ptr<PlanReader> reader;
    };

    ExitCode checkConditions();
    ExitCode confirm();
    void write(int index);
    void writeBatch(int first);
    void writeAndNote(const Assignment &assignment);
    void tellUnread();
    void readBack(int index);

    const Options &options;
    const WriteOptions &own;
    const std::vector<Assignment> &assignments;
    const std::vector<Assignment> &expected;
    std::vector<Tag> tags;
    std::vector<Item> items;
    Output output;
    TextLines lines;
    Connection connection;
    Batch batch;
};

int WriteCommand::run()
{
    const ExitCode hindrance = checkConditions();
    if (hindrance != ExitCode::Success)
        return int(hindrance);
    return runItems(
        tags, [this](const Tag &tag) { return connection.origin(tag.item.station); }, output,
        [this](int index) { write(index); });
}

// What is expected is read before the question and again behind it, when the user may have taken a long time.
ExitCode WriteCommand::checkConditions()
{
    Outcome outcome;
    const auto check = [&] {
        if (outcome.isSuccess() && !expected.empty())
            checkExpected(expected, connection, own.plan.limits(), outcome);
    };
    check();
    if (outcome.isSuccess() && own.confirm) {
        outcome.keep(confirm());
        check();
    }
    if (!outcome.isSuccess())
        reportNothingWritten();
    return outcome.code();
}

ExitCode WriteCommand::confirm()
{
    Outcome outcome;
    const ChangeTable changes = readChanges(assignments, connection, own.plan.limits(), outcome);
    if (!outcome.isSuccess())
        return outcome.code();
    QString place = connection.marked(connection.portLabel());
    if (!hasStations(tags))
        place = filled("%1, station %2", place, connection.stationId());
    const bool isYes = isWriteConfirmed(place, changes, "values");
    return isYes ? ExitCode::Success : ExitCode::Declined;
}

void WriteCommand::write(int index)
{
    const Assignment &assignment = assignments[size_t(index)];
    if (!own.verify) {
        writeAndNote(assignment);
        const Item &item = assignment.tag.item;
        output.writeUnlessText(
            tagRecord(connection.origin(item.station), assignment.tag, decodeValues(item, assignment.data)));
        return;
    }
    if (index == batch.end)
        writeBatch(index);
    readBack(index);
}

void WriteCommand::writeAndNote(const Assignment &assignment)
{
    connection.setStation(assignment.tag.item.station);
    writeItem(assignment, connection);
    const Item &item = assignment.tag.item;
    if (options.verbose)
        reportNote(assignment.tag.label() + ": " + progress(item, item.size() / item.valueSize()));
}

// When the port is lost nothing more is written.
void WriteCommand::writeBatch(int first)
{
    const int end = int(batchEnd(items, size_t(first)));
    batch = {first, first, {}, nullptr};
    bool isOver = false;
    while (batch.end < end && !isOver) {
        std::optional<Failure> failure;
        try {
            writeAndNote(assignments[size_t(batch.end)]);
        } catch (const Failure &reason) {
            failure = reason;
            isOver = reason.isFinal();
        }
        batch.failures.push_back(failure);
        ++batch.end;
    }
    if (isOver)
        tellUnread();
    const std::vector<Item> written(items.cbegin() + first, items.cbegin() + batch.end);
    batch.reader = std::make_unique<PlanReader>(connection, written, own.plan.limits());
}

// Those that were written before the loss will not be read back any more.
void WriteCommand::tellUnread()
{
    const Failure loss = *batch.failures.back();
    const auto isWritten = [](const std::optional<Failure> &failure) { return !failure; };
    const auto written = std::count_if(batch.failures.cbegin(), batch.failures.cend(), isWritten);
    const QString text =
        filled("%1 of %2 items were written and not read back: %3", written, items.size(), loss.text());
    std::replace_if(batch.failures.begin(), batch.failures.end(), isWritten,
                    std::optional<Failure>(loss.withText(text)));
}

void WriteCommand::readBack(int index)
{
    const int place = index - batch.first;
    if (const std::optional<Failure> &failure = batch.failures[size_t(place)])
        throw Failure(*failure);
    const Assignment &assignment = assignments[size_t(index)];
    const Tag &tag = assignment.tag;
    const QByteArray data = batch.reader->read(place);
    checkReadBack(assignment, data);
    const std::vector<Value> values = decodeValues(tag.item, data);
    output.write(
        tagRecord(connection.origin(tag.item.station, batch.reader->reading(place).time), tag, values),
        lines.text(tag, values));
}

// Reports the items that a tag file does not let be written, and those that the driver refuses without
// sending anything. The first request of a long item is enough: the others differ in number and count.
void checkWork(const WriteWork &work, const Options &options, Outcome &outcome)
{
    const DryRun frames(options);
    checkTags(work.assignments, work.tags, frames.usualStation(), outcome);
    for (const Assignment &assignment : work.assignments) {
        const Item &item = assignment.tag.item;
        outcome.attempt(assignment.tag.label(),
                        [&] { frames.ofWrite(planWrite(item, assignment.data).first(), item.station); });
    }
}

// Prints what would be sent to read some items.
void dryRunReads(const std::vector<Item> &items, const DryRunOutput &dryRun, const PlanLimits &limits)
{
    for (const PlannedRequest &request : planReads(items, requestCost(dryRun.line()), limits).requests)
        dryRun.read(request);
}

// Prints what would be sent before anything is written.
void dryRunConditions(const WriteWork &work, const DryRunOutput &dryRun, const WriteOptions &own)
{
    const PlanLimits limits = own.plan.limits();
    const std::vector<Item> expected = itemsOf(tagsOf(work.expected));
    dryRunReads(expected, dryRun, limits);
    if (own.confirm) {
        dryRunReads(itemsOf(tagsOf(work.assignments)), dryRun, limits);
        dryRunReads(expected, dryRun, limits);
    }
}

int dryRunAll(const WriteWork &work, const Options &options, const WriteOptions &own)
{
    const std::vector<Assignment> &assignments = work.assignments;
    Output output(options, kFramesSchema);
    const DryRunOutput dryRun(options, output);
    const std::vector<Item> items = itemsOf(tagsOf(assignments));
    Outcome outcome;
    checkTags(assignments, work.tags, dryRun.usualStation(), outcome);
    if (!outcome.isSuccess())
        return outcome.exitCode();
    dryRunConditions(work, dryRun, own);
    for (size_t first = 0, end = 0; first < items.size(); first = end) {
        end = own.verify ? batchEnd(items, first) : first + 1;
        for (size_t i = first; i < end; ++i) {
            const Assignment &assignment = assignments[i];
            const auto failure = outcome.attempt(assignment.tag.label(), [&] {
                for (const WriteRequest &request : planWrite(assignment.tag.item, assignment.data))
                    dryRun.write(request, assignment.tag.item.station);
            });
            if (failure && failure->isFinal())
                return outcome.exitCode();
        }
        if (own.verify)
            dryRunReads({items.cbegin() + ptrdiff_t(first), items.cbegin() + ptrdiff_t(end)}, dryRun,
                        own.plan.limits());
    }
    output.finish();
    return outcome.exitCode();
}

// All items must be right, and be such as the driver writes, before the first is written.
int writeItems(const Options &options, const WriteOptions &own)
{
    Outcome outcome;
    TagFiles files(notationOf(options));
    WriteWork work;
    work.assignments = parseAssignments(own.items, outcome, files);
    work.expected = parseAssignments(own.expected, outcome, files);
    work.tags = files.tags();
    if (!outcome.isSuccess())
        return outcome.exitCode();
    if (own.dryRun)
        return dryRunAll(work, options, own);
    if (own.confirm)
        checkTerminal();
    checkWork(work, options, outcome);
    return outcome.isSuccess() ? WriteCommand(options, work, own).run() : outcome.exitCode();
}

} // namespace

void declareWrite(CLI::App &app, CommandLine &line)
{
    const auto own = std::make_shared<WriteOptions>();
    CLI::App *write = addCommand(app, line, "write", "Write values to items",
                                 [own](const Options &options) { return writeItems(options, *own); });
    addItems(*write, own->items,
             "ADDRESS[:TYPE][@STATION]=VALUE[,VALUE...], as VB100=17 VW10:i16=-1,0x7f V10.3=on, or "
             "@FILE:NAME=VALUE");
    addFlag(*write, "--verify", own->verify, "Read back and print; exit with 8 when it is different");
    addFlag(*write, "--dry-run", own->dryRun, "Print the frames that would be sent, and send nothing");
    addTexts(*write, "--expect", own->expected, "ADDRESS=VALUE",
             "Write only if this is there now; exit with 8 when it is not; can be repeated");
    addConfirmOption(*write, own->confirm);
    addPlanOptions(*write, own->plan);
    setFooter(*write, QString(kTypesFooter) + kWriteFooter + kRawFooter,
              {"s7ppi write VB100=17 VW10:i16=-1,0x7f V10.3=on",
               "s7ppi write --verify VD20:f32=21.5 VB100@3=17",
               "s7ppi write --dry-run @press-tags.csv:Boiler=21.5",
               "s7ppi write --confirm --expect V10.3=off @press-tags.csv:Boiler=21.5"});
}

} // namespace host
