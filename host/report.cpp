// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "report.h"

#include "failure.h"

#include <iostream>

namespace host {

void reportNote(const QString &text)
{
    std::cerr << "s7ppi: " << qUtf8Printable(text) << std::endl;
}

void reportFailure(const Failure &failure)
{
    reportNote(failure.text());
    std::cerr << "hint: " << qUtf8Printable(failure.hint()) << std::endl;
}

void reportFailure(const QString &subject, const Failure &failure)
{
    reportFailure(Failure(failure.code(), subject + ": " + failure.text(), failure.hint()));
}

void reportTrace(const QString &line)
{
    std::cerr << qUtf8Printable(line) << std::endl;
}

void printData(const QString &line)
{
    std::cout << qUtf8Printable(line) << std::endl;
}

} // namespace host
