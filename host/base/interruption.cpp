// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/interruption.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <initializer_list>

#include <poll.h>
#include <unistd.h>

namespace host {

namespace {

volatile std::sig_atomic_t arrivedSignal = 0;
std::atomic<void (*)()> lastResort = nullptr;

// A signal raised here takes effect when the handler returns: by then its action is the default one.
void endAtOnce(int signalNumber)
{
    runLastResort();
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    if (sigaction(signalNumber, &byDefault, nullptr) != 0 || raise(signalNumber) != 0)
        _exit(EXIT_FAILURE);
}

void remember(int signalNumber)
{
    if (arrivedSignal != 0)
        endAtOnce(signalNumber);
    arrivedSignal = signalNumber;
}

bool isIgnored(int signalNumber)
{
    struct sigaction action = {};
    return sigaction(signalNumber, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

void catchInterruptions()
{
    struct sigaction action = {};
    action.sa_handler = remember;
    for (const int signalNumber : {SIGINT, SIGQUIT, SIGTERM})
        sigaction(signalNumber, &action, nullptr);
    if (!isIgnored(SIGHUP))
        sigaction(SIGHUP, &action, nullptr);
}

int interruptingSignal()
{
    return arrivedSignal;
}

void awaitReadable(int descriptor)
{
    pollfd readable = {descriptor, POLLIN, 0};
    do {
        if (interruptingSignal() != 0)
            throw Interrupted();
    } while (poll(&readable, 1, kInterruptionSlice) <= 0);
}

void setLastResort(void (*action)())
{
    lastResort = action;
}

void runLastResort()
{
    if (void (*action)() = lastResort.load())
        action();
}

} // namespace host
