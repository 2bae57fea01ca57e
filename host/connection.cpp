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
    plugin.driver().initialize(device());
}

QString Connection::choosePort(const Options &options)
{
    if (options.port)
        return *options.port == kSimulatorName ? startSimulator() : QString::fromStdString(*options.port);
    const QString adapter = onlyAdapter(usbAdapters());
    if (!adapter.isEmpty()) {
        reportNote("using the USB serial adapter " + adapter);
        return adapter;
    }
    const QString simulated = startSimulator();
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
    if (!options.verbose)
        return;
    trace = std::make_unique<TracingPort>(*port, reportTrace);
    reportNote(name + ": " + lineText(line));
    if (!port->lineNote().isEmpty())
        reportNote(name + " is a pseudo-terminal: " + port->lineNote());
}

AbstractDeviceInterface *Connection::device()
{
    return trace ? static_cast<AbstractDeviceInterface *>(trace.get()) : port.get();
}

QByteArray Connection::read(const CommunicatorCommand &command)
{
    const QByteArray data = plugin.driver().read(device(), command);
    checkOutcome();
    return data;
}

void Connection::checkOutcome()
{
    if (interruptingSignal() != 0)
        throw Interrupted();
    if (port->isLost())
        throw Failure(ExitCode::PortLost, "the port is gone",
                      "was the adapter unplugged? plug it in and start again");
    if (plugin.driver().hasError())
        throw driverFailure(plugin.driver().getLastError());
}

} // namespace host
