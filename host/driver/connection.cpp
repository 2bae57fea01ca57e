// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/connection.h"

#include "common/duration.h"
#include "host/base/filled.h"
#include "host/base/interruption.h"
#include "host/base/messages.h"
#include "host/driver/driver_fault.h"
#include "host/port/port_choice.h"
#include "host/port/serial_port.h"
#include "host/port/tcp_port.h"
#include "host/text/time_text.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include <poll.h>

namespace host {

namespace {

// Milliseconds between two tries to open a lost port again; each pause is twice the one before. The first
// try needs none, unless the port was lost before it brought anything.
constexpr int kFirstPause = 500;
constexpr int kLongestPause = 10000;

// Between two looks whether another program has given the port back; milliseconds.
constexpr int kLockPause = 200;

// How often the first answer is asked for anew when it may be that to an earlier program.
constexpr int kMostDoubts = 2;

void pauseFor(int milliseconds, const std::function<void()> &meanwhile = {})
{
    const QDeadlineTimer end(milliseconds);
    while (!end.hasExpired() && interruptingSignal() == 0) {
        poll(nullptr, 0, int(std::min<qint64>(end.remainingTime(), kInterruptionSlice)));
        if (meanwhile)
            meanwhile();
    }
    if (interruptingSignal() != 0)
        throw Interrupted();
}

// Options of a port of this machine, which a serial server does not take. What environment or file say for
// all ports is no reason for a word.
void checkServerOptions(const Options &options)
{
    for (const auto &[name, isGiven] :
         {std::pair("--rs485", options.rs485.has_value()), std::pair("--low-latency", options.lowLatency)})
        if (isGiven)
            throw Failure(
                ExitCode::Usage,
                filled("%1 is for a port of this machine, and %2 is a serial server's", name, *options.port),
                QString("leave out %1, and set at the serial server what it needs").arg(name));
    const QStringList unheard = {"baud", "parity", "databits", "stopbits"};
    for (const UsedSetting &used : options.settings)
        if (used.origin == SettingOrigin::CommandLine && unheard.contains(used.option)) {
            reportNote(filled("the serial server runs its line as it is set itself: --%1 does not reach it",
                              used.option));
            return;
        }
}

} // namespace

Timing timingWith(const DriverSetting &defaults, const DriverOptions &options)
{
    const auto milliseconds = [](const std::optional<std::chrono::milliseconds> &time, int otherwise) {
        return time ? int(time->count()) : otherwise;
    };
    return {milliseconds(options.timeout, defaults.timeout), options.retries.value_or(defaults.retry),
            options.station.value_or(defaults.stationid), milliseconds(options.delay, defaults.delay),
            options.gap ? std::optional<int>(int(options.gap->count())) : std::nullopt};
}

Connection::Connection(const Options &options, FrameListener *watcher_, const Meanwhile &whileAway)
    : plugin(findPlugin(options)), raw(options.rawAddress || plugin.isOtherDriver()),
      timing(timingWith(*plugin.driverDefaults(), options)), usualStation(timing.station),
      lineInUse(withOptions(lineSettings(*plugin.serialDefaults()), options)), watcher(watcher_),
      reconnects(options.reconnect), doubts(raw ? 0 : kMostDoubts), tell(reportNote), whileLost(whileAway)
{
    openPort(startPort(options), options);
    plugin.driver().setDebugMode(options.verbose);
    plugin.driver().initialize(listened.get());
}

// Starts the embedded simulator if that is chosen, and returns the name of the device to open.
QString Connection::startPort(const Options &options)
{
    if (options.isSimulated()) {
        if (plugin.isOtherDriver())
            throw Failure(ExitCode::Usage,
                          "the simulated controller is an S7-200, and the plug-in is for something else: " +
                              plugin.driver().name(),
                          "name the port of the device with --port");
        if (options.isUsualPort)
            reportNote("the controller is a simulated one, as environment or configuration file say");
        return startSimulator();
    }
    if (options.isNetwork())
        checkServerOptions(options);
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
    if (options.isNetwork()) {
        port = reachedPort(name);
    } else {
        if (reconnects)
            awaitArrival(name);
        port = freePort(name, options);
    }
    if (raw)
        port->expectUnknownProtocol();
    AbstractDeviceInterface *device = port.get();
    if (options.echo) {
        port->expectEcho();
        echo = std::make_unique<EchoPort>(*device);
        device = echo.get();
    }
    listened = std::make_unique<TracingPort>(*device, listeners(options), !raw);
}

// Opens the port, and waits for another program that has it as long as --wait-lock says.
std::unique_ptr<Port> Connection::freePort(const QString &name, const PortOptions &options) const
{
    const std::chrono::milliseconds wait = options.waitLock.value_or(std::chrono::milliseconds(0));
    const QDeadlineTimer end(wait);
    const AdapterSettings adapter = {options.rs485, options.lowLatency};
    bool isTold = false;
    while (true) {
        try {
            return std::make_unique<SerialPort>(name, lineInUse, timing, adapter);
        } catch (const PortBusy &busy) {
            if (end.hasExpired())
                throw;
            if (!std::exchange(isTold, true))
                tell(filled("%1; waiting for it, %2 at most", busy.text(),
                            QString::fromStdString(common::durationText(wait))));
        }
        pauseFor(int(std::min<qint64>(end.remainingTime(), kLockPause)));
    }
}

std::vector<FrameListener *> Connection::listeners(const OutputOptions &options)
{
    std::vector<FrameListener *> listeners = {&session};
    if (!raw)
        listeners.push_back(&answerCheck);
    if (options.verbose) {
        showLine();
        lines = std::make_unique<TracePrinter>(reportTrace, !raw);
        listeners.push_back(lines.get());
    }
    if (options.trace) {
        traceFile = std::make_unique<TraceFile>(*options.trace,
                                                marked(port->portName()) + ", " + port->settingsText());
        listeners.push_back(traceFile.get());
    }
    if (watcher)
        listeners.push_back(watcher);
    return listeners;
}

void Connection::showLine() const
{
    reportNote(port->portName() + ": " + port->settingsText());
    if (!port->lineNote().isEmpty())
        reportNote(port->portName() + " is a pseudo-terminal: " + port->lineNote());
}

Origin Connection::origin(std::optional<int> station, std::chrono::system_clock::time_point time) const
{
    return {timeText(time), portLabel(), station.value_or(usualStation)};
}

void Connection::beginCall()
{
    framesBefore = session.frameCount();
    if (raw)
        session.beginCall();
}

// What came last is told before anything is said of it.
void Connection::endCall()
{
    if (raw)
        listened->tellReceived();
}

QByteArray Connection::read(const CommunicatorCommand &command)
{
    while (true) {
        beginCall();
        QByteArray data = plugin.driver().read(listened.get(), command);
        endCall();
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
    const auto isWritten = [&] {
        beginCall();
        const int result = plugin.driver().write(listened.get(), command, data);
        endCall();
        return result != 0;
    };
    while (isWritten()) {
        checkTrace();
        if (isOwnAnswer())
            return;
    }
    checkPort();
    checkOutcome();
    throw driverFailure(QString());
}

// An attempt is a request and a poll; the driver waits for the first byte of what answers each, and for the
// rest.
std::chrono::milliseconds Connection::longestRequest() const
{
    const std::chrono::milliseconds pause(timing.delay), wait(timing.timeout);
    return (timing.retries + 1) * 2 * (pause + 2 * wait);
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
        throw Failure(port->loss());
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
        throw noiseFailure(*port->noise(), !raw);
    throw failureOfCall();
}

// The meaning of the driver's error. The line is not to blame for what was never sent.
Failure Connection::failureOfCall()
{
    const QString text = plugin.driver().getLastError();
    if (session.frameCount() == framesBefore)
        return unsentFailure(text);
    if (raw)
        return otherDriverFailure(text, session.hasHeardSinceRequest());
    const Failure failure = driverFailure(text);
    return failure.code() == ExitCode::BrokenAnswer && hearsItself() ? echoFailure() : failure;
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
            ExitCode::BrokenAnswer, Cause::ShortAnswer,
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
        pauseFor(nextPause, whileLost);
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
        pauseFor(kFirstPause, whileLost);
    pauseFor(kFirstPause);
}

// A serial server that is not there is told with the reason; a name that is wrong never becomes right.
std::unique_ptr<Port> Connection::reachedPort(const QString &name)
{
    int pause = kFirstPause;
    while (true) {
        try {
            return std::make_unique<TcpPort>(name, lineInUse.baud, timing);
        } catch (const Failure &failure) {
            if (!reconnects || failure.code() != ExitCode::PortUnusable)
                throw;
            tellOpenError(failure.text());
        }
        pauseFor(pause, whileLost);
        pause = std::min(2 * pause, kLongestPause);
    }
}

// A port that comes or goes just then is no reason to tell: it was not there when it was to be opened.
bool Connection::comesBack()
{
    const bool wasThere = port->isThere();
    try {
        port->reopen();
        return true;
    } catch (const Failure &failure) {
        if (wasThere && port->isThere())
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
