// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/assignment.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/items/tag_file.h"
#include "host/items/value_parser.h"

#include <QRegularExpression>
#include <QString>

namespace host {

namespace {

// A decimal comma would be taken for the comma between two values. Where fractions can be written, "1,5" is
// therefore refused, and the user asked which of the two is meant.
void checkComma(const QString &target, const QString &values)
{
    static const QRegularExpression ambiguous("^\\s*([+-]?[0-9]+)\\s*,\\s*([0-9]+)\\s*$");
    const QRegularExpressionMatch match = ambiguous.match(values);
    if (match.hasMatch())
        throw Failure(ExitCode::Usage, '"' + values + "\" may be one number or two",
                      QString("write %1=%2.%3 for one number, %1=%2.0,%3.0 for two")
                          .arg(target, match.captured(1), match.captured(2)));
}

// The target of an assignment is an item whose values are counted, so that it names no count.
QString withoutCount(QString target)
{
    static const QRegularExpression count("\\*[^@]*");
    return target.remove(count);
}

QString countHint(const QString &item)
{
    if (item.contains(":str"))
        return "write " + item + "=TEXT, a text as long as you mean";
    return "write " + item + "=VALUE,VALUE with as many values as you mean";
}

Assignment assignToItem(const QString &target, const QString &values)
{
    if (target.contains('*'))
        throw Failure(ExitCode::Usage, "a count is not needed here", countHint(withoutCount(target)));
    Item item = parseItem(target);
    if (item.type == ValueType::F32)
        checkComma(target, values);
    const QByteArray data = encodeValues(item, values);
    item.count = int(data.size()) / item.valueSize();
    checkCount(item);
    return {item, data};
}

Failure withoutValue(const QString &meant)
{
    return Failure(ExitCode::Usage, "no value is given", "write " + meant);
}

bool isTarget(const QString &text)
{
    try {
        return isTagReference(text) || parseItem(text).count > 0;
    } catch (const Failure &) {
        return false;
    }
}

// Whether two arguments, "VW100" and "5", are meant to be one, "VW100=5".
bool isTornApart(const QString &target, const QString &value)
{
    const bool hasAssignment = target.contains('=') || value.contains('=');
    return !hasAssignment && !value.isEmpty() && isTarget(target) && !isTarget(value);
}

} // namespace

Assignment assign(Tag tag, const QString &values)
{
    const int room = tag.item.size();
    if (tag.item.count > 1 && (tag.scaling.isActive() || tag.item.type == ValueType::F32))
        checkComma(tag.name, values);
    const QByteArray data =
        encodeValues(tag.item, tag.scaling.isActive() ? unscaledText(tag, values) : values);
    if (data.size() > room)
        throw Failure(ExitCode::Usage, "there are more values than the tag has",
                      filled("%1 has %2", tag.name, tag.item.count));
    tag.item.count = int(data.size()) / tag.item.valueSize();
    return {tag, data};
}

Assignment parseAssignment(const QString &text)
{
    const QString target = text.section('=', 0, 0);
    const QString values = text.section('=', 1);
    if (!text.contains('='))
        throw withoutValue(withoutCount(text) + "=VALUE");
    return isTagReference(target) ? assign(findTag(target), values) : assignToItem(target, values);
}

std::vector<Assignment> parseAssignments(const QStringList &texts, Outcome &outcome)
{
    std::vector<Assignment> assignments;
    for (int i = 0; i < int(texts.size()); ++i) {
        const QString &text = texts.at(i);
        const QString next = texts.value(i + 1);
        const bool isTorn = isTornApart(text, next);
        outcome.attempt(text, [&] {
            assignments.push_back(isTorn ? throw withoutValue(withoutCount(text) + '=' + next)
                                         : parseAssignment(text));
        });
        if (isTorn)
            ++i;
    }
    return assignments;
}

} // namespace host
