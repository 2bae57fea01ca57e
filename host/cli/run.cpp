// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/cli/run.h"

#include "host/base/driver_log.h"
#include "host/base/failure.h"
#include "host/base/files_in_use.h"
#include "host/base/interruption.h"
#include "host/base/report.h"

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
