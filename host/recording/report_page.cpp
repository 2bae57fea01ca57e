// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/recording/report_page.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/driver/driver_fault.h"
#include "host/recording/axis.h"
#include "host/recording/statistics.h"
#include "host/recording/trend_chart.h"
#include "host/text/number_text.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <optional>
#include <vector>

namespace host {

namespace {

const char kHead[] = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<title>%1</title>
<style>
:root {
  --page: #f6f7f9; --card: #ffffff; --text: #1a1d21; --quiet: #5f6770; --rule: #dfe3e8;
  --grid: #e9edf2; --line: #1f6feb; --bad: #b42318; --good: #18794e; --gap: #f7dedb;
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #101317; --card: #191d23; --text: #e8eaed; --quiet: #9aa4b0; --rule: #2c333c;
    --grid: #272e37; --line: #6ea8fe; --bad: #ff8a80; --good: #6fd3a4; --gap: #52302f;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0; background: var(--page); color: var(--text);
  font: 16px/1.45 system-ui, -apple-system, "Segoe UI", Roboto, "Noto Sans", sans-serif;
  font-variant-numeric: tabular-nums;
}
main { max-width: 1200px; margin: 0 auto; padding: 20px 16px 40px; }
h1 { font-size: 1.5rem; margin: 0; overflow-wrap: anywhere; }
h2 { font-size: 1.15rem; margin: 32px 0 12px; }
h3 { font-size: 1rem; margin: 0; overflow-wrap: anywhere; }
p { margin: 4px 0 0; }
.quiet, footer { color: var(--quiet); font-size: .875rem; }
.card { background: var(--card); border: 1px solid var(--rule); border-radius: 10px; padding: 14px 16px; }
.tiles { display: grid; grid-template-columns: repeat(auto-fit, minmax(140px, 1fr)); gap: 10px; margin-top: 18px; }
.tile { padding: 10px 12px; }
.tile b { display: block; font-size: 1.2rem; font-weight: 600; white-space: nowrap; }
.tile span { color: var(--quiet); font-size: .8125rem; }
.bad { color: var(--bad); }
.good { color: var(--good); }
.trends { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 440px), 1fr)); gap: 14px;
  align-items: start; }
.trends .card { min-width: 0; }
.title { display: flex; flex-wrap: wrap; gap: 2px 12px; align-items: baseline; justify-content: space-between; }
.last { font-size: 1.25rem; font-weight: 600; overflow-wrap: anywhere; }
.unit { color: var(--quiet); font-weight: 400; font-size: .9rem; }
.plot { display: grid; grid-template-columns: auto 1fr; gap: 0 8px; margin-top: 12px; }
.scale, .times { position: relative; color: var(--quiet); font-size: .75rem; line-height: 1; }
.scale span { position: absolute; right: 0; transform: translateY(-50%); }
.times { grid-column: 2; height: 1.4em; margin-top: 6px; }
.times span { position: absolute; transform: translateX(-50%); white-space: nowrap; }
svg { display: block; width: 100%; height: 150px; border: 1px solid var(--rule); border-radius: 4px; }
svg.low { height: 90px; }
svg path { vector-effect: non-scaling-stroke; }
.grid { fill: none; stroke: var(--grid); }
.curve { fill: none; stroke: var(--line); stroke-width: 1.75; stroke-linejoin: round; }
.gap { fill: var(--gap); stroke: var(--gap); }
.bars { fill: var(--bad); stroke: var(--bad); stroke-width: .5; }
.head { grid-template-columns: auto 1fr; gap: 2px 14px; font-size: .875rem; }
.head dt { font-size: inherit; }
dl { display: grid; grid-template-columns: repeat(3, 1fr); gap: 4px 12px; margin: 10px 0 0; }
.wide { grid-column: 1 / -1; }
dt { color: var(--quiet); font-size: .75rem; }
dd { margin: 0; overflow-wrap: anywhere; }
.bins { display: grid; grid-template-columns: auto 1fr auto; gap: 5px 10px; align-items: center;
  font-size: .875rem; }
.bins > :nth-child(3n + 1), .bins > :nth-child(3n) { text-align: right; color: var(--quiet); }
.bar { height: 14px; border-radius: 0 3px 3px 0; background: var(--line); min-width: 1px; }
ul { list-style: none; margin: 10px 0 0; padding: 0; display: grid; gap: 10px; }
li b { overflow-wrap: anywhere; }
footer { margin-top: 32px; border-top: 1px solid var(--rule); padding-top: 10px; overflow-wrap: anywhere; }
@media print { body { background: #fff; } .card { break-inside: avoid; } }
</style>
</head>
<body>
<main>
)";

const char kEnd[] = R"(</main>
</body>
</html>
)";

