// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi-sim: simulated S7-200 controllers at the end of a pseudo-terminal or a serial port.

#include "simulator/controller/memory_file.h"
#include "simulator/line/port_link.h"
#include "simulator/line/pty_line.h"
#include "simulator/line/serial_line.h"
#include "simulator/line/server.h"
#include "simulator/program/complaint.h"
#include "simulator/program/options.h"
#include "simulator/program/standard_streams.h"
#include "simulator/program/stop_signals.h"
#include "simulator/trace/trace.h"
#include "simulator/trace/trace_file.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <csignal>

namespace {

sim::Time timeOfDay()
{
    return std::chrono::duration_cast<sim::Time>(std::chrono::system_clock::now().time_since_epoch());
}

// A file that is to be made at the end is not missed at the beginning.
sim::StoredMemory memoryFor(const sim::StationOption &option)
{
    const bool isNew = option.memoryFile == option.saveFile &&
                       !QFileInfo::exists(QFile::decodeName(option.memoryFile.c_str()));
    if (isNew && !option.memoryFile.empty())
        sim::note(option.memoryFile + " is new: it begins with the example memory");
    return option.memoryFile.empty() || isNew ? sim::StoredMemory{sim::exampleMemory(), {}}
                                              : sim::loadMemory(option.memoryFile);
}

// The live values of the command line come behind those of the file, and never get into it.
sim::StoredMemory addStation(sim::Simulator &simulator, const sim::StationOption &option,
                             const std::vector<std::string> &live)
{
    sim::StoredMemory stored = memoryFor(option);
    sim::Station &station = simulator.addStation(option.address, stored.memory);
    for (const sim::LiveValue &value : stored.live)
        station.addLiveValue(value);
    for (const std::string &text : live) {
        for (const sim::LiveValue &value : sim::parseLiveValues(text))
            station.addLiveValue(value);
    }
    return stored;
}

void addFaults(sim::Simulator &simulator, const sim::Options &options)
{
    bool random = false;
    for (const std::string &text : options.faults) {
        const sim::Fault fault = sim::parseFault(text);
        random = random || sim::isRandom(fault);
        simulator.addFault(fault);
    }
    if (!random)
        return;
    const uint32_t seed = options.seed ? *options.seed : std::random_device()();
    simulator.setSeed(seed);
    sim::note("faults by chance; --seed " + std::to_string(seed) + " repeats them");
}

QSerialPort::Parity parityNamed(const std::string &name)
{
    if (name == "odd")
        return QSerialPort::OddParity;
    return name == "none" ? QSerialPort::NoParity : QSerialPort::EvenParity;
}

std::unique_ptr<sim::Line> openLine(const sim::Options &options)
{
    if (options.port.empty())
        return std::make_unique<sim::PtyLine>();
    return std::make_unique<sim::SerialLine>(QString::fromStdString(options.port), options.baudRate,
                                             parityNamed(options.parity));
}

// The simulator as the command line wants it.
class Program
{
public:
    explicit Program(const sim::Options &options);

    // Until a signal ends it or the line is lost. Returns the exit code.
    int run();

private:
    int serve();
    void listen(sim::Time time, sim::Traffic traffic, const sim::Bytes &bytes);
    bool save();

    const sim::Options m_options;
    sim::Simulator m_simulator{timeOfDay()};
    std::vector<sim::StoredMemory> m_stored; // one for each station of the options
    std::unique_ptr<sim::TraceFile> m_trace;
};

Program::Program(const sim::Options &options) : m_options(options)
{
    for (const sim::StationOption &station : m_options.stations)
        if (!station.saveFile.empty())
            sim::checkSavable(station.saveFile);
    for (const sim::StationOption &station : m_options.stations)
        m_stored.push_back(addStation(m_simulator, station, m_options.live));
    m_simulator.setPace(m_options.pace);
    m_simulator.setTurnaround(std::chrono::milliseconds(m_options.turnaround));
    m_simulator.setListener([this](sim::Time time, sim::Traffic traffic, const sim::Bytes &bytes) {
        listen(time, traffic, bytes);
    });
}

void Program::listen(sim::Time time, sim::Traffic traffic, const sim::Bytes &bytes)
{
    if (m_options.verbose)
        std::cerr << sim::traceLine(traffic, bytes) << std::endl;
    if (m_trace && !m_trace->write(time, traffic, bytes))
        sim::complain(m_options.trace + ": cannot write, the trace ends here",
                      "make room and start again; the line is served on");
}

int Program::run()
{
    const int result = serve();
    const bool saved = save();
    const bool traced = !m_trace || m_trace->isGood();
    return result == sim::kDone && !(saved && traced) ? sim::kOutputLost : result;
}

int Program::serve()
{
    const sim::StopSignals stopSignals;
    const auto line = openLine(m_options);
    const std::string name = line->name().toStdString();
    if (!m_options.trace.empty())
        m_trace = std::make_unique<sim::TraceFile>(m_options.trace, "s7ppi-sim " S7PPI_VERSION " on " + name);
    const auto link =
        m_options.link.empty() ? nullptr : std::make_unique<sim::PortLink>(m_options.link, name);
    addFaults(m_simulator, m_options);
    const sim::Server server(*line, m_simulator);
    QObject::connect(&stopSignals, &sim::StopSignals::received, [] { QCoreApplication::exit(sim::kDone); });
    QObject::connect(line.get(), &sim::Line::lost, [&name] {
        sim::complain(name + " is lost",
                      "plug the adapter in again, look for its name with s7ppi ports, and start again");
        QCoreApplication::exit(sim::kPortLost);
    });
    if (!(std::cout << name << std::endl))
        throw sim::UserError("stdout does not take the port's name",
                             "make room, or send the output elsewhere");
    return QCoreApplication::exec();
}

// Every station that can be saved is, even when another one cannot.
bool Program::save()
{
    bool good = true;
    for (size_t i = 0; i < m_stored.size(); ++i) {
        const sim::StationOption &option = m_options.stations[i];
        if (option.saveFile.empty())
            continue;
        m_stored[i].memory = m_simulator.station(option.address)->memory();
        try {
            sim::saveMemory(m_stored[i], option.saveFile);
        } catch (const sim::MemoryFileError &error) {
            sim::complain(error.what(), error.hint());
            good = false;
        }
    }
    return good;
}

int runProgram(const sim::Options &options)
{
    try {
        return Program(options).run();
    } catch (const sim::MemoryFileError &error) {
        sim::complain(error.what(), error.hint());
        return sim::kBadUsage;
    } catch (const sim::LineError &error) {
        sim::complain(error.what(), error.hint());
        return sim::kPortProblem;
    } catch (const sim::UserError &error) {
        sim::complain(error.what(), error.hint());
        return sim::kOutputLost;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    sim::keepClosedStreams();
    // Whoever reads the frames of -v may go: the memory is saved all the same.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    try {
        const QCoreApplication application(argc, argv);
        int exitCode = sim::kDone;
        const std::optional<sim::Options> options = sim::parseOptions(argc, argv, exitCode);
        return options ? runProgram(*options) : exitCode;
    } catch (const std::exception &error) {
        sim::complain(std::string("internal failure: ") + error.what(),
                      "free some memory; it may be a bug, too");
        return sim::kInternal;
    }
}
