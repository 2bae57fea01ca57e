// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/filled.h"
#include "host/base/outcome.h"
#include "host/cli/command_line.h"
#include "host/commands/raw_addresses.h"
#include "host/diagnosis/findings.h"
#include "host/diagnosis/settings_overview.h"
#include "host/driver/connection.h"
#include "host/driver/plan_reader.h"
#include "host/items/item.h"
#include "host/output/output.h"
#include "host/port/adapter_probe.h"
#include "host/port/host_lookup.h"
#include "host/port/port_choice.h"
#include "host/port/port_details.h"
#include "host/port/tcp_name.h"
#include "host/port/tcp_port.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QList>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace host {

namespace {

constexpr int kDefaultReads = 20;

// What is read of every S7-200: all of them have it.
const char kUsualItem[] = "MB0";

// A controller that has not answered so often at the beginning is not asked on.
constexpr int kPatience = 3;

const char kDoctorFooter[] = R"(
The checks go from the ground up: plug-in, port, rights, lock, adapter, line, and then reads
of one byte, MB0, or of the item that is named. Nothing is written. Each has a line: ok,
warning or failed, and advice below it. Of a serial server, tcp:HOST:PORT, address and
connection are looked at in place of rights, lock and adapter. Then come all settings, each with the place that it
comes from. The exit code is that of the first check that failed.

With the plug-in of another driver, or --raw-address, the item is TEXT:TYPE[*COUNT] as for
read, and nothing is read unless one is named.)";

// Whether another s7ppi has the port open. It locks its port even if that is a pseudo-terminal, whose end
// others may hold without using it.
bool isOwnProgram(const QList<PortHolder> &holders)
{
    return std::any_of(holders.begin(), holders.end(),
                       [](const PortHolder &holder) { return holder.program == "s7ppi"; });
}

struct DoctorOptions
{
    std::optional<QString> item;
    std::optional<int> reads;
};

class DoctorCommand
{
public:
    DoctorCommand(const Options &options, int reads, const std::optional<Item> &item);

    int run();

private:
    bool passes(const QString &check, const std::function<QString()> &part);
    void tell(const Finding &finding);
    void tellSettings();
    void examine();
    bool examinePlugin();
    bool choosePort();
    bool examinePort();
    bool examineServer();
    bool examineLine();
    bool examineConnection();
    void examineReads();
    bool tryEcho(const ReadTrial &trial);
    ReadTrial tryReads();
    void tryRead(ReadTrial &trial);

    Options options;
    int reads;
    std::optional<Item> item; // that is read
    Output output;
    Outcome outcome;
    UnsetValues unset;
    AdapterProbe probe;
    std::unique_ptr<Connection> connection;
};

DoctorCommand::DoctorCommand(const Options &options_, int reads_, const std::optional<Item> &item_)
    : options(options_), reads(reads_), item(item_),
      output(options_, withSource({"doctor", 1, "checks", {"check", "verdict", "text", "advice"}}, options_))
{
}

int DoctorCommand::run()
{
    try {
        examine();
    } catch (const Failure &failure) {
        if (failure.code() == ExitCode::OutputLost)
            throw;
        tell(failedFinding("line", failure));
    }
    tellSettings();
    output.finish();
    return outcome.exitCode();
}

void DoctorCommand::tell(const Finding &finding)
{
    outcome.keep(finding.code);
    Json record = {{"check", jsonText(finding.check)},
                   {"verdict", jsonText(verdictName(finding.verdict))},
                   {"text", jsonText(finding.text)},
                   {"advice", jsonText(finding.advice)}};
    if (finding.cause)
        record["cause"] = jsonText(causeWord(*finding.cause));
    output.write(record, findingText(finding));
}

// In data for programs only a document has them, beside its records.
void DoctorCommand::tellSettings()
{
    Json settings = Json::array();
    output.writeText("\nsettings");
    for (const SettingInForce &setting : settingsInForce(options, unset)) {
        output.writeText(settingText(setting));
        settings.push_back({{"setting", jsonText(setting.name)},
                            {"value", jsonText(setting.value)},
                            {"source", jsonText(setting.source)},
                            {"place", jsonText(setting.place)}});
    }
    output.setField("settings", settings);
}

