// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "run.h"

#include "driver_log.h"
#include "failure.h"
#include "interruption.h"
#include "report.h"

namespace host {

namespace {

constexpr int kSignalExit = 128;

int outcomeOf(const std::function<int()> &command)
{
    try {
        return command();
    } catch (const Interrupted &) {
        return kSignalExit;
    } catch (const Failure &failure) {
        if (interruptingSignal() == 0)
            reportFailure(failure);
        return int(failure.code());
    }
}

} // namespace

int run(const Options &options, const std::function<int()> &command)
{
    catchInterruptions();
    setQuiet(options.quiet);
    installDriverLog(options.verbose);
    const int exitCode = outcomeOf(command);
    const int signalNumber = interruptingSignal();
    return signalNumber ? kSignalExit + signalNumber : exitCode;
}

} // namespace host
