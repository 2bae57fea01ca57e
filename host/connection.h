// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Everything between a command and the controller: plug-in, simulator if need be, port, trace.

#ifndef HOST_CONNECTION_H
#define HOST_CONNECTION_H

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

private:
    QString choosePort(const Options &options);
    QString startSimulator();
    void openPort(const QString &name, const Options &options);
    AbstractDeviceInterface *device();
    void checkOutcome();

    Plugin plugin;
    Timing timing;
    std::unique_ptr<SimulatorProcess> simulator;
    std::unique_ptr<SerialPort> port;
    std::unique_ptr<TracingPort> trace;
};

} // namespace host

#endif
