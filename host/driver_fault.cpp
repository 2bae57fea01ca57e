// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "driver_fault.h"

namespace host {

namespace {

struct Meaning
{
    const char *text;
    ExitCode code;
    const char *hint;
};

const char kLineHint[] =
    "bytes are lost or damaged on the line: check baud rate, parity, cable and termination, "
    "and that no other master uses station 0";

const Meaning kMeanings[] = {
    {"plc no response", ExitCode::NoAnswer,
     "check cable, power, --station and --baud; a slow controller needs a longer --timeout"},

    {"Hardware fault", ExitCode::Refused, "the controller reports a fault of its own: look at its SF light"},
    {"Illegal object access", ExitCode::Refused, "the controller does not allow this access to this area"},
    {"Invalid address (incorrect variable address)", ExitCode::Refused,
     "this controller has no such address: a smaller number or count may exist"},
    {"Data type is not supported", ExitCode::Refused,
     "try another type, or the same memory by another width (VB, VW, VD)"},
    {"Object does not exist or length error", ExitCode::Refused,
     "try a smaller number or count; not every model has every area"},
    {"unknow error", ExitCode::Refused, "the controller gave a reason that the driver does not know; see -v"},
    {"no resource", ExitCode::Refused, "the controller is busy: try again, or with a longer --delay"},
    {"no service actived", ExitCode::Refused,
     "the controller does not serve this kind of request on this port: check the port's mode"},
    {"unknown error", ExitCode::Refused, "the controller refused the frame; -v shows how"},
    {"invalid request to PLC", ExitCode::Refused,
     "the controller did not take the request as a whole; -v shows its error class and code"},

    {"packet length < minimum second response", ExitCode::BrokenAnswer,
     "the controller took the request but its answer did not come: try a longer --timeout"},
    {"packet loss", ExitCode::BrokenAnswer, kLineHint},
    {"first NAK packet loss", ExitCode::BrokenAnswer, kLineHint},
    {"checksum error", ExitCode::BrokenAnswer, kLineHint},
};

} // namespace

Failure driverFailure(const QString &errorText)
{
    for (const Meaning &meaning : kMeanings)
        if (errorText == meaning.text)
            return Failure(meaning.code, errorText, meaning.hint);
    return Failure(ExitCode::BrokenAnswer, errorText,
                   "something other than the controller's answer came; -v shows the bytes");
}

} // namespace host
