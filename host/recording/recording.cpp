// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/recording/recording.h"

#include "host/base/failure.h"
#include "host/base/files.h"
#include "host/base/filled.h"
#include "host/text/csv.h"

#include <QDateTime>
#include <QHash>

#include <algorithm>
#include <cmath>
#include <optional>

namespace host {

namespace {

const char kHint[] = "record such a file with s7ppi watch -o FILE.csv";
// Numbers beyond this are taken as none: up to it no sum or difference of them is infinite.
constexpr double kLargest = 1e300;

const QStringList kNeeded = {"time", "address", "type", "value", "error"};

// A record with the number of the line on which it begins. A cell between quotes may hold line ends, so that
// counting records would not give it.
struct Row
{
    int line;
    QString text;
};

std::vector<Row> rowsOf(const QString &text)
{
    std::vector<Row> rows;
    bool isOpen = false;
    const QStringList lines = text.split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        if (isOpen)
            rows.back().text += '\n' + lines.at(i);
        else
            rows.push_back({i + 1, lines.at(i)});
        isOpen ^= lines.at(i).count('"') % 2 != 0;
    }
    return rows;
}

class RecordingParser
{
public:
    explicit RecordingParser(const QString &fileName_) : fileName(fileName_) {}

    Recording parse(const QString &text);

private:
    Failure wrong(const QString &what) const
    {
        return Failure(ExitCode::Usage, filled("%1:%2: %3", fileName, line, what), kHint);
    }

    void takeHead(const QString &text);
    bool isHeadAgain(const QString &text);
    void takeRow(const QString &text);
    void takeLastRow(const QString &text, bool isWhole);
    void takeError(qint64 time);
    void takeValue(qint64 time);
    void takeAnswerTime();
    qint64 timeCell();
    double number(const QString &text, const QString &what) const;
    RecordedSeries &seriesFor(const QString &index);
    void numberElements();

    QString cell(const char *column) const { return cells.value(columns.value(column, -1)); }
    QString label() const { return cell("name").isEmpty() ? cell("address") : cell("name"); }

    QString fileName;
    int line = 1;
    QChar separator;
    QHash<QString, int> columns;
    QStringList cells;
    Recording recording;
    bool hasBegun = false;

    struct Place
    {
        QString item; // label and type
        QString index;
    };
    std::vector<Place> places; // one for each of the series
    QHash<QString, int> known;
};

void RecordingParser::takeHead(const QString &text)
{
    columns.clear();
    separator = csvSeparator(text);
    const QStringList names = csvCells(text, separator).value_or(QStringList());
    for (int i = 0; i < names.size(); ++i)
        columns[names.at(i)] = i;
    for (const QString &name : kNeeded)
        if (!columns.contains(name))
            throw wrong("there is no column \"" + name + '"');
}

// Whether the record is a heading again: another recording was appended here, and the one before it may have
// been cut in its last line.
bool RecordingParser::isHeadAgain(const QString &text)
{
    const int start = int(text.lastIndexOf(kNeeded.first() + separator));
    if (start < 0)
        return false;
    const QStringList names = csvCells(text.mid(start), separator).value_or(QStringList());
    for (const QString &name : kNeeded)
        if (!names.contains(name))
            return false;
    takeHead(text.mid(start));
    return true;
}

qint64 RecordingParser::timeCell()
{
    const QDateTime time = QDateTime::fromString(cell("time"), Qt::ISODateWithMs);
    if (!time.isValid())
        throw wrong('"' + cell("time") + "\" is no time");
    const qint64 milliseconds = time.toMSecsSinceEpoch();
    if (!hasBegun) {
        recording.begin = recording.end = milliseconds;
        recording.offset = time.offsetFromUtc();
        hasBegun = true;
    }
    recording.begin = std::min(recording.begin, milliseconds);
    recording.end = std::max(recording.end, milliseconds);
    return milliseconds;
}

double RecordingParser::number(const QString &text, const QString &what) const
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    return isNumber ? value : throw wrong('"' + text + "\" is no " + what);
}