bool DoctorCommand::passes(const QString &check, const std::function<QString()> &part)
{
    try {
        tell(goodFinding(check, part()));
        return true;
    } catch (const Failure &failure) {
        if (failure.code() == ExitCode::OutputLost)
            throw;
        tell(failedFinding(check, failure));
        return false;
    }
}

// Goes from the ground up. What builds on something that failed is not looked at.
void DoctorCommand::examine()
{
    if (!examinePlugin() || !choosePort())
        return;
    if (options.isNetwork() ? examineServer() && examineConnection() : examinePort() && examineLine())
        examineReads();
}

bool DoctorCommand::examinePlugin()
{
    return passes("plug-in", [this] {
        const Plugin plugin(findPlugin(options));
        unset.plugin = plugin.file();
        unset.isOtherDriver = plugin.isOtherDriver();
        unset.line = withOptions(lineSettings(*plugin.serialDefaults()), options);
        unset.timing = timingWith(*plugin.driverDefaults(), options);
        return QString("%1 %2, %3")
            .arg(plugin.driver().name(), plugin.driver().getVersionNumber(), plugin.file());
    });
}

bool DoctorCommand::choosePort()
{
    return passes("port", [this]() -> QString {
        QString port = host::choosePort(options);
        options.port = unset.port = port;
        unset.isNetwork = options.isNetwork();
        return options.isSimulated() ? port + ", a simulated controller" : port;
    });
}

bool DoctorCommand::examinePort()
{
    if (options.isSimulated())
        return true;
    PortDetails port;
    const bool exists = passes("adapter", [&] {
        port = portDetails(*options.port);
        const QString text = adapterText(port);
        return text.isEmpty() ? "nothing is known of it" : text;
    });
    if (!exists)
        return false;
    const bool isAllowed = passes("rights", [&] {
        if (!rightsAdvice(port).isEmpty())
            throw Failure(ExitCode::PortUnusable, rightsText(port), rightsAdvice(port));
        return rightsText(port);
    });
    const bool isFree = passes("lock", [&]() -> QString {
        if (port.holders.isEmpty())
            return "no other program has the port open";
        const QString text = "in use by " + holderText(port.holders);
        if (isPseudoTerminal(port.device) && !isOwnProgram(port.holders))
            return text + ", which may be the other end of the pseudo-terminal";
        throw Failure(ExitCode::PortUnusable, text, holderAdvice(port));
    });
    if (port.latency)
        tell(findingWith("latency", QString("%1 ms").arg(*port.latency), latencyAdvice(port)));
    return isAllowed && isFree;
}

// Whether another program uses the server's port only the server knows.
bool DoctorCommand::examineServer()
{
    return passes("address", [this] {
        const QString host = parseTcpName(*options.port).host;
        QStringList addresses;
        for (const QHostAddress &address : addressesOf(host, QDeadlineTimer(connectTime(*unset.timing))))
            addresses << address.toString();
        return filled("%1 is %2", host, addresses.join(", "));
    });
}

bool DoctorCommand::examineConnection()
{
    const bool isConnected = passes("connection", [this] {
        QElapsedTimer time;
        time.start();
        connection = std::make_unique<Connection>(options, &probe);
        return QString("made within %1 ms").arg(time.elapsed());
    });
    if (isConnected)
        tell(goodFinding("line", kServerLine));
    return isConnected;
}

bool DoctorCommand::examineLine()
{
    return passes("line", [this] {
        connection = std::make_unique<Connection>(options, &probe);
        const QString taken = lineText(*unset.line);
        return isPseudoTerminal(connection->portName())
                   ? taken + "; a pseudo-terminal has no speed and no parity"
                   : taken + ", as the port confirms";
    });
}