QString milliseconds(double number)
{
    return QString::number(number, 'f', number < 10 ? 1 : 0) + " ms";
}

// A time as the clocks showed it in the place where the file was written.
QString timeText(const Recording &recording, qint64 time, const QString &form)
{
    return QDateTime::fromMSecsSinceEpoch(time, Qt::OffsetFromUTC, recording.offset).toString(form);
}

// So many per cent: 12 %, 0.5 %, 0.032 %.
QString percentText(int part, int whole)
{
    const double percent = part * 100.0 / std::max(whole, 1);
    return (percent < 10 ? QString::number(percent, 'g', 2) : QString::number(percent, 'f', 0)) + " %";
}

QString elements(const QString &name, const QStringList &texts)
{
    QString all;
    for (const QString &text : texts)
        all += QString("<%1>%2</%1>").arg(name, text);
    return all;
}

QString headEntry(const QString &what, const QString &value)
{
    return value.isEmpty() ? QString()
                           : elements("dt", {what}) + elements("dd", {value.toHtmlEscaped()}) + '\n';
}

// What is known of where and when the values were read.
QString head(const Recording &recording)
{
    const char form[] = "yyyy-MM-dd HH:mm:ss";
    const QString begin = timeText(recording, recording.begin, form);
    const QString end = timeText(recording, recording.end, form);
    const QString day = begin.section(' ', 0, 0) + ' ';
    const QString period = filled("%1 to %2", begin, end.startsWith(day) ? end.mid(day.size()) : end);
    const QString zone =
        recording.offset == 0 ? "UTC" : "local time, " + timeText(recording, recording.begin, "t");
    const QString entries =
        headEntry(recording.ports.size() > 1 ? "Ports" : "Port", recording.ports.join(", ")) +
        headEntry(recording.stations.size() > 1 ? "Stations" : "Station", recording.stations.join(", ")) +
        headEntry("Period", period) + headEntry("Times", zone);
    return "<dl class=\"head\">\n" + entries + "</dl>\n";
}

QString tile(const QString &value, const QString &what, const QString &kind = QString())
{
    return QString("<div class=\"card tile\"><b class=\"%1\">%2</b><span>%3</span></div>\n")
        .arg(kind, value.toHtmlEscaped(), what.toHtmlEscaped());
}

int readingsOf(const Recording &recording)
{
    return recording.answers + recording.errors.count();
}

QString errorTile(const Recording &recording)
{
    const int errors = recording.errors.count();
    const QString what = errors == 1 ? "error" : "errors";
    if (errors == 0)
        return tile("0", what, "good");
    return tile(QString::number(errors),
                filled("%1, %2 of the readings", what, percentText(errors, readingsOf(recording))), "bad");
}

QString summary(const Recording &recording)
{
    const AnswerCounter &times = recording.answerTimes;
    QString tiles = tile(elapsedText(recording.end - recording.begin), "watched");
    tiles +=
        tile(QString::number(recording.series.size()), recording.series.size() == 1 ? "value" : "values");
    tiles += tile(QString::number(recording.answers), recording.answers == 1 ? "answer" : "answers");
    if (times.count() > 0)
        tiles += tile(milliseconds(times.percentile(95)), "95 % of answers within");
    return "<div class=\"tiles\">\n" + tiles + errorTile(recording) + "</div>\n";
}

QString figure(const QString &what, const QString &value)
{
    return QString("<div><dt>%1</dt><dd>%2</dd></div>").arg(what, value);
}

QString percentOf(double part, double whole)
{
    return QString::number(part / whole * 100, 'f', 2) + '%';
}

// Where a time's tick is, from the left: 0 to 1.
double leftOf(const AxisTick &tick, const ChartFrame &frame)
{
    return (frame.margin + tick.place * (frame.width - 2 * frame.margin)) / frame.width;
}

QString grid(const ChartFrame &frame, const std::vector<AxisTick> &numbers,
             const std::vector<AxisTick> &times)
{
    QString path;
    for (const AxisTick &tick : numbers)
        path += filled("M0 %1H%2", QString::number((1 - tick.place) * frame.height, 'f', 1), frame.width);
    for (const AxisTick &tick : times)
        path += filled("M%1 0V%2", QString::number(leftOf(tick, frame) * frame.width, 'f', 1), frame.height);
    return "<path class=\"grid\" d=\"" + path + "\"/>";
}

