// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/change.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/items/memory_range.h"
#include "host/items/value.h"

namespace host {

namespace {

const char kUnchanged[] = "unchanged";

// The values as people see them; what is no value of its type still has its digits, a text all of them.
QStringList textsOf(const Tag &tag, const QByteArray &data)
{
    try {
        return shownTexts(tag, decodeValues(tag.item, data));
    } catch (const Failure &) {
        const QString digits = valuesText(decodeValues(inDigits(tag.item), data));
        return isText(tag.item.type) ? QStringList(digits) : digits.split(' ');
    }
}

// A name does not tell the station.
QString labelOf(const Tag &tag, const QString &label)
{
    const bool isName = !tag.name.isEmpty() && tag.item.station;
    return isName ? filled("%1@%2", label, *tag.item.station) : label;
}

QString digitsOf(const Item &range, const QByteArray &data, int index, int count)
{
    const int size = range.valueSize();
    QStringList digits;
    for (int i = index; i < index + count; ++i)
        digits << QString::fromLatin1(data.mid(i * size, size).toHex());
    return digits.join(' ');
}

} // namespace

QList<ValueChange> changesOf(const Tag &tag, const QByteArray &before, const QByteArray &after)
{
    const QStringList earlier = textsOf(tag, before);
    const QStringList later = textsOf(tag, after);
    const int count = int(later.size()); // a text is one value
    const int size = int(after.size()) / count;
    const QString unit = tag.unit.isEmpty() ? QString() : ' ' + tag.unit;
    QList<ValueChange> changes;
    for (int i = 0; i < count; ++i) {
        const QString label = count == 1 ? tag.label() : valueLabel(tag, i);
        changes << ValueChange{labelOf(tag, label), earlier.at(i) + unit, later.at(i) + unit,
                               before.mid(i * size, size) == after.mid(i * size, size)};
    }
    return changes;
}

void addChanges(ChangeTable &table, const QList<ValueChange> &changes, const Tag &tag)
{
    int changed = 0;
    for (const ValueChange &change : changes)
        if (!change.isSame) {
            table.rows << QStringList({change.label, change.before, "-> " + change.after});
            ++changed;
        }
    const int count = int(changes.size());
    table.count += count;
    table.changed += changed;
    if (changed < count)
        table.rows << QStringList(
            {labelOf(tag, tag.label()),
             count == 1 ? changes.front().before : filled("%1 of %2 values", count - changed, count),
             kUnchanged});
}

ChangeTable rangeChanges(const Item &range, const QByteArray &before, const QByteArray &after)
{
    const int size = range.valueSize();
    const auto isSame = [&](int i) { return before.mid(i * size, size) == after.mid(i * size, size); };
    ChangeTable table;
    table.count = range.size();
    for (int i = 0; i < range.size(); ++i)
        table.changed += before.at(i) != after.at(i) ? 1 : 0;
    for (int i = 0; i < range.count; ++i) {
        int run = 0;
        while (run < kValuesPerLine && i + run < range.count && !isSame(i + run))
            ++run;
        if (run == 0)
            continue;
        table.rows << QStringList(
            {elementText(range, i), digitsOf(range, before, i, run), "-> " + digitsOf(range, after, i, run)});
        i += run - 1;
    }
    return table;
}

} // namespace host
