// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/driver_fault.h"

#include "host/base/filled.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace host {

namespace {

struct FaultMeaning
{
    const char *text;
    ExitCode code;
    Cause cause;
    const char *hint;
};

const char kLineHint[] =
    "bytes are lost or damaged on the line: check baud rate, parity, cable and termination, "
    "and that no other master uses station 0";

const FaultMeaning kMeanings[] = {
    {"plc no response", ExitCode::NoAnswer, Cause::NoAnswer,
     "check cable, power, --station and --baud; a slow controller needs a longer --timeout"},

    {"Hardware fault", ExitCode::Refused, Cause::ControllerFault,
     "the controller reports a fault of its own: look at its SF light"},
    {"Illegal object access", ExitCode::Refused, Cause::RefusedAccess,
     "the controller does not allow this access to this area"},
    {"Invalid address (incorrect variable address)", ExitCode::Refused, Cause::RefusedAddress,
     "this controller has no such address: a smaller number or count may exist"},
    {"Data type is not supported", ExitCode::Refused, Cause::RefusedType,
     "try another type, or the same memory by another width (VB, VW, VD)"},
    {"Object does not exist or length error", ExitCode::Refused, Cause::NoSuchObject,
     "try a smaller number or count; not every model has every area"},
    {"unknow error", ExitCode::Refused, Cause::Refused,
     "the controller gave a reason that the driver does not know; see -v"},
    {"no resource", ExitCode::Refused, Cause::Busy,
     "the controller is busy: try again, or with a longer --delay"},
    {"no service actived", ExitCode::Refused, Cause::NoService,
     "the controller does not serve this kind of request on this port: check the port's mode"},
    {"unknown error", ExitCode::Refused, Cause::Refused, "the controller refused the frame; -v shows how"},
    {"invalid request to PLC", ExitCode::Refused, Cause::RefusedRequest,
     "the controller did not take the request as a whole; -v shows its error class and code"},

    {"packet length < minimum second response", ExitCode::BrokenAnswer, Cause::MissingAnswer,
     "the controller took the request but its answer did not come: try a longer --timeout"},
    {"packet loss", ExitCode::BrokenAnswer, Cause::CutAnswer, kLineHint},
    {"first NAK packet loss", ExitCode::BrokenAnswer, Cause::CutAnswer, kLineHint},
    {"checksum error", ExitCode::BrokenAnswer, Cause::WrongCheckSum, kLineHint},
};

// How the driver's own refusal of a write begins; the address stands behind it.
const char kNotWritable[] = "can not write data to ";

const FaultMeaning *meaningOf(const QString &text)
{
    for (const FaultMeaning &meaning : kMeanings)
        if (text == meaning.text)
            return &meaning;
    return nullptr;
}

// "1, 3 of 4": which of the texts are this one, counted from 1.
QString placesOf(const QString &text, const QStringList &texts)
{
    QStringList places;
    for (int i = 0; i < texts.size(); ++i)
        if (texts.at(i) == text)
            places << QString::number(i + 1);
    return filled("%1 of %2", places.join(", "), texts.size());
}

// A write of several bits ends with one text per bit, commas between; those of the written bits are
// empty. Nothing when it is no such list.
std::optional<Failure> bitsFailure(const QStringList &texts)
{
    QStringList reasons = texts;
    reasons.removeDuplicates();
    reasons.removeAll(QString());
    QStringList complaints;
    for (const QString &reason : reasons) {
        if (!meaningOf(reason))
            return std::nullopt;
        complaints << reason + " (bit " + placesOf(reason, texts) + ')';
    }
    if (complaints.isEmpty())
        return std::nullopt;
    const FaultMeaning *first = meaningOf(reasons.first());
    return Failure(first->code, first->cause, complaints.join(", "), first->hint);
}

} // namespace

Failure driverFailure(const QString &errorText)
{
    if (errorText.isEmpty())
        return Failure(ExitCode::BrokenAnswer, "the driver gives no reason", "-v shows the bytes");
    if (errorText.startsWith(kNotWritable))
        return Failure(ExitCode::Refused, Cause::NotWritable, errorText,
                       "the driver writes no high-speed counters, no analogue inputs, and no status bits of "
                       "timers and counters");
    if (const FaultMeaning *meaning = meaningOf(errorText))
        return Failure(meaning->code, meaning->cause, errorText, meaning->hint);
    if (const std::optional<Failure> failure = bitsFailure(errorText.split(',')))
        return *failure;
    return Failure(ExitCode::BrokenAnswer, errorText,
                   "something other than the controller's answer came; -v shows the bytes");
}

Failure otherDriverFailure(const QString &errorText, bool hasHeard)
{
    const QString text = errorText.isEmpty() ? "the driver gives no reason" : errorText;
    if (hasHeard)
        return Failure(ExitCode::BrokenAnswer, text,
                       "this is what the driver makes of what came; -v shows the bytes");
    return Failure(
        ExitCode::NoAnswer, text,
        "nothing came back: check cable, power, --station, --baud and --parity; a slow device needs a "
        "longer --timeout");
}

Failure unsentFailure(const QString &errorText)
{
    if (errorText.isEmpty() || errorText.startsWith(kNotWritable))
        return driverFailure(errorText);
    return Failure(
        ExitCode::Refused, errorText,
        "the driver refuses that and has sent nothing: its documentation tells which addresses, types "
        "and counts it takes");
}

bool isPassing(const Failure &failure)
{
    const Cause cause = failure.cause();
    return cause == Cause::ControllerFault || cause == Cause::Busy || cause == Cause::NoService;
}

} // namespace host
