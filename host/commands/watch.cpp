// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "common/duration.h"
#include "host/base/filled.h"
#include "host/base/interruption.h"
#include "host/base/outcome.h"
#include "host/cli/command_line.h"
#include "host/commands/plan_options.h"
#include "host/commands/raw_addresses.h"
#include "host/driver/connection.h"
#include "host/items/tag_file.h"
#include "host/polling/poll_plan.h"
#include "host/polling/poller.h"
#include "host/watch/notes_view.h"
#include "host/watch/plot_view.h"
#include "host/watch/recorder.h"
#include "host/watch/table_view.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace host {

namespace {

struct WatchOptions
{
    QStringList items;
    std::optional<std::chrono::milliseconds> interval; // from the start of one poll to that of the next
    std::optional<int> polls;                          // how many; without polls and time until interrupted
    std::optional<std::chrono::milliseconds> time;     // that the watching lasts
    bool all = false;                                  // plain lines for every poll, not only for changes
    bool plot = false;                                 // curves instead of the table
    std::optional<QString> select;                     // which of the items the curves show
    std::optional<std::chrono::milliseconds> span;     // that they show
    std::optional<QString> rotate;                     // when the file of -o moves out of the way
    std::optional<int> keep;                           // how many files that did so stay
    PlanOptions plan;
};

const char kWatchFooter[] = R"(

On a terminal: a table in place, whose last state stays. CHANGED tells when an answer brought
another value. Values in parentheses are old: the last poll failed. ~ marks a number that a
narrow screen has fewer digits of; it has fewer columns, too.
Elsewhere, or with --verbose: lines TIME ADDRESS VALUES, for the first values, for every
change and after errors; the errors on stderr. With -o FILE both: the table on the terminal,
the data in the file, as its name ends: .csv .tsv .json .ndjson.

The file has every record as soon as it is made, and goes on when it is there already; a file
that is no such recording is refused. Only .json is one whole: it appears at the end, in the
place of an earlier one. --rotate 10M or day moves FILE.csv to FILE.1.csv, the next time to
FILE.2.csv; the greatest number is the newest. --keep N removes all but the newest N.

With --plot: the values of the last minutes, or since the beginning, as curves. Numbers and
bits can be drawn.

Ctrl-C ends it with a summary on stderr: polls, requests and values per second, answer times
(from the request to its data, repetitions included: p90 is the time within which 90 % were
there), attempts, errors, and polls that took longer than the interval. The exit code after
--count polls or the time of --for, whichever comes first, is that of the first error. A poll
that is under way when the time is over goes on to its end.)";

using Clock = std::chrono::steady_clock;

constexpr std::chrono::minutes kDefaultSpan(5);

using Views = std::vector<View *>;

std::chrono::milliseconds intervalOf(const WatchOptions &options)
{
    return options.interval.value_or(std::chrono::milliseconds(kUsualInterval));
}

class WatchCommand
{
public:
    WatchCommand(Connection &connection, Watch &watch, const std::vector<Tag> &tags, const Views &views,
                 const WatchOptions &options);

    // Polls as often and as long as the options say.
    void run();

    ExitCode firstFailure() const { return outcome.code(); }

private:
    PollEvents events();
    void take(int index, const ItemReading &reading);
    void noteFailure(WatchedItem &item, const Failure &failure);
    void tell(const QString &text);
    void idle();
    void takeFigures();
    void pauseUntil(const QDeadlineTimer &end);

    Connection &connection;
    Watch &watch;
    const Views &views;
    const WatchOptions &options;
    Outcome outcome;
    const Connection::MessageRedirect redirect;
    Poller poller;
};

WatchCommand::WatchCommand(Connection &connection_, Watch &watch_, const std::vector<Tag> &tags,
                           const Views &views_, const WatchOptions &options_)
    : connection(connection_), watch(watch_), views(views_), options(options_),
      redirect(
          connection, [this](const QString &text) { tell(text); }, [this] { idle(); }),
      poller(connection, itemsOf(tags), intervalsOf(tags, intervalOf(options)), options.plan.limits(),
             events())
{
}

PollEvents WatchCommand::events()
{
    return {[this](int item, const ItemReading &reading) { take(item, reading); },
            [this](WatchDuration time, std::chrono::nanoseconds expected) {
                watch.answerTimes.add(time);
                watch.expectedTime += expected;
            },
            [this](const QString &text) { tell(text); }};
}

void WatchCommand::tell(const QString &text)
{
    for (View *view : views)
        view->tell(watch, text);
}

