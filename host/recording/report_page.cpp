// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/recording/report_page.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/driver/driver_fault.h"
#include "host/recording/statistics.h"
#include "host/recording/trend_chart.h"
#include "host/text/number_text.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

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
  --grid: #eceff3; --line: #1f6feb; --area: rgba(31, 111, 235, .10); --bad: #b42318; --good: #18794e;
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #101317; --card: #191d23; --text: #e8eaed; --quiet: #9aa4b0; --rule: #2c333c;
    --grid: #252b33; --line: #6ea8fe; --area: rgba(110, 168, 254, .14); --bad: #ff8a80; --good: #6fd3a4;
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
.trends { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 440px), 1fr)); gap: 14px; }
.title { display: flex; flex-wrap: wrap; gap: 2px 12px; align-items: baseline; justify-content: space-between; }
.last { font-size: 1.25rem; font-weight: 600; overflow-wrap: anywhere; }
.unit { color: var(--quiet); font-weight: 400; font-size: .9rem; }
.plot { display: grid; grid-template-columns: auto 1fr; gap: 0 8px; margin-top: 10px; }
.scale { display: flex; flex-direction: column; justify-content: space-between; text-align: right; }
.scale, .times, figcaption { color: var(--quiet); font-size: .75rem; }
.times { grid-column: 2; display: flex; justify-content: space-between; gap: 8px; padding-top: 3px; }
svg { display: block; width: 100%; height: 150px; overflow: visible;
  border: 1px solid var(--rule); border-radius: 4px; }
svg line { stroke: var(--grid); vector-effect: non-scaling-stroke; }
svg path { fill: none; stroke: var(--line); stroke-width: 1.75; vector-effect: non-scaling-stroke;
  stroke-linejoin: round; }
dl { display: grid; grid-template-columns: repeat(3, 1fr); gap: 4px 12px; margin: 10px 0 0; }
dt { color: var(--quiet); font-size: .75rem; }
dd { margin: 0; overflow-wrap: anywhere; }
.bins { display: grid; grid-template-columns: auto 1fr auto; gap: 5px 10px; align-items: center;
  font-size: .875rem; }
.bins > :nth-child(3n + 1), .bins > :nth-child(3n) { text-align: right; color: var(--quiet); }
.bar { height: 14px; border-radius: 0 3px 3px 0; background: var(--line); min-width: 1px; }
ul { list-style: none; margin: 0; padding: 0; display: grid; gap: 10px; }
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
QString timeText(const Recording &recording, qint64 time, const char *form)
{
    return QDateTime::fromMSecsSinceEpoch(time, Qt::OffsetFromUTC, recording.offset).toString(form);
}

QString shortTimeText(const Recording &recording, qint64 time)
{
    constexpr qint64 kDay = 86400000;
    return timeText(recording, time,
                    recording.end - recording.begin < kDay ? "HH:mm:ss" : "yyyy-MM-dd HH:mm");
}

QString tile(const QString &value, const QString &what, const QString &kind = QString())
{
    return QString("<div class=\"card tile\"><b class=\"%1\">%2</b><span>%3</span></div>\n")
        .arg(kind, value.toHtmlEscaped(), what.toHtmlEscaped());
}

QString summary(const Recording &recording, const std::vector<double> &times)
{
    QString tiles = tile(elapsedText(recording.end - recording.begin), "watched");
    tiles +=
        tile(QString::number(recording.series.size()), recording.series.size() == 1 ? "value" : "values");
    tiles += tile(QString::number(times.size()), times.size() == 1 ? "answer" : "answers");
    if (!times.empty())
        tiles += tile(milliseconds(percentile(times, 95)), "95 % of answers within");
    tiles += tile(QString::number(recording.errorCount), recording.errorCount == 1 ? "error" : "errors",
                  recording.errorCount ? "bad" : "good");
    return "<div class=\"tiles\">\n" + tiles + "</div>\n";
}

QString figure(const QString &what, double number)
{
    return QString("<div><dt>%1</dt><dd>%2</dd></div>").arg(what, shortNumber(number));
}

QString grid(const ChartFrame &frame)
{
    QString lines;
    for (int i = 1; i < 4; ++i) {
        lines += filled("<line x1=\"0\" x2=\"%1\" y1=\"%2\" y2=\"%2\"/>", frame.width, frame.height * i / 4);
        lines += filled("<line y1=\"0\" y2=\"%1\" x1=\"%2\" x2=\"%2\"/>", frame.height, frame.width * i / 4);
    }
    return lines;
}

