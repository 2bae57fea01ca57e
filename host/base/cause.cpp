// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/cause.h"

namespace host {

namespace {

// In the order of Cause.
const QStringList kWords = {"wrong_usage",
                            "port_unusable",
                            "no_answer",
                            "broken_answer",
                            "port_lost",
                            "plugin_unusable",
                            "different",
                            "internal",
                            "output_lost",
                            "refused",
                            "refused_address",
                            "refused_type",
                            "refused_access",
                            "refused_request",
                            "no_such_object",
                            "not_writable",
                            "controller_fault",
                            "busy",
                            "no_service",
                            "missing_answer",
                            "cut_answer",
                            "wrong_check_sum",
                            "short_answer",
                            "line_noise",
                            "echo",
                            "no_echo",
                            "not_bcd",
                            "not_string",
                            "broker_refused",
                            "unknown_item",
                            "out_of_range",
                            "too_fast",
                            "retained_command"};

} // namespace

QString causeWord(Cause cause)
{
    return kWords.at(int(cause));
}

Cause causeOf(common::ExitCode code)
{
    using common::ExitCode;
    switch (code) {
    case ExitCode::Refused:
        return Cause::Refused;
    case ExitCode::Usage:
        return Cause::WrongUsage;
    case ExitCode::PortUnusable:
        return Cause::PortUnusable;
    case ExitCode::NoAnswer:
        return Cause::NoAnswer;
    case ExitCode::BrokenAnswer:
        return Cause::BrokenAnswer;
    case ExitCode::PortLost:
        return Cause::PortLost;
    case ExitCode::PluginUnusable:
        return Cause::PluginUnusable;
    case ExitCode::Different:
        return Cause::Different;
    case ExitCode::BrokerRefused:
        return Cause::BrokerRefused;
    case ExitCode::OutputLost:
        return Cause::OutputLost;
    case ExitCode::Success:
    case ExitCode::Declined:
    case ExitCode::Internal:
        break;
    }
    return Cause::Internal;
}

QStringList allCauseWords()
{
    return kWords;
}

} // namespace host