RecordedSeries &RecordingParser::seriesFor(const QString &index)
{
    const QString item = label() + '\n' + cell("type");
    const QString key = item + '\n' + index;
    const auto found = known.constFind(key);
    if (found != known.constEnd())
        return recording.series.at(size_t(*found));
    known[key] = int(recording.series.size());
    places.push_back({item, index});
    const bool isNumber = cell("type") != "hex" && cell("type") != "str";
    recording.series.push_back({label(), cell("type"), cell("unit"), isNumber, QString(), {}});
    return recording.series.back();
}

void RecordingParser::takeValue(qint64 time)
{
    RecordedSeries &series = seriesFor(cell("index"));
    series.lastText = cell("value");
    if (!series.isNumber)
        return;
    const double value = number(cell("value"), "number");
    series.samples.push_back({time, value, !(std::abs(value) <= kLargest)});
}

// One answer brings all the elements of an item, so that its time counts once.
void RecordingParser::takeAnswerTime()
{
    const bool isFirst = cell("index").isEmpty() || cell("index") == "0";
    if (!isFirst || cell("ms").isEmpty())
        return;
    const double time = number(cell("ms"), "answer time");
    if (!(time >= 0) || !std::isfinite(time))
        throw wrong('"' + cell("ms") + "\" is no answer time");
    recording.answerTimes.push_back(time);
}

void RecordingParser::takeError(qint64 time)
{
    const QString item = label() + '\n' + cell("type");
    for (size_t i = 0; i < places.size(); ++i)
        if (places.at(i).item == item)
            recording.series.at(i).samples.push_back({time, 0, true});
    const QString cause = cell("error");
    auto entry = std::find_if(recording.errors.begin(), recording.errors.end(),
                              [&](const RecordedError &error) { return error.cause == cause; });
    if (entry == recording.errors.end())
        entry = recording.errors.insert(recording.errors.end(), {cause, 0, {}});
    ++entry->count;
    ++recording.errorCount;
    if (!entry->labels.contains(label()))
        entry->labels << label();
}

void RecordingParser::takeRow(const QString &text)
{
    const std::optional<QStringList> parts = csvCells(text, separator);
    if (!parts)
        throw wrong("a quote is not closed");
    cells = *parts;
    if (cells.size() != columns.size())
        throw wrong(filled("%1 cells instead of %2", cells.size(), columns.size()));
    const qint64 time = timeCell();
    if (!cell("error").isEmpty()) {
        takeError(time);
        return;
    }
    takeValue(time);
    takeAnswerTime();
}

void RecordingParser::takeLastRow(const QString &text, bool isWhole)
{
    try {
        takeRow(text);
    } catch (const Failure &) {
        if (isWhole)
            throw;
        ++recording.leftOut;
    }
}

// Where an item has several elements their numbers become part of the labels: "VB100[2]".
void RecordingParser::numberElements()
{
    QHash<QString, int> elements;
    for (const Place &place : places)
        ++elements[place.item];
    for (size_t i = 0; i < places.size(); ++i)
        if (elements.value(places.at(i).item) > 1)
            recording.series.at(i).label += '[' + places.at(i).index + ']';
}

Recording RecordingParser::parse(const QString &text)
{
    const std::vector<Row> rows = rowsOf(text);
    takeHead(rows.front().text);
    for (size_t i = 1; i < rows.size(); ++i) {
        line = rows.at(i).line;
        if (rows.at(i).text.trimmed().isEmpty())
            continue;
        if (isHeadAgain(rows.at(i).text))
            ++recording.leftOut;
        else if (i + 1 < rows.size())
            takeRow(rows.at(i).text);
        else
            takeLastRow(rows.at(i).text, text.endsWith('\n'));
    }
    line = 1;
    if (!hasBegun)
        throw wrong("there are no records behind the first line");
    numberElements();
    return recording;
}

} // namespace

Recording parseRecording(const QString &fileName, const QByteArray &text)
{
    return RecordingParser(fileName).parse(utf8Text(text));
}

} // namespace host
