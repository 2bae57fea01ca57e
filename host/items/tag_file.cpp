// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/tag_file.h"

#include "host/base/files.h"
#include "host/base/filled.h"
#include "host/text/csv.h"

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QStringList>

#include <cmath>
#include <optional>

namespace host {

namespace {

const QStringList kColumns = {"name", "address", "type", "scale", "offset", "unit", "station", "interval"};
const QStringList kNeededColumns = {"name", "address"};
const char kHeadHint[] =
    "the first line names the columns: name,address and, if need be, type,scale,offset,unit,station,interval";

// From poll to poll, in milliseconds, as for --interval.
constexpr int kLeastInterval = 1;
constexpr int kLargestInterval = 3600000;

Failure wrong(const QString &text, const QString &hint)
{
    return Failure(ExitCode::Usage, text, hint);
}

QStringList cellsOf(const QString &line, QChar separator)
{
    const std::optional<QStringList> cells = csvCells(line, separator);
    if (!cells)
        throw wrong("a quote is not closed", "a quote inside quotes is written twice");
    return *cells;
}

// Columns with other names are left alone: a spreadsheet may have notes of its own in them.
QStringList parseHead(const QString &line)
{
    QStringList columns;
    for (const QString &cell : cellsOf(line, csvSeparator(line)))
        columns << cell.toLower();
    for (const QString &column : kColumns)
        if (columns.count(column) > 1)
            throw wrong('"' + column + "\" is there twice", kHeadHint);
    for (const QString &column : kNeededColumns)
        if (!columns.contains(column))
            throw wrong("the column " + column + " is missing", kHeadHint);
    return columns;
}

QStringList unknownIn(QStringList columns)
{
    for (const QString &column : kColumns)
        columns.removeAll(column);
    columns.removeAll(QString());
    return columns;
}

// Puts the type of its own column into the address: "VW10*4" and "i16" become the item VW10:i16*4.
Item itemOf(QString address, const QString &type)
{
    if (!type.isEmpty() && !address.contains(':')) {
        const int end = int(address.indexOf('*'));
        address.insert(end < 0 ? int(address.size()) : end, ':' + type);
    }
    try {
        return parseItem(address);
    } catch (const Failure &failure) {
        const QString place = addressIn(address);
        const bool isAddress = nearestAddresses(place) == QStringList(place);
        throw isAddress ? failure : wrong('"' + place + "\" is " + failure.text(), failure.hint());
    }
}

// The station of a column of its own, unless that is empty; the address may name the same.
std::optional<int> stationOf(const QString &cell, const Item &item)
{
    if (cell.isEmpty())
        return item.station;
    const int station = parseStation(cell);
    if (item.station.value_or(station) != station)
        throw wrong(filled("the address names station %1, its column %2", *item.station, station),
                    "leave one of them out");
    return station;
}

std::optional<int> intervalOf(const QString &cell)
{
    if (cell.isEmpty())
        return std::nullopt;
    bool isNumber = false;
    const int interval = cell.toInt(&isNumber);
    if (isNumber && interval >= kLeastInterval && interval <= kLargestInterval)
        return interval;
    throw wrong('"' + cell + "\" is not an interval",
                filled("intervals are whole numbers of milliseconds, from %1 to %2", kLeastInterval,
                       kLargestInterval));
}

double numberOf(const QString &text, double otherwise)
{
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (!text.isEmpty() && !(isNumber && std::isfinite(number)))
        throw wrong('"' + text + "\" is not a number", "write a number with a point, as 0.1");
    return text.isEmpty() ? otherwise : number;
}

void checkScale(const Tag &tag)
{
    const ValueType type = tag.item.type;
    const bool isNumber = type != ValueType::Bool && type != ValueType::Hex && type != ValueType::Str;
    if (tag.scaling.isActive() && !isNumber)
        throw wrong("values of type " + typeName(type) + " cannot be scaled",
                    "leave scale and offset empty, or name another type");
    if (tag.scaling.scale == 0)
        throw wrong("with a scale of 0 every value is the same", "leave the scale empty, or name another");
}

// Gives the cells of a line by the names of their columns.
class Row
{
public:
    Row(const QStringList &columns_, const QStringList &cells_) : columns(columns_), cells(cells_)
    {
        if (cells.size() > columns.size())
            throw wrong(filled("there are %1 cells in %2 columns", cells.size(), columns.size()),
                        "put a cell with a separator in it between quotes");
    }

