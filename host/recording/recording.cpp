// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/recording/recording.h"

#include "host/base/failure.h"
#include "host/base/files.h"
#include "host/base/filled.h"
#include "host/base/line_reader.h"
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

// What a recording takes in memory grows with it; this is months of a value a second.
constexpr qint64 kLargestRecording = 256 << 20;

// A record. A cell between quotes may hold line ends, so that it may have several lines.
struct Row
{
    int line; // the number of its first one
    QString text;
    bool isOpen;  // a quote is not closed
    bool isWhole; // the file does not end within its last line
};

bool opensOrCloses(const QString &text)
{
    return text.count('"') % 2 != 0;
}

class RecordingParser
{
public:
    explicit RecordingParser(const QString &fileName_) : fileName(fileName_) {}

    Recording parse(LineReader &lines);

private:
    Failure wrong(const QString &what) const
    {
        return Failure(ExitCode::Usage, filled("%1:%2: %3", fileName, line, what), kHint);
    }

    std::optional<Row> nextRow(LineReader &lines);
    void takeHead(const QString &text);
    bool isHeadAgain(const QString &text);
    void take(const Row &row);
    bool isCut(const Row &row) const;
    bool beginsLikeRecord(const QString &text) const;
    void takeRow(const QString &text);
    void takeCutRow(const QString &text);
    void takeError(qint64 time);
    void takeValue(qint64 time);
    void takeAnswerTime();
    qint64 timeCell();
    double number(const QString &text, const QString &what) const;
    RecordedSeries &seriesFor(const QString &index);
    void numberElements();

    QString cell(const char *column) const { return cells.value(columns.value(column, -1)); }
    QString place() const
    {
        const QString station = cell("station");
        return station.isEmpty() ? cell("address") : cell("address") + '@' + station;
    }
    QString label() const { return cell("name").isEmpty() ? place() : cell("name"); }

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

std::optional<Row> RecordingParser::nextRow(LineReader &lines)
{
    if (!lines.next())
        return std::nullopt;
    Row row = {lines.number(), utf8Text(lines.line()), false, lines.isWhole()};
    row.isOpen = opensOrCloses(row.text);
    while (row.isOpen && row.text.size() < kLongestLine && lines.next()) {
        const QString more = utf8Text(lines.line());
        row.text += '\n' + more;
        row.isOpen = !opensOrCloses(more);
        row.isWhole = lines.isWhole();
    }
    return row;
}

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
    recording.isSimulated = recording.isSimulated || cell("simulated") == "1";
    if (!cell("error").isEmpty()) {
        takeError(time);
        return;
    }
    takeValue(time);
    takeAnswerTime();
}

void RecordingParser::take(const Row &row)
{
    line = row.line;
    if (row.text.trimmed().isEmpty())
        return;
    if (isHeadAgain(row.text))
        ++recording.leftOut;
    else if (isCut(row))
        takeCutRow(row.text);
    else
        takeRow(row.text);
}

// Whether the file ends within the record. It may do so behind a line end that stands in a text; a quote that
// is open for another reason has swallowed the records behind it.
bool RecordingParser::isCut(const Row &row) const
{
    if (!row.isWhole || !row.isOpen)
        return !row.isWhole;
    if (row.text.size() >= kLongestLine) // the file goes on
        return false;
    const QStringList lines = row.text.split('\n');
    const bool hasSwallowed = std::any_of(lines.begin() + 1, lines.end(),
                                          [this](const QString &text) { return beginsLikeRecord(text); });
    const int open = int(csvCells(row.text + '"', separator).value_or(QStringList()).size()) - 1;
    return !hasSwallowed && open == columns.value("value");
}

bool RecordingParser::beginsLikeRecord(const QString &text) const
{
    return QDateTime::fromString(text.section(separator, 0, 0), Qt::ISODateWithMs).isValid();
}

// A record that lacks no more than its line end counts, but for one of an error: its text comes last, and may
// have gone on.
void RecordingParser::takeCutRow(const QString &text)
{
    try {
        const QStringList parts = csvCells(text, separator).value_or(QStringList());
        if (!parts.value(columns.value("error")).isEmpty())
            ++recording.leftOut;
        else
            takeRow(text);
    } catch (const Failure &) {
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

Recording RecordingParser::parse(LineReader &lines)
{
    const std::optional<Row> head = nextRow(lines);
    takeHead(head ? head->text : QString());
    while (const std::optional<Row> row = nextRow(lines))
        take(*row);
    line = 1;
    if (!hasBegun)
        throw wrong("there are no records behind the first line");
    numberElements();
    return recording;
}

} // namespace

Recording readRecording(const QString &fileName)
{
    LineReader lines(fileName, kLargestRecording);
    return RecordingParser(fileName).parse(lines);
}

Recording parseRecording(const QString &fileName, const QByteArray &text)
{
    LineReader lines(fileName, text);
    return RecordingParser(fileName).parse(lines);
}

} // namespace host
