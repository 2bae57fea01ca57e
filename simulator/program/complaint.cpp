// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/program/complaint.h"

#include "common/terminal_text.h"

#include <QString>

#include <iostream>

namespace sim {

namespace {

const char *const kLabel = "s7ppi-sim: ";

// What is told may quote a file.
std::string visible(const std::string &text)
{
    return common::messageText(QString::fromStdString(text)).toStdString();
}

} // namespace

void note(const std::string &text)
{
    std::cerr << kLabel << visible(text) << std::endl;
}

void complain(const std::string &text, const std::string &hint)
{
    std::cerr << complaint(text, hint) << std::flush;
}

std::string complaint(const std::string &text, const std::string &hint)
{
    return kLabel + visible(text) + "\nhint: " + visible(hint) + '\n';
}

} // namespace sim
