// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/program/complaint.h"

#include <iostream>

namespace sim {

namespace {

const char *const kLabel = "s7ppi-sim: ";

} // namespace

void note(const std::string &text)
{
    std::cerr << kLabel << text << std::endl;
}

void complain(const std::string &text, const std::string &hint)
{
    std::cerr << complaint(text, hint) << std::flush;
}

std::string complaint(const std::string &text, const std::string &hint)
{
    return kLabel + text + "\nhint: " + hint + '\n';
}

} // namespace sim
