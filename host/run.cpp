// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "run.h"

#include "driver_log.h"
#include "failure.h"
#include "files_in_use.h"
#include "interruption.h"
#include "report.h"

namespace host {

namespace {

constexpr int kSignalExit = 128;

int outcomeOf(Options &options, const std::function<int()> &command)
{
    try {
        settleFiles(options);
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

int run(Options &options, const std::function<int()> &command)
{
    catchInterruptions();
    setQuiet(options.quiet);
    setVerbose(options.verbose);
    installDriverLog(options.verbose);
    const int exitCode = outcomeOf(options, command);
    const int signalNumber = interruptingSignal();
    return signalNumber ? kSignalExit + signalNumber : exitCode;
}

} // namespace host
