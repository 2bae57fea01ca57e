// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/filled.h"
#include "host/commands/commands.h"

#include "host/base/filled.h"
#include "host/base/interruption.h"
#include "host/base/messages.h"
#include "host/cli/command_line.h"
#include "host/commands/progress_notes.h"
#include "host/commands/raw_addresses.h"
#include "host/driver/connection.h"
#include "host/driver/request_form.h"
#include "host/output/output.h"
#include "host/output/progress.h"
#include "host/port/adapter_probe.h"
#include "host/port/echo_port.h"
#include "host/port/port_details.h"
#include "host/text/number_list.h"

#include <QElapsedTimer>
#include <QList>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace host {

namespace {

struct ScanOptions
{
    std::optional<QString> stations;
    std::optional<QString> bauds;
};

const char kScanFooter[] = R"(
Every station is asked for one byte, MB0; nothing is written. Unless --timeout and --retries
say otherwise, it has 200 ms for the answer and is asked once. Without --baud the line keeps
its rate; --baud all tries 9600, 19200 and 187500. Rates that the adapter cannot do are left
out, and on a pseudo-terminal, which has no speed, all but the first. A serial server keeps the
rate that it is set to.

What is found is printed at once. The exit code is 4 when no station answered.)";

const QString kAllStations = filled("%1..%2", kFirstStation, kLastStation);
const char kAllBauds[] = "9600,19200,187500"; // what the controllers can be set to
const NumberKind kStation = {"station", kFirstStation, kLastStation, true};
const NumberKind kBaud = {"baud rate", 50, 4000000, false};

// A station that does not answer in this time is taken as absent.
constexpr std::chrono::milliseconds kTimeout(200);

QList<int> baudsOf(const Options &options, const ScanOptions &own)
{
    if (own.bauds)
        return parseNumbers(*own.bauds == "all" ? kAllBauds : *own.bauds, kBaud);
    if (options.baud)
        return {*options.baud};
    const Plugin plugin(findPlugin(options));
    return {lineSettings(*plugin.serialDefaults()).baud};
}

Options lineOptions(Options options, int baud)
{
    options.baud = baud;
    options.timeout = options.timeout.value_or(kTimeout);
    options.retries = options.retries.value_or(0);
    return options;
}

struct Answer
{
    QString kind; // "data", "refused" or "broken"
    QString text;
    qint64 milliseconds;
    std::optional<Cause> cause; // of what is no data

    bool isBroken() const { return kind == "broken"; }
};

// Returns what a failure says of the station: only silence is no answer at all. A failure that has nothing to
// do with the station is thrown on. It took so many milliseconds.
std::optional<Answer> answerOf(const Failure &failure, qint64 passed)
{
    switch (failure.code()) {
    case ExitCode::NoAnswer:
        return std::nullopt;
    case ExitCode::Refused:
        return Answer{"refused", "answers, but refuses: " + failure.text(), passed, failure.cause()};
    case ExitCode::BrokenAnswer:
        return Answer{"broken", "something came that is no answer: " + failure.text(), passed,
                      failure.cause()};
    default:
        throw Failure(failure);
    }
}

std::optional<Answer> ask(Connection &connection)
{
    QElapsedTimer time;
    time.start();
    try {
        connection.read(makeCommand(kBytes, "MB0", 1));
        return Answer{"data", QString("answers within %1 ms").arg(time.elapsed()), time.elapsed(),
                      std::nullopt};
    } catch (const Failure &failure) {
        return answerOf(failure, time.elapsed());
    }
}

class ScanCommand
{
public:
    ScanCommand(const Options &options, const ScanOptions &own);

    // Scans the line, and returns whether a station was found.
    bool run();

private:
    std::unique_ptr<Connection> connect(int baud);
    void scanLine(Connection &connection, int baud);
    std::optional<Answer> askStation(Connection &connection, int station) const;
    void tell(int baud, const Origin &origin, const Answer &answer);
    bool canChangeRate(const Connection &connection) const;
    void tellOnlyRate(int baud);
    void reportRefusal() const;

    const Options &options;
    QList<int> stations;
    QList<int> bauds;
    bool isRateNamed;
    Output output;
    AdapterProbe probe;
    std::optional<Failure> refusal; // of the first rate that the port does not take
    bool hasOpened = false;
    bool hasFound = false;
    Progress progress;
};

ScanCommand::ScanCommand(const Options &options_, const ScanOptions &own)
    : options(options_), stations(parseNumbers(own.stations.value_or(kAllStations), kStation)),
      bauds(baudsOf(options_, own)), isRateNamed(own.bauds),
      output(options_,
             withSource({"scan", 1, "stations", {"baud", "station", "answer", "milliseconds", "text"}},
                        options_)),
      progress(options_, {"scan", "stations", qint64(stations.size()) * bauds.size(), 0, 0})
{
    if (options.trace && bauds.size() > 1)
        throw Failure(ExitCode::Usage, "a trace is of one rate, and several are to be tried",
                      "leave out --trace, or choose one of them with --baud");
}

