// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "report.h"

#include "failure.h"

#include <cstdio>

namespace host {

void reportNote(const QString &text)
{
    std::fprintf(stderr, "s7ppi: %s\n", qUtf8Printable(text));
}

void reportFailure(const Failure &failure)
{
    reportNote(failure.text());
    std::fprintf(stderr, "hint: %s\n", qUtf8Printable(failure.hint()));
}

void reportFailure(const QString &subject, const Failure &failure)
{
    reportFailure(Failure(failure.code(), subject + ": " + failure.text(), failure.hint()));
}

void reportTrace(const QString &line)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(line));
}

} // namespace host
