// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/write_conditions.h"

#include "host/base/filled.h"
#include "host/base/interruption.h"
#include "host/base/question.h"
#include "host/cli/command_line.h"
#include "host/driver/plan_reader.h"
#include "host/items/write_guard.h"
#include "host/output/table.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace host {

namespace {

// More lines than these push each other off the screen.
constexpr int kMostLines = 20;

QStringList shortened(const QStringList &lines)
{
    if (lines.size() <= kMostLines)
        return lines;
    const QStringList first = lines.mid(0, kMostLines - 1);
    return first + QStringList(filled("and %1 lines more", lines.size() - first.size()));
}

std::vector<Item> itemsOf(const std::vector<Assignment> &assignments)
{
    std::vector<Item> items;
    items.reserve(assignments.size());
    for (const Assignment &assignment : assignments)
        items.push_back(assignment.tag.item);
    return items;
}

// Reads the items of assignments, and calls a function with each that could be read and its bytes.
template <typename Take>
void readAll(const std::vector<Assignment> &assignments, Connection &connection, const PlanLimits &limits,
             Outcome &outcome, const Take &take)
{
    PlanReader reader(connection, itemsOf(assignments), limits);
    for (int i = 0; i < int(assignments.size()); ++i) {
        const Assignment &assignment = assignments[size_t(i)];
        const std::optional<Failure> failure =
            outcome.attempt(assignment.tag.label(), [&] { take(assignment, reader.read(i)); });
        if (failure && failure->isFinal())
            return;
    }
}

QString inHex(const QString &text, const QByteArray &data, int index, int count)
{
    const int size = int(data.size()) / count;
    return filled("%1 (0x%2)", text, QString::fromLatin1(data.mid(index * size, size).toHex()));
}

// Values that are no number at all look the same with different bits.
void checkValues(const Assignment &expected, const QByteArray &data)
{
    const QList<ValueChange> values = changesOf(expected.tag, expected.data, data);
    const int count = int(values.size());
    for (int i = 0; i < count; ++i) {
        const ValueChange &value = values.at(i);
        if (value.isSame)
            continue;
        const bool looksSame = value.before == value.after;
        const QString wanted = looksSame ? inHex(value.before, expected.data, i, count) : value.before;
        const QString found = looksSame ? inHex(value.after, data, i, count) : value.after;
        const QString place = count == 1 ? "is" : filled("value %1 of %2 is", i + 1, count);
        throw Failure(ExitCode::Different, filled("%1 %2 and not %3", place, found, wanted),
                      "--expect tells what must be there; write only if what is there now is right, too");
    }
}

} // namespace

void addConfirmOption(CLI::App &command, bool &confirm)
{
    addFlag(command, "--confirm", confirm, "Show old and new values and ask before anything is written");
}

void checkTags(const std::vector<Assignment> &assignments, const std::vector<Tag> &tags, int usualStation,
               Outcome &outcome)
{
    const WriteGuard guard(tags, usualStation);
    for (const Assignment &assignment : assignments)
        for (const Objection &objection : guard.objectionsTo(assignment.tag.item, assignment.data)) {
            const bool isOwn = objection.tag.definedAt == assignment.tag.definedAt;
            outcome.add(assignment.tag.label(),
                        isOwn ? objection.failure : objection.failure.about(objection.tag.label()));
        }
}

void checkExpected(const std::vector<Assignment> &expected, Connection &connection, const PlanLimits &limits,
                   Outcome &outcome)
{
    readAll(expected, connection, limits, outcome, checkValues);
}

ChangeTable readChanges(const std::vector<Assignment> &assignments, Connection &connection,
                        const PlanLimits &limits, Outcome &outcome)
{
    ChangeTable changes;
    readAll(assignments, connection, limits, outcome,
            [&changes](const Assignment &assignment, const QByteArray &data) {
                addChanges(changes, changesOf(assignment.tag, data, assignment.data), assignment.tag);
            });
    return changes;
}

bool isWriteConfirmed(const QString &place, const ChangeTable &changes, const QString &unit)
{
    QStringList lines = {filled("%1: %2 of %3 %4 would change", place, changes.changed, changes.count, unit)};
    for (const QString &line : shortened(alignedLines(changes.rows)))
        lines << "  " + line;
    try {
        return isConfirmed(lines, "Write this?");
    } catch (const Interrupted &) {
        reportNothingWritten();
        throw;
    }
}

void reportNothingWritten()
{
    reportNote("nothing was written");
}

} // namespace host
