// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/connection.h"

#include "host/base/filled.h"
#include "host/base/interruption.h"
#include "host/base/messages.h"
#include "host/driver/driver_fault.h"
#include "host/port/port_choice.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <optional>

#include <poll.h>

namespace host {

namespace {

// Milliseconds between two tries to open a lost port again; each pause is twice the one before. The first
// try needs none, unless the port was lost before it brought anything.
constexpr int kFirstPause = 500;
constexpr int kLongestPause = 10000;

// How often the first answer is asked for anew when it may be that to an earlier program.
constexpr int kMostDoubts = 2;

// Pauses are cut into slices so that a signal is seen soon; milliseconds.
constexpr int kSlice = 50;

void pauseFor(int milliseconds)
{
    const QDeadlineTimer end(milliseconds);
    while (!end.hasExpired() && interruptingSignal() == 0)
        poll(nullptr, 0, int(std::min<qint64>(end.remainingTime(), kSlice)));
    if (interruptingSignal() != 0)
        throw Interrupted();
}

Timing timingWith(const DriverSetting &defaults, const DriverOptions &options)
{
    return {options.timeout.value_or(defaults.timeout), options.retries.value_or(defaults.retry),
            options.station.value_or(defaults.stationid), options.delay.value_or(defaults.delay)};
}

} // namespace

Connection::Connection(const Options &options, FrameListener *watcher_)
    : plugin(findPlugin(options)), timing(timingWith(*plugin.driverDefaults(), options)),
      usualStation(timing.station), lineInUse(withOptions(lineSettings(*plugin.serialDefaults()), options)),
      watcher(watcher_), reconnects(options.reconnect), doubts(kMostDoubts), tell(reportNote)
{
    openPort(startPort(options), options);
    plugin.driver().setDebugMode(options.verbose);
    plugin.driver().initialize(listened.get());
}

// Starts the embedded simulator if that is chosen, and returns the name of the device to open.
QString Connection::startPort(const PortOptions &options)
{
    if (options.isSimulated()) {
        if (options.isUsualPort)
            reportNote("the controller is a simulated one, as environment or configuration file say");
        return startSimulator();
    }
    const bool isNamed = options.port.has_value();
    QString chosen = choosePort(options);
    if (!isNamed)
        reportNote("using the USB serial adapter " + chosen);
    return chosen;
}

QString Connection::startSimulator()
{
    const QStringList arguments = {"--station", QString::number(timing.station)};
    simulator = std::make_unique<SimulatorProcess>(findSimulator(), arguments);
    return simulator->portName();
}

QString Connection::portLabel() const
{
    return simulator ? QString(kSimulatorPort) : portName();
}

QString Connection::marked(const QString &text) const
{
    return simulator ? text + " (simulated)" : text;
}

void Connection::openPort(const QString &name, const Options &options)
{
    if (reconnects)
        awaitArrival(name);
    port = std::make_unique<SerialPort>(name, lineInUse, timing,
                                        options.rs485 ? Direction::ByKernel : Direction::ByAdapter);
    AbstractDeviceInterface *device = port.get();
    if (options.echo) {
        echo = std::make_unique<EchoPort>(*device);
        device = echo.get();
    }
    listened = std::make_unique<TracingPort>(*device, listeners(options));
}

std::vector<FrameListener *> Connection::listeners(const OutputOptions &options)
{
    std::vector<FrameListener *> listeners = {&session, &answerCheck};
    if (options.verbose) {
        showLine();
        lines = std::make_unique<TracePrinter>(reportTrace);
        listeners.push_back(lines.get());
    }
    if (options.trace) {
        traceFile = std::make_unique<TraceFile>(*options.trace,
                                                marked(port->portName()) + ", " + lineText(lineInUse));
        listeners.push_back(traceFile.get());
    }
    if (watcher)
        listeners.push_back(watcher);
    return listeners;
}

void Connection::showLine() const
{
    reportNote(port->portName() + ": " + lineText(lineInUse));
    if (!port->lineNote().isEmpty())
        reportNote(port->portName() + " is a pseudo-terminal: " + port->lineNote());
}

QByteArray Connection::read(const CommunicatorCommand &command)
{
    while (true) {
        QByteArray data = plugin.driver().read(listened.get(), command);
        if (isAlive()) {
            nextPause = 0;
            checkOutcome();
            checkAnswer();
            if (isOwnAnswer())
                return data;
            continue;
        }
        awaitPort();
    }
}

void Connection::write(const CommunicatorCommand &command, const QByteArray &data)
{
    while (plugin.driver().write(listened.get(), command, data) != 0) {
        checkTrace();
        if (isOwnAnswer())
            return;
    }
    checkPort();
    checkOutcome();
    throw driverFailure(QString());
}

void Connection::idle(int milliseconds)
{
    port->idle(milliseconds);
    if (!isAlive())
        awaitPort();
}

// Whether there still is a port to go on with. After a signal nothing goes on.
bool Connection::isAlive() const
{
    if (interruptingSignal() != 0)
        throw Interrupted();
    return !port->isLost();
}

void Connection::checkPort() const
{
    if (!isAlive())
        throw Failure(
            ExitCode::PortLost, "the port is gone",
            "was the adapter unplugged? plug it in and start again, or let --reconnect wait for it");
}

void Connection::checkTrace() const
{
    if (traceFile && traceFile->failure())
        throw Failure(*traceFile->failure());
}

void Connection::checkOutcome()
{
    checkTrace();
    if (const std::optional<Failure> failure = echo ? echo->takeFailure() : std::nullopt)
        throw Failure(*failure);
    if (!plugin.driver().hasError())
        return;
    if (port->noise())
        throw noiseFailure(*port->noise());
    const Failure failure = driverFailure(plugin.driver().getLastError());
    throw failure.code() == ExitCode::BrokenAnswer && hearsItself() ? echoFailure() : failure;
}

bool Connection::hearsItself()
{
    return !echo && port->hearsItself();
}

// Drivers number the requests of every program from 1 on. When a controller was late for an earlier program,
// its answer may meet the first request of this one, with the right number; what answers this request then
// comes behind it. The next request has another number. On a line with several masters something always
// comes, so that this is not asked for ever.
bool Connection::isOwnAnswer()
{
    const bool isOwn = doubts == 0 || port->staysSilent();
    doubts = isOwn ? 0 : doubts - 1;
    return isOwn;
}

// The driver fits what came to what was asked for. What it had to fill up is no value of the controller's.
void Connection::checkAnswer() const
{
    if (const std::optional<Shortage> &shortage = answerCheck.shortage())
        throw Failure(
            ExitCode::BrokenAnswer,
            filled("the answer holds %1 of %2 bytes", shortage->came, shortage->asked),
            "the controller sent less than it was asked for, and nothing of it counts: try a smaller count; "
            "-v shows the bytes");
}

void Connection::awaitPort()
{
    if (!reconnects || simulator)
        checkPort();
    tell(portName() + " is gone: waiting for it to come back");
    openError.clear();
    if (traceFile)
        traceFile->comment("the port is gone");
    if (echo)
        echo->takeFailure();
    do {
        pauseFor(nextPause);
        nextPause = std::clamp(2 * nextPause, kFirstPause, kLongestPause);
    } while (!comesBack());
    ++returns;
    tell(portName() + " is back");
    if (traceFile)
        traceFile->comment("the port is back");
}

// A service may start before the adapter is plugged in. The rights of a new device are not there at once.
void Connection::awaitArrival(const QString &name)
{
    if (QFileInfo::exists(name))
        return;
    tell(name + " is not there: waiting for it");
    while (!QFileInfo::exists(name))
        pauseFor(kFirstPause);
    pauseFor(kFirstPause);
}

// A port that comes or goes just then is no reason to tell: it was not there when it was to be opened.
bool Connection::comesBack()
{
    const bool wasThere = QFileInfo::exists(portName());
    try {
        port->reopen();
        return true;
    } catch (const Failure &failure) {
        if (wasThere && QFileInfo::exists(portName()))
            tellOpenError(failure.text());
        return false;
    }
}

// Tells why a port that is there again cannot be opened, once for each reason.
void Connection::tellOpenError(const QString &reason)
{
    if (reason == openError)
        return;
    openError = reason;
    tell(reason + "; still trying");
}

} // namespace host
