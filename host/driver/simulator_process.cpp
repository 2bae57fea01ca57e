// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/simulator_process.h"

#include "host/base/failure.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <csignal>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace host {

namespace {

const char kProgram[] = "s7ppi-sim";
const char kHint[] = "s7ppi-sim must lie beside s7ppi or in PATH; or name a port with --port";

// Milliseconds.
constexpr int kStartTime = 30000;
constexpr int kStopTime = 2000;
constexpr int kStopCheck = 10;

Failure notStarted(const QString &program)
{
    return Failure(ExitCode::PortUnusable, "the simulator " + program + " does not start", kHint);
}

std::vector<std::string> encoded(const QString &program, const QStringList &arguments)
{
    std::vector<std::string> texts = {QFile::encodeName(program).toStdString()};
    for (const QString &argument : arguments)
        texts.push_back(QFile::encodeName(argument).toStdString());
    return texts;
}

// Runs in the child. A process group of its own keeps the terminal's Ctrl-C away: s7ppi stops the simulator
// itself, once it has finished with the port. The child asks to die with its parent, and looks only then
// whether the parent is still there. Signals that the parent catches are reset by the exec.
[[noreturn]] void becomeSimulator(char *const arguments[], int output, pid_t parent)
{
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() == parent && dup2(output, STDOUT_FILENO) >= 0)
        execv(arguments[0], arguments);
    _exit(127);
}

// A system call, made again when a signal cuts it short.
template <typename Call> auto repeated(const Call &call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

bool hasEnded(pid_t process)
{
    return waitpid(process, nullptr, WNOHANG) != 0;
}

} // namespace

SimulatorProcess::SimulatorProcess(const QString &program, const QStringList &arguments)
{
    start(program, arguments);
    port = readPortName();
    if (port.isEmpty()) {
        stop();
        throw notStarted(program);
    }
}

SimulatorProcess::~SimulatorProcess()
{
    stop();
}

// Everything that allocates happens before the fork: the child may only make system calls.
void SimulatorProcess::start(const QString &program, const QStringList &arguments)
{
    std::vector<std::string> texts = encoded(program, arguments);
    std::vector<char *> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);

    int pipeEnds[2];
    if (pipe2(pipeEnds, O_CLOEXEC) != 0)
        throw notStarted(program);
    const pid_t parent = getpid();
    process = fork();
    if (process == 0)
        becomeSimulator(pointers.data(), pipeEnds[1], parent);
    close(pipeEnds[1]);
    output = pipeEnds[0];
    if (process < 0) {
        close(output);
        throw notStarted(program);
    }
}

// Returns the first line of the simulator's output, which is empty when it has ended or takes too long.
QString SimulatorProcess::readPortName() const
{
    const QDeadlineTimer deadline(kStartTime);
    QByteArray line;
    pollfd readable = {output, POLLIN, 0};
    for (;;) {
        const int ready = repeated([&] { return poll(&readable, 1, int(deadline.remainingTime())); });
        char character = 0;
        if (ready <= 0 || repeated([&] { return read(output, &character, 1); }) != 1)
            return QString();
        if (character == '\n')
            return QFile::decodeName(line);
        line += character;
    }
}

void SimulatorProcess::stop()
{
    kill(process, SIGTERM);
    const QDeadlineTimer deadline(kStopTime);
    bool ended = hasEnded(process);
    while (!ended && !deadline.hasExpired()) {
        poll(nullptr, 0, kStopCheck);
        ended = hasEnded(process);
    }
    if (!ended) {
        kill(process, SIGKILL);
        repeated([this] { return waitpid(process, nullptr, 0); });
    }
    close(output);
}

QString findSimulator()
{
    const QString beside = QStandardPaths::findExecutable(kProgram, {QCoreApplication::applicationDirPath()});
    QString program = beside.isEmpty() ? QStandardPaths::findExecutable(kProgram) : beside;
    if (program.isEmpty())
        throw Failure(ExitCode::PortUnusable, "there is no simulator to start", kHint);
    return program;
}

} // namespace host