QString scale(const std::vector<AxisTick> &numbers)
{
    QString spans;
    int widest = 1;
    for (const AxisTick &tick : numbers) {
        spans += QString("<span style=\"top:%1\">%2</span>").arg(percentOf(1 - tick.place, 1), tick.text);
        widest = std::max(widest, int(tick.text.size()));
    }
    return filled("<div class=\"scale\" style=\"width:%1ch\">%2</div>", widest, spans);
}

// A time at the very edge has a line, but no room for its text.
QString timeScale(const ChartFrame &frame, const std::vector<AxisTick> &times)
{
    constexpr double kEdge = 0.07;
    QString spans;
    for (const AxisTick &tick : times) {
        const double left = leftOf(tick, frame);
        if (times.size() == 1 || (left >= kEdge && left <= 1 - kEdge))
            spans += QString("<span style=\"left:%1\">%2</span>").arg(percentOf(left, 1), tick.text);
    }
    return "<div class=\"times\">" + spans + "</div>";
}

// A picture with its axes. what: for readers who cannot see it.
QString chart(const Recording &recording, const ChartFrame &frame, bool isWhole, const QString &what,
              const QString &paths, const QString &kind = QString())
{
    const std::vector<AxisTick> numbers = numberTicks(frame.bottom, frame.top, isWhole);
    const std::vector<AxisTick> times = timeTicks(recording.begin, recording.end, recording.offset);
    const QString picture =
        filled("<svg class=\"%1\" viewBox=\"0 0 %2 %3\" preserveAspectRatio=\"none\" role=\"img\" "
               "aria-label=\"%4\">%5%6</svg>",
               kind, frame.width, frame.height, what.toHtmlEscaped(), grid(frame, numbers, times), paths);
    return "<div class=\"plot\">" + scale(numbers) + picture + timeScale(frame, times) + "</div>\n";
}

QString path(const char *kind, const QString &drawing)
{
    return drawing.isEmpty() ? drawing : filled("<path class=\"%1\" d=\"%2\"/>", kind, drawing);
}

bool isBit(const RecordedSeries &series)
{
    return series.type == "bool";
}

QString trendPlot(const Recording &recording, const RecordedSeries &series, const Trend &trend)
{
    const ChartFrame frame = chartFrame(recording, trend, isBit(series));
    return chart(recording, frame, trend.isWhole, "trend of " + series.label,
                 path("gap", gapPath(series.samples, frame)) +
                     path("curve", trendPath(series.samples, frame)));
}

QString title(const RecordedSeries &series, const QString &last)
{
    const QString unit = series.unit.isEmpty()
                             ? QString()
                             : " <span class=\"unit\">" + series.unit.toHtmlEscaped() + "</span>";
    return QString("<div class=\"title\"><h3>%1 <span class=\"unit\">%2</span></h3>"
                   "<span class=\"last\">%3%4</span></div>\n")
        .arg(series.label.toHtmlEscaped(), series.type.toHtmlEscaped(), last.toHtmlEscaped(), unit);
}

// How many answers an item had, and what part of its readings failed.
QString readingsText(const RecordedSeries &series)
{
    const int gaps = series.isNumber ? series.answers - series.trend.samples() : 0;
    QString text = series.answers == 0 ? "never answered" : counted(series.answers, "sample");
    if (gaps > 0)
        text += filled(" (%1 no number)", gaps);
    if (series.errors > 0)
        text += filled(", <span class=\"bad\">%1 (%2)</span>", counted(series.errors, "error"),
                       percentText(series.errors, series.answers + series.errors));
    return "<p class=\"quiet\">" + text + "</p>";
}

QString figures(const RecordedSeries &series, const Trend &trend)
{
    if (isBit(series))
        return filled("<div class=\"wide\"><dt>on</dt><dd>%1 % of the time</dd></div>",
                      QString::number(trend.mean * 100, 'f', 1));
    return figure("min", shortNumber(trend.least)) + figure("mean", shortNumber(trend.mean)) +
           figure("max", shortNumber(trend.most));
}

QString trendCard(const Recording &recording, const RecordedSeries &series)
{
    const std::optional<Trend> trend = series.trend.upTo(recording.end);
    QString card;
    if (trend)
        card = title(series, shortNumber(trend->last)) + trendPlot(recording, series, *trend) + "<dl>" +
               figures(series, *trend) + "</dl>\n";
    else if (series.answers == 0)
        card = title(series, QString());
    else
        card =
            title(series, series.lastText) + "<p class=\"quiet\">No numbers: the last value is shown.</p>\n";
    return "<section class=\"card\">" + card + readingsText(series) + "</section>\n";
}