QString plot(const Recording &recording, const RecordedSeries &series, const Trend &trend)
{
    const ChartFrame frame = chartFrame(recording, trend.least, trend.most);
    const QString picture =
        filled("<svg viewBox=\"0 0 %1 %2\" preserveAspectRatio=\"none\" role=\"img\" aria-label=\"%3\">%4"
               "<path d=\"%5\"/></svg>",
               frame.width, frame.height, ("trend of " + series.label).toHtmlEscaped(), grid(frame),
               trendPath(series.samples, frame));
    return QString("<div class=\"plot\"><div "
                   "class=\"scale\"><span>%1</span><span>%2</span><span>%3</span></div>%4"
                   "<div class=\"times\"><span>%5</span><span>%6</span></div></div>\n")
        .arg(shortNumber(frame.top), shortNumber((frame.top + frame.bottom) / 2), shortNumber(frame.bottom),
             picture, shortTimeText(recording, recording.begin), shortTimeText(recording, recording.end));
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

int gapsOf(const RecordedSeries &series)
{
    return int(std::count_if(series.samples.begin(), series.samples.end(),
                             [](const RecordedSample &sample) { return sample.isGap; }));
}

QString trendCard(const Recording &recording, const RecordedSeries &series)
{
    const std::optional<Trend> trend = trendOf(series.samples, recording.end);
    if (!trend)
        return "<section class=\"card\">" + title(series, series.lastText) +
               "<p class=\"quiet\">No numbers: the last value is shown.</p></section>\n";
    QString card = title(series, shortNumber(trend->last)) + plot(recording, series, *trend);
    card += "<dl>" + figure("min", trend->least) + figure("mean", trend->mean) + figure("max", trend->most) +
            "</dl>\n";
    const int gaps = gapsOf(series);
    const QString samples = counted(qint64(series.samples.size()) - gaps, "sample");
    card += "<p class=\"quiet\">" + (gaps ? samples + ", " + counted(gaps, "gap") : samples) + "</p>";
    return "<section class=\"card\">" + card + "</section>\n";
}

QString trends(const Recording &recording)
{
    QString cards;
    for (const RecordedSeries &series : recording.series)
        cards += trendCard(recording, series);
    return recording.series.empty() ? QString()
                                    : "<h2>Values</h2>\n<div class=\"trends\">\n" + cards + "</div>\n";
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

QString answerTimes(const std::vector<double> &times)
{
    if (times.empty())
        return QString();
    const std::vector<TimeBin> bins = distributionOf(times);
    int fullest = 1;
    for (const TimeBin &bin : bins)
        fullest = std::max(fullest, bin.count);
    QString rows;
    for (const TimeBin &bin : bins)
        rows += binRow(bin, fullest);
    const QString tiles = tile(milliseconds(percentile(times, 50)), "half of them within (p50)") +
                          tile(milliseconds(percentile(times, 95)), "95 % within (p95)") +
                          tile(milliseconds(times.back()), "at most");
    return "<h2>Answer times</h2>\n<div class=\"tiles\" style=\"margin:0 0 10px\">\n" + tiles +
           "</div>\n<div class=\"card\"><div class=\"bins\">\n" + rows +
           "</div>\n<p class=\"quiet\">Milliseconds, and how many of the answers that the file has a record "
           "of. "
           "Repetitions are included.</p></div>\n";
}

QString errorItem(const RecordedError &error)
{
    return QString("<li class=\"card\"><b>%1</b> <span class=\"bad\">%2</span>"
                   "<p class=\"quiet\">%3</p><p>%4</p></li>\n")
        .arg(error.cause.toHtmlEscaped(), counted(error.count, "time"),
             error.labels.join(", ").toHtmlEscaped(), driverFailure(error.cause).hint().toHtmlEscaped());
}

QString errors(const Recording &recording)
{
    QList<RecordedError> ordered = recording.errors;
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const RecordedError &a, const RecordedError &b) { return a.count > b.count; });
    QString items;
    for (const RecordedError &error : ordered)
        items += errorItem(error);
    return "<h2>Errors</h2>\n" +
           (items.isEmpty() ? "<p class=\"card good\">None.</p>\n" : "<ul>\n" + items + "</ul>\n");
}

} // namespace

QByteArray reportPage(const Recording &recording, const QString &source)
{
    std::vector<double> times = recording.answerTimes;
    std::sort(times.begin(), times.end());
    const QString heading = "Watched: " + source;
    const QString span = timeText(recording, recording.begin, "yyyy-MM-dd HH:mm:ss") + " to " +
                         timeText(recording, recording.end, "yyyy-MM-dd HH:mm:ss t");
    QString page = QString(kHead).replace("%1", heading.toHtmlEscaped());
    page += "<h1>" + heading.toHtmlEscaped() + "</h1>\n<p class=\"quiet\">" + span.toHtmlEscaped() + "</p>\n";
    if (recording.isSimulated)
        page += "<p class=\"bad\">Values of a simulated controller.</p>\n";
    page += summary(recording, times) + trends(recording) + answerTimes(times) + errors(recording);
    page +=
        "<footer>Made by s7ppi " S7PPI_VERSION ". A value holds until the next one in the file; means are "
        "over time. Without --all the file has changes and new errors only.</footer>\n";
    return (page + kEnd).toUtf8();
}

} // namespace host