// What the driver refuses without sending anything says nothing of the line. An echo is told from an answer
// only where the protocol is known.
void DoctorCommand::examineReads()
{
    if (!item) {
        tell(findingWith("answers", "nothing was read", "name an item to read, as doctor TEXT:i32"));
        return;
    }
    std::optional<LineErrors> before = lineErrors(connection->portHandle());
    ReadTrial trial = tryReads();
    if (connection->frameCount() == 0) {
        tell(judgeAnswers(trial));
        return;
    }
    if (!connection->isRaw())
        tell(judgeEcho(probe.hasHeard(), connection->hearsItself(), options.echo));
    if (tryEcho(trial)) {
        before = lineErrors(connection->portHandle());
        trial = tryReads();
    }
    if (!options.isNetwork())
        tell(judgeLineErrors(before, lineErrors(connection->portHandle())));
    tell(judgeAnswers(trial));
    if (trial.answerTimes.isEmpty())
        return;
    tell(judgeRetries(trial));
    tell(judgeTimeout(trial, unset.timing->timeout));
}

// Takes the echo out if there is one: nothing else could be told behind an adapter that hears itself.
bool DoctorCommand::tryEcho(const ReadTrial &trial)
{
    if (!connection->hearsItself() || !trial.answerTimes.isEmpty())
        return false;
    options.echo = true;
    connection.reset();
    connection = std::make_unique<Connection>(options, &probe);
    return true;
}

ReadTrial DoctorCommand::tryReads()
{
    ReadTrial trial;
    const int requestsBefore = connection->requestCount();
    const auto hasHope = [&trial] {
        const bool isOver = trial.failure && trial.failure->isFinal();
        return !isOver && (!trial.answerTimes.isEmpty() || trial.reads < kPatience);
    };
    while (trial.reads < reads && hasHope())
        tryRead(trial);
    trial.requests = connection->requestCount() - requestsBefore;
    trial.longestWait = probe.longestWait();
    return trial;
}

void DoctorCommand::tryRead(ReadTrial &trial)
{
    QElapsedTimer time;
    time.start();
    ++trial.reads;
    try {
        readItem(*connection, *item);
        trial.answerTimes << time.elapsed();
    } catch (const Failure &failure) {
        if (failure.code() == ExitCode::OutputLost)
            throw;
        if (!trial.failure)
            trial.failure = failure;
    }
}

// What is wrong with the plug-in the examination tells, which then reads nothing.
std::optional<Notation> notationIfKnown(const DriverOptions &options)
{
    try {
        return notationOf(options);
    } catch (const Failure &) {
        return std::nullopt;
    }
}

// The item to read: the one that is named, else what every S7-200 has; of other devices nothing is known.
std::optional<Item> itemToRead(const DriverOptions &options, const std::optional<QString> &text)
{
    const std::optional<Notation> notation = notationIfKnown(options);
    if (!notation || (notation == Notation::Raw && !text))
        return std::nullopt;
    const QString named = text.value_or(kUsualItem);
    try {
        return parseItem(named, *notation);
    } catch (const Failure &failure) {
        throw failure.about(named);
    }
}

int examineWith(const Options &options, const DoctorOptions &own)
{
    const std::optional<Item> item = itemToRead(options, own.item);
    return DoctorCommand(options, own.reads.value_or(kDefaultReads), item).run();
}

} // namespace

void declareDoctor(CLI::App &app, CommandLine &line)
{
    const auto own = std::make_shared<DoctorOptions>();
    CLI::App *doctor = addCommand(app, line, "doctor", "Look for what is wrong with plug-in, port and line",
                                  [own](const Options &options) { return examineWith(options, *own); });
    addText(*doctor, "item", own->item, "ITEM", "What to read, as for read (default MB0)");
    addNumber(*doctor, "--reads", own->reads, 1, 100000, "How many reads to measure",
              std::to_string(kDefaultReads));
    setFooter(*doctor, kDoctorFooter, {"s7ppi doctor", "s7ppi doctor -p /dev/ttyUSB0 --profile press"});
}

} // namespace host
