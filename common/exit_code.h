// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What s7ppi and s7ppi-sim tell the shell. Both have one list, so that a script never meets a number with two
// meanings; docs/exit-codes.md and docs/simulator.md tell users which program ends with which.

#ifndef COMMON_EXIT_CODE_H
#define COMMON_EXIT_CODE_H

namespace common {

// Up to 63 the numbers are this project's own, by what the user has to look at. From 64 on they are those of
// sysexits.h. A run that a signal ends exits with 128 and the signal's number instead, where the program does
// not take the signal for its proper end.
enum class ExitCode {
    Success = 0,
    Refused = 1,        // the controller understood and said no
    Usage = 2,          // command line, address, type, value or file of the user's
    PortUnusable = 3,   // cannot be opened or set up
    NoAnswer = 4,       // the controller is silent
    BrokenAnswer = 5,   // something came that is not an answer
    PortLost = 6,       // the port went away while in use
    PluginUnusable = 7, // the driver cannot be loaded or is not one
    Different = 8,      // what is read back, or asked of a recording, is not what it should be
    Declined = 9,       // the user, when asked, said no
    BrokerRefused = 10, // the broker takes this user, password or certificate not, or is not who it should be
    Internal = 70,      // out of memory, say; EX_SOFTWARE
    OutputLost = 74     // stdout or a file takes no more data; EX_IOERR
};

} // namespace common

#endif