    QString cell(const QString &column) const { return cells.value(columns.indexOf(column)); }

private:
    QStringList columns;
    QStringList cells;
};

Tag tagOf(const Row &row)
{
    Tag tag(itemOf(row.cell("address"), row.cell("type")));
    tag.name = row.cell("name");
    tag.scaling.scale = numberOf(row.cell("scale"), 1);
    tag.scaling.offset = numberOf(row.cell("offset"), 0);
    tag.unit = row.cell("unit");
    tag.item.station = stationOf(row.cell("station"), tag.item);
    tag.interval = intervalOf(row.cell("interval"));
    if (tag.name.isEmpty())
        throw wrong("the tag has no name", "every tag needs one; a plain item can be named beside the file");
    checkScale(tag);
    return tag;
}

bool isNothing(const QString &line)
{
    return line.trimmed().isEmpty() || line.startsWith('#');
}

class TagFileParser
{
public:
    void parse(const QString &line);

    std::vector<Tag> tags;

private:
    QStringList columns; // empty until the head was read
    QChar separator;
    QSet<QString> names;
};

void TagFileParser::parse(const QString &line)
{
    if (columns.isEmpty()) {
        separator = csvSeparator(line);
        columns = parseHead(line);
        for (const QString &column : unknownIn(columns))
            reportDetail("the column \"" + column + "\" of a tag file is left out");
        return;
    }
    const Tag tag = tagOf(Row(columns, cellsOf(line, separator)));
    if (names.contains(tag.name))
        throw wrong('"' + tag.name + "\" is there twice", "give every tag a name of its own");
    names << tag.name;
    tags.push_back(tag);
}

QString fileIn(const QString &reference)
{
    return reference.mid(1).section(':', 0, 0);
}

std::vector<Tag> readTagFile(const QString &name, Outcome &outcome)
{
    return parseTagFile(name, readTextFile(name, "check the file's name and rights", kLargestText), outcome);
}

Failure unknownTag(const QString &name, const std::vector<Tag> &tags)
{
    QStringList names;
    for (const Tag &tag : tags)
        names << tag.name;
    return wrong("there is no tag \"" + name + "\" in the file", "its tags are " + names.join(", "));
}

} // namespace

// A head that is wrong ends the reading: without it no cell below has a meaning.
std::vector<Tag> parseTagFile(const QString &fileName, const QByteArray &text, Outcome &outcome)
{
    TagFileParser parser;
    const QStringList lines = utf8Text(text).split('\n');
    bool hasHead = false;
    for (int i = 0; i < int(lines.size()); ++i) {
        if (isNothing(lines.at(i)))
            continue;
        const QString place = filled("%1:%2", fileName, i + 1);
        const auto failure = outcome.attempt(place, [&] { parser.parse(lines.at(i)); });
        if (failure && !hasHead)
            return {};
        hasHead = true;
    }
    if (!hasHead || (parser.tags.empty() && outcome.isSuccess()))
        outcome.attempt(fileName, [] { throw wrong("there are no tags in it", kHeadHint); });
    return parser.tags;
}

Failure brokenTagFile()
{
    return wrong("there are errors in the tag file", "mend the lines that stderr names");
}

bool isTagReference(const QString &text)
{
    return text.startsWith('@');
}

Tag findTag(const QString &reference)
{
    const QString name = reference.section(':', 1);
    Outcome outcome;
    const std::vector<Tag> tags = readTagFile(fileIn(reference), outcome);
    if (!outcome.isSuccess())
        throw brokenTagFile();
    for (const Tag &tag : tags)
        if (tag.name == name)
            return tag;
    throw unknownTag(name, tags);
}

std::vector<Tag> parseTags(const QStringList &texts, Outcome &outcome)
{
    std::vector<Tag> tags;
    for (const QString &text : texts) {
        outcome.attempt(text, [&] {
            if (!isTagReference(text))
                tags.emplace_back(parseItem(text));
            else if (text.contains(':'))
                tags.push_back(findTag(text));
            else
                for (const Tag &tag : readTagFile(fileIn(text), outcome))
                    tags.push_back(tag);
        });
    }
    return tags;
}

} // namespace host
