// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "connection.h"

#include "driver_fault.h"
#include "interruption.h"
#include "port_choice.h"
#include "report.h"

namespace host {

namespace {

const char kSimulatorName[] = "sim";

Timing timingWith(const DriverSetting &defaults, const Options &options)
{
    return {options.timeout.value_or(defaults.timeout), options.retries.value_or(defaults.retry),
            options.station.value_or(defaults.stationid), options.delay.value_or(defaults.delay)};
}

} // namespace

Connection::Connection(const Options &options)
    : plugin(findPlugin(options)), timing(timingWith(*plugin.driverDefaults(), options))
{
    openPort(choosePort(options), options);
    plugin.driver().setDebugMode(options.verbose);
    plugin.driver().initialize(counter.get());
}

QString Connection::choosePort(const Options &options)
{
    if (options.port)
        return *options.port == kSimulatorName ? startSimulator() : QString::fromStdString(*options.port);
    QString adapter = onlyAdapter(usbAdapters());
    if (!adapter.isEmpty()) {
        reportNote("using the USB serial adapter " + adapter);
        return adapter;
    }
    QString simulated = startSimulator();
    reportNote("no USB serial adapter found: using a simulated controller on " + simulated);
    return simulated;
}

QString Connection::startSimulator()
{
    const QStringList arguments = {"--station", QString::number(timing.station)};
    simulator = std::make_unique<SimulatorProcess>(findSimulator(), arguments);
    return simulator->portName();
}

void Connection::openPort(const QString &name, const Options &options)
{
    const LineSettings line = withOptions(lineSettings(*plugin.serialDefaults()), options);
    port = std::make_unique<SerialPort>(name, line, timing);
    AbstractDeviceInterface *device = port.get();
    if (options.verbose) {
        openTrace(line);
        device = trace.get();
    }
    counter = std::make_unique<CountingPort>(*device);
}

void Connection::openTrace(const LineSettings &line)
{
    trace = std::make_unique<TracingPort>(*port, reportTrace);
    reportNote(port->portName() + ": " + lineText(line));
    if (!port->lineNote().isEmpty())
        reportNote(port->portName() + " is a pseudo-terminal: " + port->lineNote());
}

QByteArray Connection::read(const CommunicatorCommand &command)
{
    QByteArray data = plugin.driver().read(counter.get(), command);
    checkOutcome();
    return data;
}

void Connection::write(const CommunicatorCommand &command, const QByteArray &data)
{
    if (plugin.driver().write(counter.get(), command, data) != 0)
        return;
    checkOutcome();
    throw driverFailure(QString());
}

void Connection::idle(int milliseconds)
{
    port->idle(milliseconds);
    checkPort();
}

void Connection::checkPort() const
{
    if (interruptingSignal() != 0)
        throw Interrupted();
    if (port->isLost())
        throw Failure(ExitCode::PortLost, "the port is gone",
                      "was the adapter unplugged? plug it in and start again");
}

void Connection::checkOutcome()
{
    checkPort();
    if (plugin.driver().hasError())
        throw driverFailure(plugin.driver().getLastError());
}

} // namespace host
