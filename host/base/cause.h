// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The words by which programs tell errors apart. They stand as "cause" beside the text of every error in the
// data, and never change; docs/json.md tells users what each means.

#ifndef HOST_BASE_CAUSE_H
#define HOST_BASE_CAUSE_H

#include "common/exit_code.h"

#include <QString>
#include <QStringList>

namespace host {

enum class Cause {
    // Where an exit code tells all there is to tell.
    WrongUsage,
    PortUnusable,
    NoAnswer,
    BrokenAnswer,
    PortLost,
    PluginUnusable,
    Different,
    Internal,
    OutputLost,
    Refused,

    // Kinds of refusal.
    RefusedAddress,
    RefusedType,
    RefusedAccess,
    RefusedRequest,
    NoSuchObject,
    NotWritable,
    ControllerFault,
    Busy,
    NoService,

    // Kinds of broken answer.
    MissingAnswer,
    CutAnswer,
    WrongCheckSum,
    ShortAnswer,
    LineNoise,
    Echo,
    NoEcho,

    // Values that are none of the type that was asked for.
    NotBcd,
    NotString,

    BrokerRefused, // user, password or certificate

    // Why a command that came over a broker is not done.
    UnknownItem,
    OutOfRange,
    TooFast,
    RetainedCommand
};

QString causeWord(Cause cause);

// The cause of a failure of which no more is known than its exit code.
Cause causeOf(common::ExitCode code);

QStringList allCauseWords();

} // namespace host

#endif
