// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/tag_file.h"

#include "common/duration.h"
#include "host/base/files.h"
#include "host/base/filled.h"
#include "host/items/address_range.h"
#include "host/text/csv.h"

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QStringList>

#include <cmath>
#include <map>
#include <optional>

namespace host {

namespace {

const QStringList kColumns = {"name",    "address",  "type",   "scale", "offset", "unit",
                              "station", "interval", "access", "min",   "max",    "deadband"};
const QStringList kNeededColumns = {"name", "address"};
const char kHeadHint[] = "the first line names the columns: name,address and, if need be, "
                         "type,scale,offset,unit,station,interval,access,min,max,deadband";

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
        const bool isAddress = isRange(place) || nearestAddresses(place) == QStringList(place);
        throw isAddress ? failure : wrong('"' + place + "\" is " + failure.text(), failure.hint());
    }
}

Item rawItemOf(const QString &address, const QString &type)
{
    return parseItem(type.isEmpty() ? address : address + ':' + type, Notation::Raw);
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
    const auto interval = common::parseDuration(cell.toStdString(), common::Milliseconds(1));
    if (interval && interval->count() >= kLeastInterval && interval->count() <= kLargestInterval)
        return int(interval->count());
    throw wrong('"' + cell + "\" is not an interval",
                filled("intervals are milliseconds from %1 to %2, or have a unit, as %3", kLeastInterval,
                       kLargestInterval, common::kDurationExamples));
}

std::optional<double> numberIn(const QString &text)
{
    if (text.isEmpty())
        return std::nullopt;
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(number))
        throw wrong('"' + text + "\" is not a number", "write a number with a point, as 0.1");
    return number;
}

Access accessOf(const QString &cell)
{
    if (cell.isEmpty())
        return Access::Unsaid;
    if (cell != "ro" && cell != "rw")
        throw wrong('"' + cell + "\" is not an access",
                    "write ro for a tag that is only read, rw for one that is written, too, or nothing");
    return cell == "ro" ? Access::ReadOnly : Access::ReadWrite;
}

void checkScale(const Tag &tag)
{
    const ValueType type = tag.item.type;
    if (tag.scaling.isActive() && !hasNumbers(type))
        throw wrong("values of type " + typeName(type) + " cannot be scaled",
                    "leave scale and offset empty, or name another type");
    if (tag.scaling.scale == 0)
        throw wrong("with a scale of 0 every value is the same", "leave the scale empty, or name another");
}

