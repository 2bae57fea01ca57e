// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The program s7ppi-sim: simulated S7-200 controllers at the end of a pseudo-terminal or a serial port.

#include "common/end_of_memory.h"
#include "common/exit_code.h"
#include "common/standard_streams.h"
#include "simulator/controller/live_value.h"
#include "simulator/controller/memory.h"
#include "simulator/controller/memory_file.h"
#include "simulator/controller/memory_file_error.h"
#include "simulator/controller/memory_json.h"
#include "simulator/controller/station.h"
#include "simulator/faults/fault.h"
#include "simulator/line/line.h"
#include "simulator/line/port_link.h"
#include "simulator/line/pty_line.h"
#include "simulator/line/serial_line.h"
#include "simulator/line/server.h"
#include "simulator/line/simulator.h"
#include "simulator/program/complaint.h"
#include "simulator/program/options.h"
#include "simulator/program/stop_signals.h"
#include "simulator/protocol/bytes.h"
#include "simulator/protocol/clock.h"
#include "simulator/replay/recording.h"
#include "simulator/replay/replay.h"
#include "simulator/text/user_error.h"
#include "simulator/trace/trace.h"
#include "simulator/trace/trace_file.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSerialPort>
#include <QString>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using common::ExitCode;

sim::Time timeOfDay()
{
    return std::chrono::duration_cast<sim::Time>(std::chrono::system_clock::now().time_since_epoch());
}

// A station whose memory is saved to the file that it comes from may begin without that file.
sim::StoredMemory memoryFor(const sim::StationOption &option)
{
    const bool isNew = option.memoryFile == option.saveFile &&
                       !QFileInfo::exists(QFile::decodeName(option.memoryFile.c_str()));
    if (isNew && !option.memoryFile.empty())
        sim::note(option.memoryFile + " is new: it begins with the example memory");
    return option.memoryFile.empty() || isNew ? sim::StoredMemory{sim::exampleMemory(), {}}
                                              : sim::loadMemory(option.memoryFile);
}

// The live values of the command line come behind those of the file, so that they win, and never get into it.
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

