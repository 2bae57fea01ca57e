// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/trace/trace_file.h"

#include "simulator/protocol/hex_text.h"
#include "simulator/text/user_error.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace sim {

namespace {

std::string timeText(Time time)
{
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(time).count();
    const std::time_t seconds = static_cast<std::time_t>(milliseconds / 1000);
    std::tm calendar = {};
    gmtime_r(&seconds, &calendar);
    std::array<char, 32> date = {};
    static_cast<void>(std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &calendar));
    std::array<char, 8> fraction = {};
    static_cast<void>(std::snprintf(fraction.data(), fraction.size(), ".%03uZ",
                                    static_cast<unsigned>(milliseconds % 1000)));
    return std::string(date.data()) + fraction.data();
}

} // namespace

std::string traceRecord(Time time, Traffic traffic, const Bytes &bytes)
{
    return timeText(time) + (traffic == Traffic::Sent ? " < " : " > ") + hexText(bytes);
}

TraceFile::TraceFile(const std::string &path, const std::string &heading) : file(path)
{
    if (!writeLine("# " + heading))
        throw UserError(path + ": cannot write: " + std::strerror(errno),
                        "check the trace file's folder, its rights and its room");
}

bool TraceFile::write(Time time, Traffic traffic, const Bytes &bytes)
{
    return !isGood() || writeLine(traceRecord(time, traffic, bytes));
}

bool TraceFile::writeLine(const std::string &line)
{
    file << line << std::endl;
    return isGood();
}

} // namespace sim