void checkLimits(const Tag &tag)
{
    const ValueType type = tag.item.type;
    if ((tag.minimum || tag.maximum) && !hasNumbers(type))
        throw wrong("values of type " + typeName(type) + " have no limits",
                    "leave min and max empty, or name another type");
    for (const std::optional<double> &limit : {tag.minimum, tag.maximum})
        if (limit && (type == ValueType::U64 || type == ValueType::I64) &&
            std::fabs(*limit) >= kLargestExactWhole)
            throw wrong("a limit of 2^53 or more is not exact",
                        "name a limit below 9007199254740992, or leave it empty");
    if (tag.minimum && tag.maximum && *tag.minimum > *tag.maximum)
        throw wrong("min is larger than max", "exchange them: min is the least value, max the largest");
    if (tag.deadband && !hasNumbers(type))
        throw wrong("values of type " + typeName(type) + " have no deadband",
                    "leave the deadband empty, or name another type");
    if (tag.deadband && *tag.deadband < 0)
        throw wrong("a deadband cannot be less than 0", "leave it empty, or write a number from 0 on");
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

Tag tagOf(const Row &row, Notation notation)
{
    const QString address = row.cell("address");
    const QString type = row.cell("type");
    Tag tag(notation == Notation::Raw ? rawItemOf(address, type) : itemOf(address, type));
    tag.name = row.cell("name");
    tag.scaling.scale = numberIn(row.cell("scale")).value_or(1);
    tag.scaling.offset = numberIn(row.cell("offset")).value_or(0);
    tag.unit = row.cell("unit");
    tag.item.station = stationOf(row.cell("station"), tag.item);
    tag.interval = intervalOf(row.cell("interval"));
    tag.access = accessOf(row.cell("access"));
    tag.minimum = numberIn(row.cell("min"));
    tag.maximum = numberIn(row.cell("max"));
    tag.deadband = numberIn(row.cell("deadband"));
    if (tag.name.isEmpty())
        throw wrong("the tag has no name", "every tag needs one; a plain item can be named beside the file");
    checkScale(tag);
    checkLimits(tag);
    return tag;
}

bool isNothing(const QString &line)
{
    return line.trimmed().isEmpty() || line.startsWith('#');
}

class TagFileParser
{
public:
    explicit TagFileParser(Notation notation_) : notation(notation_) {}

    // Takes a line; what stands in it is told by its place, "tags.csv:3".
    void parse(const QString &line, const QString &place);

    std::vector<Tag> tags;

private:
    Notation notation;
    QStringList columns; // empty until the head was read
    QChar separator;
    QSet<QString> names;
};

void TagFileParser::parse(const QString &line, const QString &place)
{
    if (columns.isEmpty()) {
        separator = csvSeparator(line);
        columns = parseHead(line);
        for (const QString &column : unknownIn(columns))
            reportDetail("the column \"" + column + "\" of a tag file is left out");
        return;
    }
    Tag tag = tagOf(Row(columns, cellsOf(line, separator)), notation);
    tag.definedAt = place;
    if (names.contains(tag.name))
        throw wrong('"' + tag.name + "\" is there twice", "give every tag a name of its own");
    names << tag.name;
    tags.push_back(tag);
}

QString fileIn(const QString &reference)
{
    return reference.mid(1).section(':', 0, 0);
}

std::vector<Tag> readTagFile(const QString &name, Outcome &outcome, Notation notation)
{
    return parseTagFile(name, readTextFile(name, "check the file's name and rights", kLargestText), outcome,
                        notation);
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
std::vector<Tag> parseTagFile(const QString &fileName, const QByteArray &text, Outcome &outcome,
                              Notation notation)
{
    TagFileParser parser(notation);
    const QStringList lines = utf8Text(text).split('\n');
    bool hasHead = false;
    for (int i = 0; i < int(lines.size()); ++i) {
        if (isNothing(lines.at(i)))
            continue;
        const QString place = filled("%1:%2", fileName, i + 1);
        const auto failure = outcome.attempt(place, [&] { parser.parse(lines.at(i), place); });
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

const std::vector<Tag> &TagFiles::tagsIn(const QString &fileName)
{
    const auto known = files.find(fileName);
    if (known != files.end())
        return known->second;
    Outcome outcome;
    const std::vector<Tag> tags = readTagFile(fileName, outcome, notationOfAll);
    if (!outcome.isSuccess())
        throw brokenTagFile();
    return files[fileName] = tags;
}

Tag TagFiles::find(const QString &reference)
{
    const QString name = reference.section(':', 1);
    const std::vector<Tag> &tags = tagsIn(fileIn(reference));
    for (const Tag &tag : tags)
        if (tag.name == name)
            return tag;
    throw unknownTag(name, tags);
}

std::vector<Tag> TagFiles::tags() const
{
    std::vector<Tag> all;
    for (const auto &[name, tags] : files)
        all.insert(all.end(), tags.cbegin(), tags.cend());
    return all;
}

Tag findTag(const QString &reference, Notation notation)
{
    return TagFiles(notation).find(reference);
}

std::vector<Tag> parseTags(const QStringList &texts, Outcome &outcome, Notation notation)
{
    std::vector<Tag> tags;
    for (const QString &text : texts) {
        outcome.attempt(text, [&] {
            if (!isTagReference(text))
                tags.emplace_back(parseItem(text, notation));
            else if (text.contains(':'))
                tags.push_back(findTag(text, notation));
            else
                for (const Tag &tag : readTagFile(fileIn(text), outcome, notation))
                    tags.push_back(tag);
        });
    }
    return tags;
}

} // namespace host
