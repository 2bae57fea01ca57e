// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "interruption.h"

#include <csignal>

namespace host {

namespace {

volatile std::sig_atomic_t arrivedSignal = 0;

void remember(int signalNumber)
{
    arrivedSignal = signalNumber;
}

} // namespace

void catchInterruptions()
{
    struct sigaction action = {};
    action.sa_handler = remember;
    action.sa_flags = int(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

int interruptingSignal()
{
    return arrivedSignal;
}

} // namespace host
