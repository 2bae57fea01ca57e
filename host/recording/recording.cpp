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
#include <limits>
#include <optional>
#include <utility>

namespace host {

namespace {

const char kHint[] = "record such a file with s7ppi watch -o FILE.csv";
// Numbers beyond this are taken as none: up to it no sum or difference of them is infinite.
constexpr double kLargest = 1e300;

const QStringList kNeeded = {"time", "address", "type", "value", "error"};

// What the curves of a page are drawn from, in samples: those of all values together, and of one.
constexpr size_t kAllSamples = 1 << 19;
constexpr size_t kMostSamples = 4096;
constexpr size_t kLeastSamples = 64;

// A page has no room for more ports and stations.
constexpr int kMostPlaces = 20;

// A power of two, which is what a list takes memory for anyway.
size_t mostSamplesOf(size_t series)
{
    size_t most = kMostSamples;
    while (most > kLeastSamples && most * series > kAllSamples)
        most /= 2;
    return most;
}

bool isNumber(const QString &type)
{
    return type != "hex" && type != "str" && type != "string";
}

void addOnce(QStringList &texts, const QString &text)
{
    if (!text.isEmpty() && texts.size() < kMostPlaces && !texts.contains(text))
        texts << text;
}

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

// Where the cells of a record stand; -1 for those that it does not have.
struct Columns
{
    int count = 0;
    int time = -1;
    int port = -1;
    int name = -1;
    int address = -1;
    int station = -1;
    int type = -1;
    int index = -1;
    int value = -1;
    int unit = -1;
    int ms = -1;
    int error = -1;
    int simulated = -1;
};

Columns columnsOf(const QStringList &names)
{
    const auto place = [&](const char *name) { return int(names.lastIndexOf(name)); };
    return {int(names.size()), place("time"),  place("port"),     place("name"),  place("address"),
            place("station"),  place("type"),  place("index"),    place("value"), place("unit"),
            place("ms"),       place("error"), place("simulated")};
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
    void takePlace();
    void takeError(qint64 time);
    void takeValue(qint64 time);
    void takeAnswer();
    qint64 timeCell();
    double number(const QString &text, const QString &what) const;
    int itemOfRow();
    RecordedSeries &seriesFor(int item, const QString &index);
    void limitAll();
    void addTo(RecordedSeries &series, const RecordedSample &sample) const;
    void nameElements();
    void arrange();

    QString cell(int column) const { return column < 0 ? QString() : cells.at(column); }
    bool isFirstElement() const { return cell(columns.index).isEmpty() || cell(columns.index) == "0"; }

    QString fileName;
    int line = 1;
    QChar separator;
    Columns columns;
    QStringList cells;
    QString lastTimeText;
    qint64 lastTime = 0;
    Recording recording;
    bool hasBegun = false;

    struct Item
    {
        QString name;
        QString address;
        QString station;
        QString type;
        QString unit;
        QHash<QString, int> elements; // the series of each index
        std::vector<int> series;      // of the elements in their order
        QStringList indexes;          // of the same
        std::optional<qint64> firstError;
        int errors;
    };
    std::vector<Item> items;
    QHash<QString, int> itemNumbers;
    size_t mostSamples = kMostSamples;
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
    separator = csvSeparator(text);
    const QStringList names = csvCells(text, separator).value_or(QStringList());
    for (const QString &name : kNeeded)
        if (!names.contains(name))
            throw wrong("there is no column \"" + name + '"');
    columns = columnsOf(names);
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

// What came with one request has one time.
qint64 RecordingParser::timeCell()
{
    const QString text = cell(columns.time);
    if (hasBegun && text == lastTimeText)
        return lastTime;
    const QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (!time.isValid())
        throw wrong('"' + text + "\" is no time");
    lastTimeText = text;
    lastTime = time.toMSecsSinceEpoch();
    if (!hasBegun) {
        recording.begin = recording.end = lastTime;
        recording.offset = time.offsetFromUtc();
        hasBegun = true;
    }
    recording.begin = std::min(recording.begin, lastTime);
    recording.end = std::max(recording.end, lastTime);
    return lastTime;
}

double RecordingParser::number(const QString &text, const QString &what) const
{
    bool isRight = false;
    const double value = text.toDouble(&isRight);
    return isRight ? value : throw wrong('"' + text + "\" is no " + what);
}

int RecordingParser::itemOfRow()
{
    const QString name = cell(columns.name);
    const QString address = name.isEmpty() ? cell(columns.address) : QString();
    const QString station = name.isEmpty() ? cell(columns.station) : QString();
    const QString key = name + '\n' + address + '\n' + station + '\n' + cell(columns.type);
    const auto found = itemNumbers.constFind(key);
    if (found != itemNumbers.constEnd())
        return *found;
    const int number = int(items.size());
    itemNumbers[key] = number;
    items.push_back({name, address, station, cell(columns.type), cell(columns.unit), {}, {}, {}, {}, 0});
    return number;
}

RecordedSeries &RecordingParser::seriesFor(int number, const QString &index)
{
    Item &item = items.at(size_t(number));
    const auto found = item.elements.constFind(index);
    if (found != item.elements.constEnd())
        return recording.series.at(size_t(*found));
    item.elements[index] = int(recording.series.size());
    item.series.push_back(int(recording.series.size()));
    item.indexes << index;
    recording.series.push_back(
        {QString(), item.type, item.unit, isNumber(item.type), QString(), number, 0, item.errors, {}, {}});
    RecordedSeries &series = recording.series.back();
    limitAll();
    if (item.firstError)
        addTo(series, {*item.firstError, 0, true});
    return series;
}

// The more values there are, the fewer samples has each. Those that get no more are looked at when the values
// have become twice as many.
void RecordingParser::limitAll()
{
    const size_t count = recording.series.size();
    mostSamples = mostSamplesOf(count);
    if ((count & (count - 1)) != 0)
        return;
    for (RecordedSeries &series : recording.series)
        series.isThinned |= limitSamples(series.samples, mostSamples);
}

void RecordingParser::addTo(RecordedSeries &series, const RecordedSample &sample) const
{
    series.trend.add(sample);
    series.isThinned |= addSample(series.samples, sample, mostSamples);
}

void RecordingParser::takePlace()
{
    addOnce(recording.ports, cell(columns.port));
    addOnce(recording.stations, cell(columns.station));
    recording.isSimulated = recording.isSimulated || cell(columns.simulated) == "1";
}

void RecordingParser::takeValue(qint64 time)
{
    const QString text = cell(columns.value);
    const double value = isNumber(cell(columns.type)) ? number(text, "number") : 0;
    RecordedSeries &series = seriesFor(itemOfRow(), cell(columns.index));
    ++series.answers;
    if (series.isNumber)
        addTo(series, {time, value, !(std::abs(value) <= kLargest)});
    else
        series.lastText = shortened(text);
}

// One answer brings all the elements of an item, so that its time counts once.
void RecordingParser::takeAnswer()
{
    if (!isFirstElement())
        return;
    ++recording.answers;
    const QString text = cell(columns.ms);
    if (text.isEmpty())
        return;
    const double time = number(text, "answer time");
    if (!(time >= 0) || !std::isfinite(time))
        throw wrong('"' + text + "\" is no answer time");
    recording.answerTimes.add(time);
}

void RecordingParser::takeError(qint64 time)
{
    const int number = itemOfRow();
    Item &item = items.at(size_t(number));
    ++item.errors;
    item.firstError = item.firstError.value_or(time);
    for (const int place : item.series) {
        RecordedSeries &series = recording.series.at(size_t(place));
        ++series.errors;
        addTo(series, {time, 0, true});
    }
    recording.errors.add(cell(columns.error), number);
    recording.errorTimes.add(time);
}

void RecordingParser::takeRow(const QString &text)
{
    const std::optional<QStringList> parts = csvCells(text, separator);
    if (!parts)
        throw wrong("a quote is not closed");
    cells = *parts;
    if (cells.size() != columns.count)
        throw wrong(filled("%1 cells instead of %2", cells.size(), columns.count));
    const qint64 time = timeCell();
    takePlace();
    if (!cell(columns.error).isEmpty()) {
        takeError(time);
        return;
    }
    takeValue(time);
    takeAnswer();
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
    return !hasSwallowed && open == columns.value;
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
        if (!parts.value(columns.error).isEmpty())
            ++recording.leftOut;
        else
            takeRow(text);
    } catch (const Failure &) {
        ++recording.leftOut;
    }
}

// Where an item has several elements their numbers become part of the labels: "VB100[2]". Which station an
// address is of is said when there are several.
void RecordingParser::nameElements()
{
    for (const Item &item : items) {
        const bool hasStation = recording.stations.size() > 1 && !item.station.isEmpty();
        const QString place = hasStation ? item.address + '@' + item.station : item.address;
        const QString label = item.name.isEmpty() ? place : item.name;
        recording.items << label;
        for (size_t i = 0; i < item.series.size(); ++i)
            recording.series.at(size_t(item.series.at(i))).label =
                item.series.size() > 1 ? label + '[' + item.indexes.at(int(i)) + ']' : label;
    }
}

// Brings the values of an item together, and adds those of which nothing is known but that they failed.
void RecordingParser::arrange()
{
    std::vector<RecordedSeries> ordered;
    for (size_t i = 0; i < items.size(); ++i) {
        const Item &item = items.at(i);
        for (const int place : item.series)
            ordered.push_back(std::move(recording.series.at(size_t(place))));
        if (item.series.empty())
            ordered.push_back({recording.items.at(int(i)),
                               item.type,
                               item.unit,
                               true,
                               QString(),
                               int(i),
                               0,
                               item.errors,
                               {},
                               {{*item.firstError, 0, true}}});
    }
    for (RecordedSeries &series : ordered) {
        if (series.isThinned)
            thinOut(series.samples, mostSamples);
        else
            sortByTime(series.samples);
    }
    recording.series = std::move(ordered);
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
    nameElements();
    arrange();
    return std::move(recording);
}

} // namespace

Recording readRecording(const QString &fileName)
{
    LineReader lines(fileName,
                     std::numeric_limits<qint64>::max()); // a line at a time, it may have grown for months
    return RecordingParser(fileName).parse(lines);
}

Recording parseRecording(const QString &fileName, const QByteArray &text)
{
    LineReader lines(fileName, text);
    return RecordingParser(fileName).parse(lines);
}

} // namespace host
