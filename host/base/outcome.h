// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How a command with several parts ends: every failure is reported, the first one gives the exit code.

#ifndef HOST_BASE_OUTCOME_H
#define HOST_BASE_OUTCOME_H

#include "host/base/failure.h"
#include "host/base/messages.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace host {

class Outcome
{
public:
    // Runs one part; a Failure that it throws is reported as the subject's and returned.
    template <typename Part> std::optional<Failure> attempt(const QString &subject, const Part &part)
    {
        try {
            part();
            return std::nullopt;
        } catch (const Failure &failure) {
            add(subject, failure);
            return failure;
        }
    }

    void add(const QString &subject, const Failure &failure)
    {
        reportFailure(subject, failure);
        keep(failure.code());
    }

    // Takes note of how a part ended whose failure, if there was one, is told elsewhere.
    void keep(ExitCode code)
    {
        if (first == ExitCode::Success)
            first = code;
    }

    // Returns what parse() makes of each text; every text that it refuses is reported and left out.
    template <typename Parse> auto parseAll(const QStringList &texts, const Parse &parse)
    {
        std::vector<decltype(parse(QString()))> parsed;
        for (const QString &text : texts)
            attempt(text, [&] { parsed.push_back(parse(text)); });
        return parsed;
    }

    bool isSuccess() const { return first == ExitCode::Success; }
    ExitCode code() const { return first; }
    int exitCode() const { return int(first); }

private:
    ExitCode first = ExitCode::Success;
};

} // namespace host

#endif
