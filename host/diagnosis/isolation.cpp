// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/diagnosis/isolation.h"

#include "host/base/interruption.h"
#include "host/base/system_reason.h"

#include <QDeadlineTimer>
#include <QString>

#include <algorithm>
#include <cerrno>
#include <csignal>

#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace host {

namespace {

constexpr int kFailed = 70;

Failure noProcess()
{
    return Failure(ExitCode::Internal, "no process can be started: " + systemReason(errno),
                   "wait for memory or processes to become free");
}

IsolatedEnd brokenOff(const QString &reason)
{
    return {QByteArray(),
            Failure(ExitCode::PluginUnusable, reason, "use another library, or have this one mended")};
}

bool writeAll(int descriptor, const QByteArray &bytes)
{
    int done = 0;
    while (done < bytes.size()) {
        const ssize_t count = write(descriptor, bytes.constData() + done, size_t(bytes.size() - done));
        if (count <= 0)
            return false;
        done += int(count);
    }
    return true;
}

// Never returns. A crash leaves no core file behind, and an action that hangs does not outlive the program.
void runAction(const std::function<QByteArray()> &action, int descriptor)
{
    struct sigaction ends = {};
    ends.sa_handler = SIG_DFL;
    for (const int number : {SIGINT, SIGTERM, SIGQUIT, SIGHUP})
        sigaction(number, &ends, nullptr);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    try {
        _exit(writeAll(descriptor, action()) ? 0 : kFailed);
    } catch (...) {
        _exit(kFailed);
    }
}

class Child
{
public:
    explicit Child(const std::function<QByteArray()> &action);
    ~Child();

    // Takes what the child writes, until it closes its end or the time is over. A signal that ends the
    // program ends this, too.
    void listen(std::chrono::milliseconds limit);
    IsolatedEnd end();

private:
    int ends[2] = {-1, -1};
    pid_t process;
    bool isLate = false;
    QByteArray heard;
};

Child::Child(const std::function<QByteArray()> &action)
{
    if (pipe(ends) != 0)
        throw noProcess();
    process = fork();
    if (process == 0)
        runAction(action, ends[1]);
    close(ends[1]);
    if (process < 0) {
        close(ends[0]);
        throw noProcess();
    }
}

Child::~Child()
{
    close(ends[0]);
    if (process > 0) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
}

void Child::listen(std::chrono::milliseconds limit)
{
    const QDeadlineTimer due(limit);
    char buffer[4096];
    while (interruptingSignal() == 0) {
        pollfd waiting = {ends[0], POLLIN, 0};
        const int ready = poll(&waiting, 1, int(due.remainingTime()));
        isLate = ready == 0;
        if (isLate)
            return;
        const ssize_t count = ready > 0 ? read(ends[0], buffer, sizeof buffer) : -1;
        if (count == 0)
            return;
        if (count > 0)
            heard.append(buffer, int(count));
    }
    throw Interrupted();
}

IsolatedEnd Child::end()
{
    if (isLate)
        return brokenOff("it takes too long");
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    process = -1;
    if (WIFSIGNALED(status))
        return brokenOff(QString("it crashes: ") + strsignal(WTERMSIG(status)));
    if (WEXITSTATUS(status) != 0)
        return brokenOff(QString("it ends the process with %1").arg(WEXITSTATUS(status)));
    return {heard, std::nullopt};
}

} // namespace

IsolatedEnd runIsolated(const std::function<QByteArray()> &action, std::chrono::milliseconds limit)
{
    Child child(action);
    child.listen(limit);
    return child.end();
}

} // namespace host
