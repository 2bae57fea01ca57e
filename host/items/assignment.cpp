// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/assignment.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/items/address_range.h"
#include "host/items/tag_file.h"
#include "host/items/value_parser.h"
#include "host/text/number_text.h"

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

// The target of an assignment is an item whose values are counted, so that it names no count. What a string
// has there is its room.
QString withoutCount(QString target)
{
    static const QRegularExpression count("\\*[^@]*");
    return target.contains(":string*") ? target : target.remove(count);
}

QString countHint(const QString &item)
{
    if (item.contains(":str"))
        return "write " + item + "=TEXT, a text as long as you mean";
    return "write " + item + "=VALUE,VALUE with as many values as you mean";
}

// Too few values for a range may be one that was forgotten.
void checkFillsRange(const Item &item, int count)
{
    if (count != item.count)
        throw Failure(ExitCode::Usage, filled("%1 for a range of %2", counted(count, "value"), item.count),
                      "name as many values as the range has, or its first address alone");
}

// Drivers take several bits in different ways, one to a byte or eight.
void checkRawBits(const Item &item)
{
    if (item.address.kind == AddressKind::Raw && item.type == ValueType::Bool && item.count > 1)
        throw Failure(ExitCode::Usage, "several bits cannot be written at once to an address of this driver",
                      "write them one by one, or whole bytes");
}

Assignment assignToItem(const QString &target, const QString &values, Notation notation)
{
    if (notation == Notation::Controller && target != withoutCount(target))
        throw Failure(ExitCode::Usage, "a count is not needed here", countHint(withoutCount(target)));
    Item item = parseItem(target, notation);
    const bool isOfRange = notation == Notation::Controller && isRange(target);
    if (item.count > 1 && item.type != ValueType::String && !isOfRange)
        throw Failure(ExitCode::Usage, "a count is not needed here",
                      countHint(item.address.text() + ':' + item.typeText()));
    if (isFloat(item.type) && !isOfRange)
        checkComma(target, values);
    const QByteArray data = encodeValues(item, values);
    if (isOfRange && item.type != ValueType::String)
        checkFillsRange(item, item.countOf(int(data.size())));
    item.count = item.countOf(int(data.size()));
    checkCount(item);
    checkRawBits(item);
    return {item, data};
}

// A raw address without a type has no end that is followed by "=": that is what is missing, then.
Failure withoutValue(const QString &text, const QString &value, Notation notation)
{
    if (notation == Notation::Raw && !isTagReference(text))
        parseItem(text.section('=', 0, 0), notation);
    const QString target = notation == Notation::Raw ? text : withoutCount(text);
    return Failure(ExitCode::Usage, "no value is given", "write " + target + '=' + value);
}

bool isTarget(const QString &text, Notation notation)
{
    try {
        return isTagReference(text) || parseItem(text, notation).count > 0;
    } catch (const Failure &) {
        return false;
    }
}

// Whether two arguments, "VW100" and "5", are meant to be one, "VW100=5".
bool isTornApart(const QString &target, const QString &value, Notation notation)
{
    const bool hasAssignment = target.contains('=') || value.contains('=');
    return !hasAssignment && !value.isEmpty() && isTarget(target, notation) && !isTarget(value, notation);
}

Assignment assignmentOf(const QString &text, TagFiles &files)
{
    const Notation notation = files.notation();
    const auto [target, values, hasValues] = splitAssignment(text, notation);
    if (!hasValues)
        throw withoutValue(text, "VALUE", notation);
    return isTagReference(target) ? assign(files.find(target), values)
                                  : assignToItem(target, values, notation);
}

} // namespace

Assignment assign(Tag tag, const QString &values)
{
    const int room = tag.item.size();
    if (tag.item.count > 1 && (tag.scaling.isActive() || isFloat(tag.item.type)))
        checkComma(tag.name, values);
    const QByteArray data =
        encodeValues(tag.item, tag.scaling.isActive() ? unscaledText(tag, values) : values);
    if (data.size() > room)
        throw Failure(ExitCode::Usage, "there are more values than the tag has",
                      filled("%1 has %2", tag.name, tag.item.count));
    tag.item.count = tag.item.countOf(int(data.size()));
    checkRawBits(tag.item);
    return {tag, data};
}

Assignment parseAssignment(const QString &text, Notation notation)
{
    TagFiles files(notation);
    return assignmentOf(text, files);
}

std::vector<Assignment> parseAssignments(const QStringList &texts, Outcome &outcome, TagFiles &files)
{
    const Notation notation = files.notation();
    std::vector<Assignment> assignments;
    for (int i = 0; i < int(texts.size()); ++i) {
        const QString &text = texts.at(i);
        const QString next = texts.value(i + 1);
        const bool isTorn = isTornApart(text, next, notation);
        outcome.attempt(text, [&] {
            assignments.push_back(isTorn ? throw withoutValue(text, next, notation)
                                         : assignmentOf(text, files));
        });
        if (isTorn)
            ++i;
    }
    return assignments;
}

} // namespace host
