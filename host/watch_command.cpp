// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "watch_command.h"

#include "connection.h"
#include "interruption.h"
#include "outcome.h"
#include "read_plan.h"
#include "value.h"
#include "watch_lines.h"
#include "watch_table.h"

#include <QDeadlineTimer>

#include <algorithm>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;

// Milliseconds; pauses are cut into slices so that signals and new terminal sizes are seen soon.
constexpr qint64 kSlice = 50;
constexpr int kDefaultInterval = 500;

class Watcher
{
public:
    Watcher(Connection &connection_, Watch &watch_, WatchView &view_)
        : connection(connection_), watch(watch_), view(view_)
    {
    }

    void poll();
    void pauseUntil(const QDeadlineTimer &due);

    ExitCode firstFailure() const { return first; }

private:
    void poll(WatchedItem &item);
    QByteArray read(const CommunicatorCommand &command, WatchedItem &item);
    void noteFailure(WatchedItem &item, const Failure &failure);

    Connection &connection;
    Watch &watch;
    WatchView &view;
    ExitCode first = ExitCode::Success;
};

void Watcher::poll()
{
    for (WatchedItem &item : watch.items)
        poll(item);
    ++watch.polls;
}

void Watcher::poll(WatchedItem &item)
{
    try {
        const ReadFunction function = [&](const CommunicatorCommand &command) { return read(command, item); };
        const QString values = valuesText(decodeValues(item.item, readItem(item.item, function)));
        view.answered(watch, item, item.answered(values, Clock::now()));
    } catch (const Failure &failure) {
        noteFailure(item, failure);
    }
}

QByteArray Watcher::read(const CommunicatorCommand &command, WatchedItem &item)
{
    struct AttemptCount
    {
        ~AttemptCount() { item.attempts += connection.requestCount() - before; }

        const Connection &connection;
        WatchedItem &item;
        int before;
    };
    const AttemptCount count = {connection, item, connection.requestCount()};
    const Clock::time_point start = Clock::now();
    QByteArray data = connection.read(command);
    watch.answerTimes.add(Clock::now() - start);
    return data;
}

void Watcher::noteFailure(WatchedItem &item, const Failure &failure)
{
    ++watch.errors[failure.text()];
    const bool isNews = item.failed(failure.text());
    if (failure.code() == ExitCode::PortLost)
        throw failure;
    if (first == ExitCode::Success)
        first = failure.code();
    view.failed(watch, item, failure, isNews);
}

void Watcher::pauseUntil(const QDeadlineTimer &due)
{
    while (!due.hasExpired()) {
        connection.idle(int(std::min(due.remainingTime(), kSlice)));
        view.attend(watch);
    }
}

int intervalOf(const WatchOptions &options)
{
    return options.interval.value_or(kDefaultInterval);
}

std::unique_ptr<WatchView> makeView(const Options &options, const WatchOptions &watchOptions,
                                    const Connection &connection)
{
    if (options.verbose || !TerminalScreen::isThere())
        return std::make_unique<WatchLines>(watchOptions.all);
    return std::make_unique<WatchTable>(
        QString("%1 every %2 ms, Ctrl-C ends").arg(connection.portName()).arg(intervalOf(watchOptions)));
}

void pollOnAndOn(Watcher &watcher, const Watch &watch, const WatchOptions &options)
{
    while (true) {
        const QDeadlineTimer due(intervalOf(options));
        watcher.poll();
        if (options.polls && watch.polls >= *options.polls)
            return;
        watcher.pauseUntil(due);
    }
}

struct End
{
    ExitCode code;
    std::optional<Failure> loss; // of the port
};

// Until there is nothing more to poll; the view is gone and the terminal as before when this returns.
End watchItems(Connection &connection, Watch &watch, const Options &options, const WatchOptions &watchOptions)
{
    const std::unique_ptr<WatchView> view = makeView(options, watchOptions, connection);
    Watcher watcher(connection, watch, *view);
    try {
        pollOnAndOn(watcher, watch, watchOptions);
    } catch (const Interrupted &) { // the usual end
    } catch (const Failure &failure) {
        return {failure.code(), failure};
    }
    return {watcher.firstFailure(), std::nullopt};
}

} // namespace

int watchCommand(const Options &options, const WatchOptions &watchOptions,
                 const std::vector<std::string> &texts)
{
    Outcome outcome;
    const std::vector<Item> items = outcome.parseAll(texts, parseItem);
    if (!outcome.isSuccess())
        return outcome.exitCode();

    Connection connection(options);
    Watch watch(items);
    const End end = watchItems(connection, watch, options, watchOptions);
    for (const QString &line : watchSummary(watch))
        reportNote(line);
    if (end.loss)
        throw Failure(*end.loss);
    return int(end.code);
}

} // namespace host
