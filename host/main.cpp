// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The commands of s7ppi, in the order in which --help lists them.

#include "common/end_of_memory.h"
#include "common/exit_code.h"
#include "common/standard_streams.h"
#include "host/base/interruption.h"
#include "host/cli/program.h"
#include "host/commands/commands.h"

#include <QCoreApplication>

#include <exception>
#include <iostream>
#include <vector>

namespace {

const std::vector<host::Declare> kCommands = {
    host::declareRead,   host::declareWrite,    host::declareWatch,  host::declarePublish,
    host::declareReport, host::declareDump,     host::declareLoad,   host::declareDiff,
    host::declareScan,   host::declarePorts,    host::declareDoctor, host::declareCheck,
    host::declareDecode, host::declareDescribe, host::declarePlugin, host::declareCompletion,
};

} // namespace

int main(int argc, char *argv[])
{
    common::keepClosedStreams();
    common::prepareEndOfMemory("s7ppi", host::runLastResort);
    try {
        const QCoreApplication application(argc, argv);
        return host::runProgram(argc, argv, kCommands);
    } catch (const std::exception &error) {
        std::cerr << "s7ppi: internal failure: " << error.what()
                  << "\nhint: run it again with --verbose, and report what that shows" << std::endl;
        return int(common::ExitCode::Internal);
    }
}
