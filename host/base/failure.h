// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// An error as the user meets it: what went wrong, what helps, and the exit code it leads to.

#ifndef HOST_BASE_FAILURE_H
#define HOST_BASE_FAILURE_H

#include "common/exit_code.h"
#include "host/base/cause.h"

#include <QString>

#include <stdexcept>

namespace host {

using common::ExitCode;

class Failure : public std::runtime_error
{
public:
    Failure(ExitCode code, const QString &text, const QString &hint)
        : Failure(code, causeOf(code), text, hint)
    {
    }
    Failure(ExitCode code, Cause cause, const QString &text, const QString &hint)
        : std::runtime_error(text.toStdString()), exitCode(code), exactCause(cause), hintText(hint)
    {
    }

    ExitCode code() const { return exitCode; }
    Cause cause() const { return exactCause; }
    QString text() const { return QString::fromUtf8(what()); }
    QString hint() const { return hintText; }

    // This failure, told in other words.
    Failure withText(const QString &text) const { return Failure(exitCode, exactCause, text, hintText); }

    // This failure, with `subject` in front of its text.
    Failure about(const QString &subject) const { return withText(subject + ": " + text()); }

    // Whether nothing that is still to be done could succeed either.
    bool isFinal() const { return exitCode == ExitCode::PortLost || exitCode == ExitCode::OutputLost; }

private:
    ExitCode exitCode;
    Cause exactCause;
    QString hintText;
};

} // namespace host

#endif
