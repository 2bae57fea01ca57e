// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/item_run.h"

#include "host/base/failure.h"
#include "host/base/outcome.h"

#include <optional>

namespace host {

int runItems(const std::vector<Tag> &tags, const OriginOf &originOf, Output &output,
             const std::function<void(int)> &part)
{
    Outcome outcome;
    for (int i = 0; i < int(tags.size()); ++i) {
        const Tag &tag = tags[size_t(i)];
        const std::optional<Failure> failure = outcome.attempt(tag.label(), [&] { part(i); });
        if (!failure)
            continue;
        if (failure->code() == ExitCode::OutputLost)
            return outcome.exitCode();
        output.writeUnlessText(tagErrorRecord(originOf(tag), tag, *failure));
        if (failure->isFinal())
            break;
    }
    output.finish();
    return outcome.exitCode();
}

} // namespace host
