// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi-sim: a simulated S7-200 at the end of a pseudo-terminal or a serial port.

#include "simulator/memory_file.h"
#include "simulator/port_link.h"
#include "simulator/pty_line.h"
#include "simulator/serial_line.h"
#include "simulator/server.h"
#include "simulator/stop_signals.h"
#include "simulator/trace.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>

#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

enum ExitCode { kDone = 0, kFailed = 1, kBadUsage = 2, kPortProblem = 3 };

const char *const kFooter = R"(
Prints the port's name as the first line on stdout and is ready from then on.
SIGINT and SIGTERM end it.

Memory without --memory:
  VB100..VB103  11 22 33 44
  SMB0          01
  T37           value 300, preset 100, status bit on
  C5            value 5, preset 10, status bit off
  HC0           100000
  all else zero
Memory file: {"V": {"100": "11223344"}, "T": {"37": {"value": 300, "preset": 100,
  "status": true}}, "HC": {"0": 100000}}; what it leaves out is zero.
A write to a timer or counter sets its current value and nothing else.

Exit status: 0 ended by a signal, 1 memory could not be saved, 2 bad usage or memory
file, 3 the port could not be opened or was lost.)";

struct Options
{
    int station = 2;
    std::string port;
    std::string link;
    std::string memoryFile;
    std::string saveFile;
    int baudRate = 9600;
    std::string parity = "even";
    std::vector<std::string> refusals;
    std::vector<std::string> faults;
    bool verbose = false;
};

std::string faultHelp()
{
    std::string text = "Misbehave with every request, or with the N-th only (repeatable):";
    for (const sim::FaultName &fault : sim::faultNames())
        text += std::string("\n") + fault.name + ": " + fault.meaning;
    return text;
}

std::string checkFault(const std::string &text)
{
    return sim::parseFault(text) ? "" : text + " is not a known kind, with @N or without";
}

std::string checkRefusal(const std::string &text)
{
    const auto fault = sim::parseFault(text);
    const bool negative =
        fault && (fault->kind == sim::FaultKind::NoResource || fault->kind == sim::FaultKind::NotActive);
    return negative ? "" : text + " is neither no-resource nor not-active, with @N or without";
}

void declareOptions(CLI::App &app, Options &options)
{
    app.set_version_flag("--version", "s7ppi-sim " S7PPI_VERSION);
    app.footer(kFooter);
    app.add_option("--station", options.station, "Station number, 1 to 126")
        ->type_name("N")
        ->check(CLI::Range(1, 126), "")
        ->capture_default_str();
    auto *port = app.add_option("--port", options.port, "Serial port to use (a new pseudo-terminal)");
    port->type_name("DEVICE");
    app.add_option("--link", options.link, "Symbolic link to make to the pseudo-terminal")
        ->type_name("PATH")
        ->excludes(port);
    app.add_option("--memory", options.memoryFile, "Memory to begin with")->type_name("FILE.json");
    app.add_option("--save", options.saveFile, "Where to save the memory at the end")->type_name("FILE.json");
    app.add_option("--baud", options.baudRate, "Baud rate of the serial port")
        ->type_name("RATE")
        ->check(CLI::Range(50, 4000000), "")
        ->capture_default_str()
        ->needs(port);
    app.add_option("--parity", options.parity, "Parity of the serial port: even, odd or none")
        ->type_name("PARITY")
        ->check(CLI::IsMember({"even", "odd", "none"}), "")
        ->capture_default_str()
        ->needs(port);
    app.add_option("--refuse", options.refusals,
                   "Refuse every request, or the N-th only: no-resource, not-active")
        ->type_name("KIND[@N]")
        ->allow_extra_args(false)
        ->check(checkRefusal, "");
    app.add_option("--fault", options.faults, faultHelp())
        ->type_name("KIND[@N]")
        ->allow_extra_args(false)
        ->check(checkFault, "");
    app.add_flag("-v,--verbose", options.verbose, "Show the frames on stderr");
}

sim::Station makeStation(const Options &options)
{
    const bool given = !options.memoryFile.empty();
    sim::Station station(static_cast<uint8_t>(options.station),
                         given ? sim::loadMemory(options.memoryFile) : sim::exampleMemory());
    for (const std::string &refusal : options.refusals)
        station.addFault(*sim::parseFault(refusal));
    for (const std::string &fault : options.faults)
        station.addFault(*sim::parseFault(fault));
    if (options.verbose) {
        station.setListener([](sim::Traffic traffic, const sim::Bytes &bytes) {
            std::cerr << sim::traceLine(traffic, bytes) << std::endl;
        });
    }
    return station;
}

QSerialPort::Parity parityNamed(const std::string &name)
{
    if (name == "odd")
        return QSerialPort::OddParity;
    return name == "none" ? QSerialPort::NoParity : QSerialPort::EvenParity;
}

std::unique_ptr<sim::Line> openLine(const Options &options)
{
    if (options.port.empty())
        return std::make_unique<sim::PtyLine>();
    return std::make_unique<sim::SerialLine>(QString::fromStdString(options.port), options.baudRate,
                                             parityNamed(options.parity));
}

void complain(std::string_view text)
{
    std::cerr << "s7ppi-sim: " << text << std::endl;
}

// Until a signal ends it or the line is lost.
int serve(sim::Station &station, const Options &options)
{
    const sim::StopSignals stopSignals;
    const auto line = openLine(options);
    const auto link = options.link.empty()
                          ? nullptr
                          : std::make_unique<sim::PortLink>(options.link, line->name().toStdString());
    const sim::Server server(*line, station);
    QObject::connect(&stopSignals, &sim::StopSignals::received, [] { QCoreApplication::exit(kDone); });
    QObject::connect(line.get(), &sim::Line::lost, [&line] {
        complain(line->name().toStdString() + " is lost");
        QCoreApplication::exit(kPortProblem);
    });
    std::cout << line->name().toStdString() << std::endl;
    return QCoreApplication::exec();
}

int run(const Options &options)
{
    sim::Station station = makeStation(options);
    const int result = serve(station, options);
    if (options.saveFile.empty())
        return result;
    try {
        sim::saveMemory(station.memory(), options.saveFile);
    } catch (const sim::MemoryFileError &error) {
        complain(error.what());
        return kFailed;
    }
    return result;
}

int parseAndRun(int argc, char *argv[])
{
    CLI::App app("A simulated S7-200 controller: a PPI station with memory.", "s7ppi-sim");
    Options options;
    declareOptions(app, options);
    try {
        app.parse(argc, argv);
        return run(options);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? kDone : kBadUsage;
    } catch (const sim::MemoryFileError &error) {
        complain(error.what());
        return kBadUsage;
    } catch (const sim::LineError &error) {
        complain(error.what());
        return kPortProblem;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    try {
        const QCoreApplication application(argc, argv);
        return parseAndRun(argc, argv);
    } catch (const std::exception &error) { // no memory, say
        complain(error.what());
        return kFailed;
    }
}
