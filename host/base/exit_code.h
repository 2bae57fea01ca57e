// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the program tells the shell.

#ifndef HOST_BASE_EXIT_CODE_H
#define HOST_BASE_EXIT_CODE_H

namespace host {

// A run ended by a signal exits with 128 and the signal's number instead.
enum class ExitCode {
    Success = 0,
    Refused = 1,        // the controller understood and said no
    Usage = 2,          // command line, address, type or value
    PortUnusable = 3,   // cannot be opened or set up
    NoAnswer = 4,       // the controller is silent
    BrokenAnswer = 5,   // something came that is not an answer
    PortLost = 6,       // the port went away while in use
    PluginUnusable = 7, // the driver cannot be loaded or is not one
    Different = 8,      // what was written is not what is read back
    Internal = 70,      // out of memory, say; EX_SOFTWARE of sysexits.h
    OutputLost = 74     // stdout or the output file takes no more data; EX_IOERR
};

} // namespace host

#endif
