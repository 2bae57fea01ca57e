// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "write_command.h"

#include "assignment.h"
#include "comparison.h"
#include "connection.h"
#include "interruption.h"
#include "outcome.h"
#include "read_plan.h"
#include "rehearsal.h"
#include "text_output.h"
#include "write_plan.h"

namespace host {

namespace {

QString progress(const Item &item, int written)
{
    return QString("%1 of %2 values had been written").arg(written).arg(item.count);
}

Failure partFailure(const Failure &failure, const Item &item, const WriteRequest &part, int written)
{
    return Failure(failure.code(),
                   QString("%1; this is the part from %2 on, %3 before it")
                       .arg(failure.text(), part.command.address, progress(item, written)),
                   failure.hint());
}

// When an item takes several requests, whatever ends them early tells how far they got.
void writeItem(const Assignment &assignment, Connection &connection)
{
    const QList<WriteRequest> requests = planWrite(assignment.item, assignment.data);
    const bool hasParts = requests.size() > 1;
    int written = 0;
    for (const WriteRequest &request : requests) {
        try {
            connection.write(request.command, request.data);
        } catch (const Interrupted &) {
            if (hasParts)
                reportNote(assignment.item.address.text() + ": " + progress(assignment.item, written));
            throw;
        } catch (const Failure &failure) {
            throw hasParts ? partFailure(failure, assignment.item, request, written) : failure;
        }
        written += request.command.count;
    }
}

void readBack(const Assignment &assignment, Connection &connection, const TextOutput &output)
{
    const ReadFunction read = [&](const CommunicatorCommand &command) { return connection.read(command); };
    const QByteArray data = readItem(assignment.item, read);
    checkReadBack(assignment, data);
    output.write(assignment.item, decodeValues(assignment.item, data));
}

int writeAll(const std::vector<Assignment> &assignments, const Options &options, bool verify)
{
    std::vector<Item> items;
    items.reserve(assignments.size());
    for (const Assignment &assignment : assignments)
        items.push_back(assignment.item);
    const TextOutput output(items);

    Connection connection(options);
    Outcome outcome;
    for (const Assignment &assignment : assignments) {
        const QString address = assignment.item.address.text();
        const auto failure = outcome.attempt(address, [&] {
            writeItem(assignment, connection);
            if (options.verbose)
                reportNote(address + ": " + progress(assignment.item, assignment.item.count));
            if (verify)
                readBack(assignment, connection, output);
        });
        if (failure && failure->code() == ExitCode::PortLost)
            break;
    }
    return outcome.exitCode();
}

int rehearseAll(const std::vector<Assignment> &assignments, const Options &options, bool verify)
{
    const Rehearsal rehearsal(options);
    Outcome outcome;
    for (const Assignment &assignment : assignments) {
        outcome.attempt(assignment.item.address.text(), [&] {
            for (const WriteRequest &request : planWrite(assignment.item, assignment.data))
                rehearsal.write(request);
            if (!verify)
                return;
            for (const ReadRequest &request : planRead(assignment.item).requests)
                rehearsal.read(request);
        });
    }
    return outcome.exitCode();
}

} // namespace

int writeCommand(const Options &options, const WriteOptions &writeOptions,
                 const std::vector<std::string> &texts)
{
    Outcome outcome;
    const std::vector<Assignment> assignments = outcome.parseAll(texts, parseAssignment);
    if (!outcome.isSuccess())
        return outcome.exitCode();
    return writeOptions.dryRun ? rehearseAll(assignments, options, writeOptions.verify)
                               : writeAll(assignments, options, writeOptions.verify);
}

} // namespace host