QByteArray trends(const Recording &recording)
{
    QByteArray cards;
    for (const RecordedSeries &series : recording.series)
        cards += trendCard(recording, series).toUtf8();
    return "<h2>Values</h2>\n<div class=\"trends\">\n" + cards + "</div>\n";
}

QString binRow(const TimeBin &bin, int fullest)
{
    const QString range =
        bin.to > 0 ? shortNumber(bin.from) + " to " + shortNumber(bin.to) : "above " + shortNumber(bin.from);
    const QString bar = bin.count ? filled("<span class=\"bar\" style=\"width:%1%\"></span>",
                                           QString::number(bin.count * 100.0 / fullest, 'f', 1))
                                  : QString("<span></span>");
    return QString("<span>%1</span>%2<span>%3</span>\n").arg(range, bar, QString::number(bin.count));
}

QString answerTimes(const AnswerCounter &times)
{
    if (times.count() == 0)
        return QString();
    const std::vector<TimeBin> bins = times.bins();
    int fullest = 1;
    for (const TimeBin &bin : bins)
        fullest = std::max(fullest, bin.count);
    QString rows;
    for (const TimeBin &bin : bins)
        rows += binRow(bin, fullest);
    const QString tiles = tile(milliseconds(times.percentile(50)), "half of them within (p50)") +
                          tile(milliseconds(times.percentile(95)), "95 % within (p95)") +
                          tile(milliseconds(times.longest()), "at most");
    return "<h2>Answer times</h2>\n<div class=\"tiles\" style=\"margin:0 0 10px\">\n" + tiles +
           "</div>\n<div class=\"card\"><div class=\"bins\">\n" + rows +
           "</div>\n<p class=\"quiet\">Milliseconds, and how many of the answers that the file has a record "
           "of. "
           "Repetitions are included.</p></div>\n";
}

QString errorChart(const Recording &recording)
{
    constexpr int kColumns = 100;
    const std::vector<int> counts = recording.errorTimes.columns(recording.begin, recording.end, kColumns);
    const ChartFrame frame = countFrame(recording, *std::max_element(counts.begin(), counts.end()));
    return "<section class=\"card\"><h3>Errors over time</h3>" +
           chart(recording, frame, true, "errors over time", path("bars", barPath(counts, frame)), "low") +
           "</section>\n";
}

QString errorItem(const Recording &recording, const ErrorCause &error)
{
    QStringList labels;
    for (const int item : error.items)
        labels << recording.items.at(item);
    if (error.hasMoreItems)
        labels << "and others";
    return QString("<li class=\"card\"><b>%1</b> <span class=\"bad\">%2, %3</span>"
                   "<p class=\"quiet\">%4</p><p>%5</p></li>\n")
        .arg(error.text.toHtmlEscaped(), counted(error.count, "time"),
             percentText(error.count, readingsOf(recording)), labels.join(", ").toHtmlEscaped(),
             driverFailure(error.text).hint().toHtmlEscaped());
}

QString errors(const Recording &recording)
{
    constexpr size_t kShown = 20;
    if (recording.errors.count() == 0)
        return "<h2>Errors</h2>\n<p class=\"card good\">None.</p>\n";
    QString items;
    int others = recording.errors.count();
    for (const ErrorCause &error : recording.errors.commonest(kShown)) {
        items += errorItem(recording, error);
        others -= error.count;
    }
    if (others > 0)
        items +=
            QString("<li class=\"card quiet\">And %1 of other causes.</li>\n").arg(counted(others, "error"));
    return "<h2>Errors</h2>\n" + errorChart(recording) + "<ul>\n" + items + "</ul>\n";
}

} // namespace

QByteArray reportPage(const Recording &recording, const QString &source)
{
    const QString heading = "Watched: " + source;
    QString top = QString(kHead).replace("%1", heading.toHtmlEscaped());
    top += "<h1>" + heading.toHtmlEscaped() + "</h1>\n" + head(recording);
    if (recording.isSimulated)
        top += "<p class=\"bad\">Values of a simulated controller.</p>\n";
    top += summary(recording);
    const QString rest = answerTimes(recording.answerTimes) + errors(recording) +
                         "<footer>Made by s7ppi " S7PPI_VERSION
                         ". A value holds until the next one in the file; means are "
                         "over time. Without --all the file has changes and new errors only.</footer>\n";
    return top.toUtf8() + trends(recording) + rest.toUtf8() + kEnd;
}

} // namespace host