bool ScanCommand::run()
{
    for (const int baud : bauds) {
        const std::unique_ptr<Connection> connection = connect(baud);
        if (!connection)
            continue;
        scanLine(*connection, baud);
        if (!canChangeRate(*connection)) {
            tellOnlyRate(baud);
            break;
        }
    }
    progress.clear();
    reportRefusal();
    output.finish();
    return hasFound;
}

// A rate that the adapter cannot do is left out, unless there is no other.
std::unique_ptr<Connection> ScanCommand::connect(int baud)
{
    progress.clear();
    try {
        auto connection = std::make_unique<Connection>(lineOptions(options, baud), &probe);
        hasOpened = true;
        return connection;
    } catch (const Failure &failure) {
        if (failure.code() != ExitCode::PortUnusable || bauds.size() == 1)
            throw;
        if (!refusal)
            refusal = failure;
        return nullptr;
    }
}

bool ScanCommand::canChangeRate(const Connection &connection) const
{
    return !options.isNetwork() && !isPseudoTerminal(connection.portName());
}

void ScanCommand::tellOnlyRate(int baud)
{
    if (options.isNetwork() && isRateNamed)
        progress.note("the serial server runs its line as it is set itself: --baud does not reach it");
    else if (!options.isNetwork() && bauds.size() > 1)
        progress.note(
            QString("only %1 baud was tried: the port is a pseudo-terminal, which has no speed").arg(baud));
}

void ScanCommand::reportRefusal() const
{
    if (refusal && !hasOpened)
        throw Failure(*refusal);
    if (refusal)
        reportWarning("not every rate was tried: " + refusal->text());
}

// What was found stays, however the scan ends.
void ScanCommand::scanLine(Connection &connection, int baud)
{
    const Connection::MessageRedirect notes = notesAbove(progress, connection);
    int current = 0;
    try {
        for (const int station : stations) {
            current = station;
            if (const std::optional<Answer> answer = askStation(connection, station))
                tell(baud, connection.origin(station), *answer);
            progress.advance(1);
        }
    } catch (const Interrupted &) {
        progress.note(options.isNetwork() ? filled("stopped at station %1", current)
                                          : filled("stopped at station %1, %2 baud", current, baud));
        throw;
    } catch (const Failure &failure) {
        if (failure.code() == ExitCode::PortLost)
            output.finish();
        throw;
    }
}

// What breaks an answer may be the late one of the station before: that does not come twice.
std::optional<Answer> ScanCommand::askStation(Connection &connection, int station) const
{
    connection.setStation(station);
    std::optional<Answer> answer = ask(connection);
    if (answer && answer->isBroken())
        answer = ask(connection);
    if (answer && answer->isBroken() && connection.hearsItself())
        throw echoFailure();
    return answer;
}

void ScanCommand::tell(int baud, const Origin &origin, const Answer &answer)
{
    hasFound = hasFound || !answer.isBroken();
    progress.clear();
    Json record = originFields(origin);
    record["baud"] = options.isNetwork() ? Json() : Json(baud);
    record["answer"] = jsonText(answer.kind);
    record["milliseconds"] = answer.milliseconds;
    record["text"] = jsonText(answer.text);
    if (answer.cause)
        record["cause"] = jsonText(causeWord(*answer.cause));
    const QString rate = options.isNetwork() ? QString() : filled(" at %1 baud", baud);
    output.write(record, filled("station %1%2%3: ", origin.station, rate,
                                options.isSimulated() ? " (simulated)" : "") +
                             answer.text);
}

int scan(const Options &options, const ScanOptions &own)
{
    refuseRawAddresses(options, "scan");
    if (!ScanCommand(options, own).run())
        throw Failure(ExitCode::NoAnswer, "no station answered",
                      "check cable, power and parity; a slow controller needs a longer --timeout, and other "
                      "rates go with --baud");
    return int(ExitCode::Success);
}

} // namespace

void declareScan(CLI::App &app, CommandLine &line)
{
    const auto own = std::make_shared<ScanOptions>();
    CLI::App *command = addCommand(app, line, "scan", "Find the stations on a line",
                                   [own](const Options &options) { return scan(options, *own); });
    addText(*command, "-s,--stations,--station", own->stations, "LIST",
            "Which, as 2 or 2,5..9 (default " + kAllStations.toStdString() + ')');
    addText(*command, "-b,--baud", own->bauds, "LIST",
            std::string("At which rates, as 9600,19200 or all (default ") + kOfPlugin + ')');
    setFooter(*command, kScanFooter,
              {"s7ppi scan -p /dev/ttyUSB0", "s7ppi scan --stations 2,5..9 --baud all"});
}

} // namespace host
