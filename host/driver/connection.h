// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Everything between a command and the controller: plug-in, simulator if need be, port, echo, trace.

#ifndef HOST_DRIVER_CONNECTION_H
#define HOST_DRIVER_CONNECTION_H

#include "host/base/options.h"
#include "host/driver/plugin.h"
#include "host/driver/simulator_process.h"
#include "host/frames/answer_check.h"
#include "host/frames/trace_file.h"
#include "host/frames/trace_printer.h"
#include "host/items/origin.h"
#include "host/port/adapter_probe.h"
#include "host/port/echo_port.h"
#include "host/port/port.h"
#include "host/port/tracing_port.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace host {

// The driver's own times and repetitions, with everything replaced that the options name.
Timing timingWith(const DriverSetting &defaults, const DriverOptions &options);

class Connection
{
public:
    // Called often while a port is waited for.
    using Meanwhile = std::function<void()>;

    // Loads the plug-in and opens the port; which port that is, is told on stderr when the options do not
    // name one. The watcher, which may be null and must outlive the connection, sees the frames as the trace
    // does. With --reconnect a port that is not there yet is waited for.
    explicit Connection(const Options &options, FrameListener *watcher = nullptr,
                        const Meanwhile &whileAway = {});

    // Lets the driver read once, repetitions included, and returns its data. Fails with the meaning of the
    // driver's error, and when the answer holds less than was asked for. With --reconnect a lost port is
    // waited for and the read begun again; the embedded simulator's port never comes back.
    QByteArray read(const CommunicatorCommand &command);

    // Lets the driver write once. It fails like read(), but always when the port is lost: nobody knows then
    // whether the write took place.
    void write(const CommunicatorCommand &command, const QByteArray &data);

    // Lets so many milliseconds pass, fewer when something happens: a port that goes away meanwhile is a
    // failure at once, or with --reconnect waited for.
    void idle(int milliseconds);

    QString portName() const { return port->portName(); }

    // The port's name as the user knows it, which stays the same from run to run: that of the embedded
    // simulator is "sim", though it has another port each time.
    QString portLabel() const;

    // Where data come from that are read now, or were at another time, from the station that an item names,
    // or else from that of the options.
    Origin origin(std::optional<int> station,
                  std::chrono::system_clock::time_point time = std::chrono::system_clock::now()) const;

    // Whether addresses are for the driver alone. What passes is bytes then: no frame is explained, counted
    // on or asked for anew.
    bool isRaw() const { return raw; }

    // How many frames were sent so far.
    int frameCount() const { return session.frameCount(); }

    // Whether the controller is the simulated one, which whatever is made of its values has to say.
    bool isSimulated() const { return bool(simulator); }

    // The text, marked when the controller is the simulated one.
    QString marked(const QString &text) const;

    // The kernel's descriptor of the open port.
    int portHandle() const { return port->handle(); }

    const LineSettings &line() const { return lineInUse; }

    int stationId() const { return timing.station; }

    // How long a request may take whose answer never comes, or byte by byte, repetitions included.
    std::chrono::milliseconds longestRequest() const;

    // Sends what follows to another controller on the same line, or without a station to that of the options.
    void setStation(std::optional<int> station)
    {
        port->setStation(timing.station = station.value_or(usualStation));
    }

    // Whether what is not answered is asked again, as often as the options say; so it is at first.
    void setRepeating(bool isRepeating) { port->setRetries(isRepeating ? timing.retries : 0); }

    // Whether the adapter hears what it sends and nobody takes that out, as the last frame tells.
    bool hearsItself();

    // How many requests were sent so far: one per attempt at a read or write.
    int requestCount() const { return session.requestCount(); }

    // How often the port was lost and came back.
    int returnCount() const { return returns; }

    // While it lives, messages about the loss and the return of the port go to a function instead of to
    // stderr. Another one, if there is one, is called often while a lost port is waited for.
    using Tell = std::function<void(const QString &)>;
    class MessageRedirect
    {
    public:
        MessageRedirect(Connection &connection_, Tell tell, Meanwhile whileLost = {})
            : connection(connection_), before(std::exchange(connection.tell, std::move(tell)))
        {
            connection.whileLost = std::move(whileLost);
        }
        ~MessageRedirect()
        {
            connection.tell = before;
            connection.whileLost = {};
        }

    private:
        Q_DISABLE_COPY(MessageRedirect)

        Connection &connection;
        Tell before;
    };

private:
    QString startPort(const Options &options);
    QString startSimulator();
    void openPort(const QString &name, const Options &options);
    std::unique_ptr<Port> freePort(const QString &name, const PortOptions &options) const;
    std::vector<FrameListener *> listeners(const OutputOptions &options);
    void showLine() const;
    void beginCall();
    void endCall();
    bool isAlive() const;
    void checkPort() const;
    void checkTrace() const;
    void checkOutcome();
    Failure failureOfCall();
    void checkAnswer() const;
    bool isOwnAnswer();
    void awaitArrival(const QString &name);
    std::unique_ptr<Port> reachedPort(const QString &name);
    void awaitPort();
    bool comesBack();
    void tellOpenError(const QString &reason);

    Plugin plugin;
    bool raw;
    Timing timing;
    int usualStation;
    LineSettings lineInUse;
    FrameListener *watcher;
    bool reconnects;
    int doubts;        // how often an answer may still be taken for one to an earlier program
    int nextPause = 0; // milliseconds before the next try to open a lost port
    QString openError; // why the lost port could not be opened, as last told
    int returns = 0;
    int framesBefore = 0; // the call of the driver that is under way, or was last
    Tell tell;
    Meanwhile whileLost;
    std::unique_ptr<SimulatorProcess> simulator;
    std::unique_ptr<Port> port;
    std::unique_ptr<EchoPort> echo; // null unless the adapter echoes
    std::unique_ptr<TracePrinter> lines;
    std::unique_ptr<TraceFile> traceFile;
    AdapterProbe session; // sees all reads and writes
    AnswerCheck answerCheck;
    std::unique_ptr<TracingPort> listened; // what the driver gets
};

} // namespace host

#endif