void WatchCommand::idle()
{
    for (View *view : views)
        view->idle(watch);
}

void WatchCommand::take(int index, const ItemReading &reading)
{
    WatchedItem &item = watch.items[size_t(index)];
    item.attempts += reading.attempts;
    Reading values = {{}, reading.answerTime, reading.time};
    try {
        if (reading.failure)
            throw Failure(*reading.failure);
        values.values = decodeValues(item.tag.item, reading.data);
    } catch (const Failure &failure) {
        noteFailure(item, failure);
        return;
    }
    watch.values += qint64(values.values.size());
    const WatchNews news = item.answered(shownTexts(item.tag, values.values), Clock::now());
    for (View *view : views)
        view->answered(watch, item, values, news);
}

void WatchCommand::noteFailure(WatchedItem &item, const Failure &failure)
{
    ++watch.errors[failure.text()];
    const bool isNews = item.failed(failure.text());
    if (failure.isFinal())
        throw failure;
    outcome.keep(failure.code());
    for (View *view : views)
        view->failed(watch, item, failure, isNews);
}

void WatchCommand::takeFigures()
{
    watch.groups.clear();
    for (const PollFigures &group : poller.figures())
        watch.groups.push_back({group.interval, group.polls, group.latePolls, group.longestLateness});
}

void WatchCommand::pauseUntil(const QDeadlineTimer &end)
{
    while (!end.hasExpired()) {
        connection.idle(int(std::min<qint64>(end.remainingTime(), kInterruptionSlice)));
        idle();
    }
}

// Whether the items are shown in place on the terminal, which is so unless the data or the frames go there.
bool showsTable(const OutputOptions &options)
{
    return !options.verbose && !Recorder::isOnStdout(options) && TerminalScreen::isAvailable();
}

// Returns the items that --plot draws, and none without it.
std::vector<Tag> plottedTags(const OutputOptions &options, const WatchOptions &own,
                             const std::vector<Tag> &tags)
{
    if (!own.plot)
        return {};
    if (!showsTable(options))
        throw Failure(
            ExitCode::Usage, "--plot needs the terminal to itself",
            "leave out --verbose and --format, or write the data with -o FILE.csv and make a page of it "
            "with s7ppi report");
    const QString names = own.select.value_or(QString());
    return drawableTags(tags, names.split(',', Qt::SkipEmptyParts));
}

// "every 500 ms", "every 100 to 1000 ms"
QString rhythmText(const std::vector<std::chrono::milliseconds> &intervals)
{
    const auto [least, most] = std::minmax_element(intervals.begin(), intervals.end());
    return *least == *most ? filled("every %1 ms", least->count())
                           : filled("every %1 to %2 ms", least->count(), most->count());
}

std::unique_ptr<View> terminalView(const OutputOptions &options, const WatchOptions &own,
                                   const std::vector<Tag> &tags, const std::vector<Tag> &plotted,
                                   const Connection &connection)
{
    if (!showsTable(options))
        return std::make_unique<NotesView>(own.all);
    const QString title =
        connection.marked(connection.portName()) + ' ' + rhythmText(intervalsOf(tags, intervalOf(own)));
    if (plotted.empty())
        return std::make_unique<TableView>(title);
    return std::make_unique<PlotView>(title, plotted,
                                      std::chrono::duration<double>(own.span.value_or(kDefaultSpan)).count());
}

// Rotation makes no sense without a file; what then is wrong the recorder tells.
Rotation rotationOf(const WatchOptions &own)
{
    if (!own.rotate)
        return {};
    Rotation rotation = parseRotation(*own.rotate);
    rotation.keep = own.keep;
    return rotation;
}

// When --for ends the watching, from now on.
QDeadlineTimer endOf(const WatchOptions &options)
{
    return options.time ? QDeadlineTimer(*options.time) : QDeadlineTimer(QDeadlineTimer::Forever);
}

// A request that is under way when the time is over is not cut.
void WatchCommand::run()
{
    const QDeadlineTimer end = endOf(options);
    while (!end.hasExpired()) {
        QDeadlineTimer next;
        const PollTime due = poller.step();
        takeFigures();
        idle();
        if (options.polls && poller.rounds() >= *options.polls)
            return;
        const std::chrono::nanoseconds wait = due - Clock::now();
        if (wait > std::chrono::nanoseconds::zero())
            next.setPreciseRemainingTime(0, wait.count(), Qt::PreciseTimer);
        pauseUntil(std::min(next, end));
    }
}

