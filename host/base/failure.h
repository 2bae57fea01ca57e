// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// An error as the user meets it: what went wrong, what helps, and the exit code it leads to.

#ifndef HOST_BASE_FAILURE_H
#define HOST_BASE_FAILURE_H

#include <QString>

#include <stdexcept>

namespace host {

// What the program tells the shell. A run ended by a signal exits with 128 and the signal's number instead.
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

class Failure : public std::runtime_error
{
public:
    Failure(ExitCode code, const QString &text, const QString &hint)
        : std::runtime_error(text.toStdString()), exitCode(code), hintText(hint)
    {
    }

    ExitCode code() const { return exitCode; }
    QString text() const { return QString::fromUtf8(what()); }
    QString hint() const { return hintText; }

    // The same, told of something.
    Failure about(const QString &subject) const
    {
        return Failure(exitCode, subject + ": " + text(), hintText);
    }

    // Whatever is still to be done could not succeed either.
    bool isFinal() const { return exitCode == ExitCode::PortLost || exitCode == ExitCode::OutputLost; }

private:
    ExitCode exitCode;
    QString hintText;
};

} // namespace host

#endif