std::unique_ptr<sim::Replay> replayOf(const sim::Options &options)
{
    const sim::Recording recording = sim::readRecording(options.replay);
    if (!recording.damage.empty())
        sim::note(options.replay + " is damaged behind " + recording.damage + ": it is played up to there");
    return std::make_unique<sim::Replay>(recording.records, options.speed, timeOfDay());
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

// Ends the event loop, whose result this exit code then is.
void end(ExitCode exitCode)
{
    QCoreApplication::exit(int(exitCode));
}

// One run of the simulator as the command line wants it.
class Program
{
public:
    explicit Program(const sim::Options &options);

    // Runs until a signal ends it or the line is lost.
    ExitCode run();

private:
    ExitCode serve();
    void addControllers();
    void setTellers();
    sim::Controllers &controllers();
    void listen(sim::Time time, sim::Traffic traffic, const sim::Bytes &bytes);
    bool save();

    const sim::Options options;
    sim::Simulator simulator{timeOfDay()};
    std::unique_ptr<sim::Replay> replay;   // in the place of the simulator
    std::vector<sim::StoredMemory> stored; // one for each station of the options
    std::unique_ptr<sim::TraceFile> trace;
};

Program::Program(const sim::Options &options_) : options(options_)
{
    if (options.replay.empty())
        addControllers();
    else
        replay = replayOf(options);
    setTellers();
}

void Program::addControllers()
{
    for (const sim::StationOption &station : options.stations)
        if (!station.saveFile.empty())
            sim::checkSavable(station.saveFile);
    for (const sim::StationOption &station : options.stations)
        stored.push_back(addStation(simulator, station, options.live));
    simulator.setPace(options.pace);
    simulator.setTurnaround(options.turnaround);
}

void Program::setTellers()
{
    const sim::Listener listener = [this](sim::Time time, sim::Traffic traffic, const sim::Bytes &bytes) {
        listen(time, traffic, bytes);
    };
    simulator.setListener(listener);
    if (!replay)
        return;
    replay->setListener(listener);
    replay->setTell(sim::note);
}

void Program::listen(sim::Time time, sim::Traffic traffic, const sim::Bytes &bytes)
{
    if (options.verbose)
        std::cerr << sim::traceLine(traffic, bytes) << std::endl;
    if (trace && !trace->write(time, traffic, bytes))
        sim::complain(options.trace + ": cannot write, the trace ends here",
                      "make room and start again; the line is served on");
}

ExitCode Program::run()
{
    const ExitCode result = serve();
    const bool saved = save();
    const bool traced = !trace || trace->isGood();
    if (result != ExitCode::Success)
        return result;
    if (!(saved && traced))
        return ExitCode::OutputLost;
    return replay && replay->differenceCount() > 0 ? ExitCode::Different : ExitCode::Success;
}

ExitCode Program::serve()
{
    const sim::StopSignals stopSignals;
    const auto line = openLine(options);
    const std::string name = line->name().toStdString();
    if (!options.trace.empty())
        trace = std::make_unique<sim::TraceFile>(options.trace, "s7ppi-sim " S7PPI_VERSION " on " + name);
    const auto link = options.link.empty() ? nullptr : std::make_unique<sim::PortLink>(options.link, name);
    addFaults(simulator, options);
    const sim::Server server(*line, controllers());
    QObject::connect(&stopSignals, &sim::StopSignals::received, [] { end(ExitCode::Success); });
    QObject::connect(line.get(), &sim::Line::lost, [&name] {
        sim::complain(name + " is lost",
                      "plug the adapter in again, look for its name with s7ppi ports, and start again");
        end(ExitCode::PortLost);
    });
    if (!(std::cout << name << std::endl))
        throw sim::UserError("stdout does not take the port's name",
                             "make room, or send the output elsewhere");
    return ExitCode(QCoreApplication::exec());
}

sim::Controllers &Program::controllers()
{
    if (replay)
        return *replay;
    return simulator;
}

// Saves every station that can be saved, even when another one cannot.
bool Program::save()
{
    bool good = true;
    for (size_t i = 0; i < stored.size(); ++i) {
        const sim::StationOption &option = options.stations[i];
        if (option.saveFile.empty())
            continue;
        stored[i].memory = simulator.station(option.address)->memory();
        try {
            sim::saveMemory(stored[i], option.saveFile);
        } catch (const sim::MemoryFileError &error) {
            sim::complain(error.what(), error.hint());
            good = false;
        }
    }
    return good;
}

ExitCode runProgram(const sim::Options &options)
{
    try {
        return Program(options).run();
    } catch (const sim::MemoryFileError &error) {
        sim::complain(error.what(), error.hint());
        return ExitCode::Usage;
    } catch (const sim::RecordingError &error) {
        sim::complain(error.what(), error.hint());
        return ExitCode::Usage;
    } catch (const sim::LineError &error) {
        sim::complain(error.what(), error.hint());
        return ExitCode::PortUnusable;
    } catch (const sim::UserError &error) {
        sim::complain(error.what(), error.hint());
        return ExitCode::OutputLost;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    common::keepClosedStreams();
    common::prepareEndOfMemory("s7ppi-sim", nullptr);
    // When whoever reads the frames of -v goes away, writing them fails and the memory is saved all the same.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    try {
        const QCoreApplication application(argc, argv);
        ExitCode exitCode = ExitCode::Success;
        const std::optional<sim::Options> options = sim::parseOptions(argc, argv, exitCode);
        return int(options ? runProgram(*options) : exitCode);
    } catch (const std::exception &error) {
        sim::complain(std::string("internal failure: ") + error.what(),
                      "run it again with -v, and report what that shows");
        return int(ExitCode::Internal);
    }
}
