// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/recording/watch_log.h"

#include "host/base/failure.h"
#include "host/base/text_input.h"
#include "host/text/csv.h"

#include <QDateTime>
#include <QHash>

#include <algorithm>
#include <cmath>

namespace host {

namespace {

const char kHint[] = "record such a file with s7ppi watch -o FILE.csv";
// No sum or difference of such numbers is infinite.
constexpr double kLargest = 1e300;

const QStringList kNeeded = {"time", "address", "type", "value", "error"};

// A record, and the line on which it begins; a cell between quotes may hold line ends.
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

class LogParser
{
public:
    explicit LogParser(const QString &fileName_) : fileName(fileName_) {}

    WatchLog parse(const QString &text);

private:
    Failure wrong(const QString &what) const
    {
        return Failure(ExitCode::Usage, QString("%1:%2: %3").arg(fileName).arg(line).arg(what), kHint);
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
    LoggedSeries &seriesFor(const QString &index);
    void numberElements();

    QString cell(const char *column) const { return cells.value(columns.value(column, -1)); }
    QString label() const { return cell("name").isEmpty() ? cell("address") : cell("name"); }

    QString fileName;
    int line = 1;
    QChar separator;
    QHash<QString, int> columns;
    QStringList cells;
    WatchLog log;
    bool hasBegun = false;

    struct Place
    {
        QString item; // label and type
        QString index;
    };
    std::vector<Place> places; // one for each of the series
    QHash<QString, int> known;
};

void LogParser::takeHead(const QString &text)
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

// Where another recording was appended. What stands before the heading was cut.
bool LogParser::isHeadAgain(const QString &text)
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

qint64 LogParser::timeCell()
{
    const QDateTime time = QDateTime::fromString(cell("time"), Qt::ISODateWithMs);
    if (!time.isValid())
        throw wrong('"' + cell("time") + "\" is no time");
    const qint64 milliseconds = time.toMSecsSinceEpoch();
    if (!hasBegun) {
        log.begin = log.end = milliseconds;
        log.offset = time.offsetFromUtc();
        hasBegun = true;
    }
    log.begin = std::min(log.begin, milliseconds);
    log.end = std::max(log.end, milliseconds);
    return milliseconds;
}

double LogParser::number(const QString &text, const QString &what) const
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    return isNumber ? value : throw wrong('"' + text + "\" is no " + what);
}

LoggedSeries &LogParser::seriesFor(const QString &index)
{
    const QString item = label() + '\n' + cell("type");
    const QString key = item + '\n' + index;
    const auto found = known.constFind(key);
    if (found != known.constEnd())
        return log.series.at(size_t(*found));
    known[key] = int(log.series.size());
    places.push_back({item, index});
    const bool isNumber = cell("type") != "hex" && cell("type") != "str";
    log.series.push_back({label(), cell("type"), cell("unit"), isNumber, QString(), {}});
    return log.series.back();
}

void LogParser::takeValue(qint64 time)
{
    LoggedSeries &series = seriesFor(cell("index"));
    series.lastText = cell("value");
    if (!series.isNumber)
        return;
    const double value = number(cell("value"), "number");
    series.samples.push_back({time, value, !(std::abs(value) <= kLargest)});
}

// All the elements of an item share one answer.
void LogParser::takeAnswerTime()
{
    const bool isFirst = cell("index").isEmpty() || cell("index") == "0";
    if (!isFirst || cell("ms").isEmpty())
        return;
    const double time = number(cell("ms"), "answer time");
    if (!(time >= 0) || !std::isfinite(time))
        throw wrong('"' + cell("ms") + "\" is no answer time");
    log.answerTimes.push_back(time);
}

void LogParser::takeError(qint64 time)
{
    const QString item = label() + '\n' + cell("type");
    for (size_t i = 0; i < places.size(); ++i)
        if (places.at(i).item == item)
            log.series.at(i).samples.push_back({time, 0, true});
    const QString cause = cell("error");
    auto entry = std::find_if(log.errors.begin(), log.errors.end(),
                              [&](const LoggedError &error) { return error.cause == cause; });
    if (entry == log.errors.end())
        entry = log.errors.insert(log.errors.end(), {cause, 0, {}});
    ++entry->count;
    ++log.errorCount;
    if (!entry->labels.contains(label()))
        entry->labels << label();
}

void LogParser::takeRow(const QString &text)
{
    const std::optional<QStringList> parts = csvCells(text, separator);
    if (!parts)
        throw wrong("a quote is not closed");
    cells = *parts;
    if (cells.size() != columns.size())
        throw wrong(QString("%1 cells instead of %2").arg(cells.size()).arg(columns.size()));
    const qint64 time = timeCell();
    if (!cell("error").isEmpty()) {
        takeError(time);
        return;
    }
    takeValue(time);
    takeAnswerTime();
}

void LogParser::takeLastRow(const QString &text, bool isWhole)
{
    try {
        takeRow(text);
    } catch (const Failure &) {
        if (isWhole)
            throw;
        ++log.leftOut;
    }
}

// "VB100[2]": only where an item has more elements than one.
void LogParser::numberElements()
{
    QHash<QString, int> elements;
    for (const Place &place : places)
        ++elements[place.item];
    for (size_t i = 0; i < places.size(); ++i)
        if (elements.value(places.at(i).item) > 1)
            log.series.at(i).label += '[' + places.at(i).index + ']';
}

WatchLog LogParser::parse(const QString &text)
{
    const std::vector<Row> rows = rowsOf(text);
    takeHead(rows.front().text);
    for (size_t i = 1; i < rows.size(); ++i) {
        line = rows.at(i).line;
        if (rows.at(i).text.trimmed().isEmpty())
            continue;
        if (isHeadAgain(rows.at(i).text))
            ++log.leftOut;
        else if (i + 1 < rows.size())
            takeRow(rows.at(i).text);
        else
            takeLastRow(rows.at(i).text, text.endsWith('\n'));
    }
    line = 1;
    if (!hasBegun)
        throw wrong("there are no records behind the first line");
    numberElements();
    return log;
}

} // namespace

WatchLog parseWatchLog(const QString &fileName, const QByteArray &text)
{
    return LogParser(fileName).parse(utf8Text(text));
}

} // namespace host
