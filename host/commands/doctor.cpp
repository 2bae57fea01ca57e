// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "host/base/outcome.h"
#include "host/cli/command_line.h"
#include "host/diagnosis/findings.h"
#include "host/driver/connection.h"
#include "host/driver/request_form.h"
#include "host/output/output.h"
#include "host/port/adapter_probe.h"
#include "host/port/port_choice.h"
#include "host/port/port_details.h"

#include <QElapsedTimer>
#include <QList>
#include <QString>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>

namespace host {

namespace {

constexpr int kDefaultReads = 20;

// A controller that has not answered so often at the beginning is not asked on.
constexpr int kPatience = 3;

const char kFooter[] = R"(
The checks go from the ground up: plug-in, port, rights, lock, adapter, line, and then reads
of one byte, MB0. Nothing is written. Each has a line: ok, warning or failed, and advice
below it. The exit code is that of the first check that failed.

Options: s7ppi --help)";

// Whether another s7ppi has the port open. It locks its port even if that is a pseudo-terminal, whose end
// others may hold without using it.
bool isOwnProgram(const QList<PortHolder> &holders)
{
    return std::any_of(holders.begin(), holders.end(),
                       [](const PortHolder &holder) { return holder.program == "s7ppi"; });
}

class DoctorCommand
{
public:
    DoctorCommand(const Options &options, int reads);

    int run();

private:
    bool passes(const QString &check, const std::function<QString()> &part);
    void tell(const Finding &finding);
    void examine();
    bool examinePlugin();
    bool choosePort();
    bool examinePort();
    bool examineLine();
    void examineReads();
    bool tryEcho(const ReadTrial &trial);
    ReadTrial tryReads();
    void tryRead(ReadTrial &trial);

    Options options;
    int reads;
    Output output;
    Outcome outcome;
    LineSettings line = {};
    int timeout = 0;
    AdapterProbe probe;
    std::unique_ptr<Connection> connection;
};

DoctorCommand::DoctorCommand(const Options &options_, int reads_)
    : options(options_), reads(reads_),
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
    output.finish();
    return outcome.exitCode();
}

void DoctorCommand::tell(const Finding &finding)
{
    outcome.keep(finding.code);
    output.write({{"check", jsonText(finding.check)},
                  {"verdict", jsonText(verdictName(finding.verdict))},
                  {"text", jsonText(finding.text)},
                  {"advice", jsonText(finding.advice)}},
                 findingText(finding));
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
    if (examinePlugin() && choosePort() && examinePort() && examineLine())
        examineReads();
}

bool DoctorCommand::examinePlugin()
{
    return passes("plug-in", [this] {
        const Plugin plugin(findPlugin(options));
        line = withOptions(lineSettings(*plugin.serialDefaults()), options);
        timeout = options.timeout.value_or(plugin.driverDefaults()->timeout);
        return QString("%1 %2, %3")
            .arg(plugin.driver().name(), plugin.driver().getVersionNumber(), plugin.file());
    });
}

bool DoctorCommand::choosePort()
{
    return passes("port", [this]() -> QString {
        QString port = host::choosePort(options);
        options.port = port;
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

bool DoctorCommand::examineLine()
{
    return passes("line", [this] {
        connection = std::make_unique<Connection>(options, &probe);
        const QString taken = lineText(line);
        return isPseudoTerminal(connection->portName())
                   ? taken + "; a pseudo-terminal has no speed and no parity"
                   : taken + ", as the port confirms";
    });
}

void DoctorCommand::examineReads()
{
    std::optional<LineErrors> before = lineErrors(connection->portHandle());
    ReadTrial trial = tryReads();
    tell(judgeEcho(probe.hasHeard(), connection->hearsItself(), options.echo));
    if (tryEcho(trial)) {
        before = lineErrors(connection->portHandle());
        trial = tryReads();
    }
    tell(judgeLineErrors(before, lineErrors(connection->portHandle())));
    tell(judgeAnswers(trial));
    if (trial.answerTimes.isEmpty())
        return;
    tell(judgeRetries(trial));
    tell(judgeTimeout(trial, timeout));
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
        connection->read(makeCommand(kBytes, "MB0", 1));
        trial.answerTimes << time.elapsed();
    } catch (const Failure &failure) {
        if (failure.code() == ExitCode::OutputLost)
            throw;
        if (!trial.failure)
            trial.failure = failure;
    }
}

} // namespace

void declareDoctor(CLI::App &app, CommandLine &line)
{
    const auto reads = std::make_shared<std::optional<int>>();
    CLI::App *doctor = addCommand(app, line, "doctor", "Look for what is wrong with plug-in, port and line",
                                  [reads](const Options &options) {
                                      return DoctorCommand(options, reads->value_or(kDefaultReads)).run();
                                  });
    addNumber(*doctor, "--reads", *reads, 1, 100000, "How many reads to measure, else 20");
    setFooter(*doctor, kFooter);
}

} // namespace host
