// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Everything between a command and the controller: plug-in, simulator if need be, port, trace.

#ifndef HOST_CONNECTION_H
#define HOST_CONNECTION_H

#include "counting_port.h"
#include "options.h"
#include "plugin.h"
#include "serial_port.h"
#include "simulator_process.h"
#include "tracing_port.h"

#include <memory>

namespace host {

class Connection
{
public:
    // Loads the plug-in and opens the port, telling on stderr which when the command line does not.
    explicit Connection(const Options &options);

    // One read by the driver, repetitions included. Fails with the meaning of the driver's error.
    QByteArray read(const CommunicatorCommand &command);

    // The same for a write.
    void write(const CommunicatorCommand &command, const QByteArray &data);

    // Lets so many milliseconds pass, fewer when something happens: a port that goes away meanwhile is a
    // failure at once.
    void idle(int milliseconds);

    QString portName() const { return port->portName(); }

    // How many requests were sent so far: one per attempt at a read or write.
    int requestCount() const { return counter->requestCount(); }

private:
    QString choosePort(const Options &options);
    QString startSimulator();
    void openPort(const QString &name, const Options &options);
    void openTrace(const LineSettings &line);
    void checkPort() const;
    void checkOutcome();

    Plugin plugin;
    Timing timing;
    std::unique_ptr<SimulatorProcess> simulator;
    std::unique_ptr<SerialPort> port;
    std::unique_ptr<TracingPort> trace;    // null unless verbose
    std::unique_ptr<CountingPort> counter; // what the driver gets
};

} // namespace host

#endif
