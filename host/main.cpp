// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The commands of s7ppi, in the order in which --help lists them.

#include "check_command.h"
#include "completion_command.h"
#include "decode_command.h"
#include "describe_command.h"
#include "doctor_command.h"
#include "dump_command.h"
#include "exit_code.h"
#include "load_command.h"
#include "plugin_command.h"
#include "ports_command.h"
#include "program.h"
#include "read_command.h"
#include "report_command.h"
#include "scan_command.h"
#include "standard_streams.h"
#include "watch_command.h"
#include "write_command.h"

#include <QCoreApplication>

#include <exception>
#include <iostream>

namespace {

const std::vector<host::Declare> kCommands = {
    host::declareRead,   host::declareWrite,      host::declareWatch,  host::declareReport,
    host::declareDump,   host::declareLoad,       host::declareScan,   host::declarePorts,
    host::declareDoctor, host::declareCheck,      host::declareDecode, host::declareDescribe,
    host::declarePlugin, host::declareCompletion,
};

} // namespace

int main(int argc, char *argv[])
{
    host::keepClosedStreams();
    try {
        const QCoreApplication application(argc, argv);
        return host::runProgram(argc, argv, kCommands);
    } catch (const std::exception &error) { // no memory, say
        std::cerr << "s7ppi: internal failure: " << error.what()
                  << "\nhint: run it again with --verbose, and report what that shows" << std::endl;
        return int(host::ExitCode::Internal);
    }
}
