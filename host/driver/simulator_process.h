// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The simulated controller as a program of its own that lives as long as this object.

#ifndef HOST_DRIVER_SIMULATOR_PROCESS_H
#define HOST_DRIVER_SIMULATOR_PROCESS_H

#include <QString>
#include <QStringList>

#include <sys/types.h>

namespace host {

class SimulatorProcess
{
public:
    // Starts the program and waits until it has named its port. The program ends with this process, however
    // this process ends, and does not hear the terminal's Ctrl-C itself. Fails when the program does not come
    // up.
    SimulatorProcess(const QString &program, const QStringList &arguments);
    ~SimulatorProcess();

    SimulatorProcess(const SimulatorProcess &) = delete;
    SimulatorProcess &operator=(const SimulatorProcess &) = delete;

    QString portName() const { return port; }

private:
    void start(const QString &program, const QStringList &arguments);
    QString readPortName() const;
    void stop();

    pid_t process = -1;
    int output = -1; // the reading end of its stdout
    QString port;
};

// Returns the file of the simulator, which lies beside this program or else in PATH. Fails when there is
// none.
QString findSimulator();

} // namespace host

#endif
