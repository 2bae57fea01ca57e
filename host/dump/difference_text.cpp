// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/dump/difference_text.h"

#include "host/items/memory_range.h"

#include <QStringList>

#include <algorithm>

namespace host {

namespace {

int valueCount(const Difference &difference)
{
    return int(difference.before.size());
}

// The values of both sides in turns, so many of each. The last line is as long as the others.
QStringList inTurns(const QStringList &before, const QStringList &after, int perLine)
{
    QStringList texts;
    for (int first = 0; first < int(before.size()); first += perLine)
        for (const QStringList &side : {before, after})
            for (int i = first; i < first + perLine; ++i)
                texts << side.value(i);
    return texts;
}

QString withoutBlanksBehind(QString text)
{
    while (text.endsWith(' '))
        text.chop(1);
    return text;
}

} // namespace

DifferenceLines::DifferenceLines(const std::vector<Difference> &differences)
{
    for (const Difference &difference : differences) {
        const int lastLine = (valueCount(difference) - 1) / kValuesPerLine * kValuesPerLine;
        for (const int value : {0, lastLine})
            labelWidth = std::max(labelWidth, int(difference.label(value).size()));
    }
}

QString DifferenceLines::text(const Difference &difference) const
{
    const QStringList before = shownTexts(difference.tag, difference.before);
    const QStringList after = shownTexts(difference.tag, difference.after);
    const QString unit = difference.tag.unit.isEmpty() ? QString() : ' ' + difference.tag.unit;
    if (valueCount(difference) == 1)
        return difference.label(0).leftJustified(labelWidth) + ' ' + before.first() + " -> " + after.first() +
               unit;
    Tag columns = difference.tag;
    columns.unit.clear();
    const int perLine = std::min(kValuesPerLine, valueCount(difference));
    QStringList lines;
    for (const ValueLine &line : valueLines(columns, inTurns(before, after, perLine), perLine)) {
        const int pair = int(lines.size()) / 2;
        const bool isOld = lines.size() % 2 == 0;
        const QString label = isOld ? difference.label(pair * perLine) : QString();
        lines << label.leftJustified(labelWidth) + (isOld ? " old " : " new ") +
                     withoutBlanksBehind(line.text) + unit;
    }
    return lines.join('\n');
}

Json differenceRecord(const Difference &difference)
{
    Json record = tagFields(difference.tag);
    if (!difference.tag.name.isEmpty() && difference.isOfSeveral())
        record["index"] = difference.index;
    record["old"] = jsonValues(difference.tag, difference.before);
    record["new"] = jsonValues(difference.tag, difference.after);
    return record;
}

Json rangeRecord(const Item &range)
{
    return {{"address", jsonText(range.address.text())},
            {"last", jsonText(elementText(range, range.count - 1))}};
}

} // namespace host