struct End
{
    ExitCode code;
    std::optional<Failure> loss; // of the port or of the output
};

// Polls until there is nothing more to poll, or a signal arrives. The terminal has been given back when this
// returns.
End watchItems(Connection &connection, Watch &watch, const std::vector<Tag> &tags,
               std::unique_ptr<View> people, Recorder *record, const WatchOptions &own)
{
    Views views = {people.get()};
    if (record)
        views.push_back(record);
    WatchCommand command(connection, watch, tags, views, own);
    std::optional<Failure> loss;
    try {
        command.run();
    } catch (const Interrupted &) { // the usual end
    } catch (const Failure &failure) {
        loss = failure;
    }
    people->leave(watch);
    return {loss ? loss->code() : command.firstFailure(), loss};
}

// Shows a table in place on a terminal, unless verbose, and plain lines otherwise; at the end a summary on
// stderr. Items that fail are polled on; the exit code is that of the first failure. A lost port ends it.
int watchAll(Options options, const WatchOptions &own)
{
    if (own.plot)
        options.usualFormat.reset(); // the curves are what was asked for
    Outcome outcome;
    const std::vector<Tag> tags = parseTags(own.items, outcome, notationOf(options));
    if (!outcome.isSuccess())
        return outcome.exitCode();

    const std::vector<Tag> plotted = plottedTags(options, own, tags);
    const Rotation rotation = rotationOf(own);
    std::optional<Recorder> record;
    if (options.output || own.rotate || !showsTable(options))
        record.emplace(options, own.all, rotation);
    Connection connection(options);
    Watch watch(tags);
    watch.isSimulated = connection.isSimulated();
    watch.port = connection.portLabel();
    watch.station = connection.stationId();
    const Clock::time_point start = Clock::now();
    const End end = watchItems(connection, watch, tags, terminalView(options, own, tags, plotted, connection),
                               record ? &*record : nullptr, own);
    watch.time = Clock::now() - start;
    watch.requests = connection.requestCount();
    watch.returns = connection.returnCount();
    for (const QString &line : watchSummary(watch))
        reportNote(line);
    if (record && end.code != ExitCode::OutputLost)
        record->finish();
    if (end.loss)
        throw Failure(*end.loss);
    return int(end.code);
}

} // namespace

void declareWatch(CLI::App &app, CommandLine &line)
{
    const auto own = std::make_shared<WatchOptions>();
    CLI::App *watch = addCommand(app, line, "watch", "Read items again and again",
                                 [own](const Options &options) { return watchAll(options, *own); });
    using std::chrono::milliseconds;
    addItems(*watch, own->items, "ADDRESS[:TYPE][*COUNT][@STATION] or @FILE[:NAME], as for read");
    addDuration(*watch, "--interval", own->interval,
                {milliseconds(1), std::chrono::hours(1), milliseconds(1)}, "From poll to poll",
                common::durationText(milliseconds(kUsualInterval)));
    addNumber(*watch, "--count", own->polls, 1, 1000000000, "End after so many polls");
    addDuration(*watch, "--for", own->time,
                {milliseconds(1), std::chrono::hours(365 * 24), std::chrono::seconds(1)},
                "End after this time");
    addFlag(*watch, "--all", own->all, "A line for every poll, not only for changes");
    CLI::Option *plot = addFlag(*watch, "--plot", own->plot, "Curves of the last minutes, on a terminal");
    CLI::Option *select = addText(*watch, "--select", own->select, "ITEMS",
                                  "Draw these only: names or addresses, commas between");
    CLI::Option *span =
        addDuration(*watch, "--span", own->span,
                    {std::chrono::seconds(1), std::chrono::hours(24), std::chrono::minutes(1)},
                    "How much time the curves show", common::durationText(kDefaultSpan));
    CLI::Option *rotate = addText(*watch, "--rotate", own->rotate, "SIZE|day",
                                  "Begin a new file when this one is full: 10M, 500k, or day");
    CLI::Option *keep =
        addNumber(*watch, "--keep", own->keep, 1, 1000000, "How many full files stay; the oldest go");
    tie(*keep, *rotate);
    tie(*select, *plot);
    tie(*span, *plot);
    addPlanOptions(*watch, own->plan);
    setFooter(*watch, QString(kTypesFooter) + kWatchFooter + kRawFooter,
              {"s7ppi watch --interval 200ms VW100 T37", "s7ppi watch --for 1h -o press.csv @press-tags.csv",
               "s7ppi watch --plot --span 10min VW100 V100.4"});
}

} // namespace host
