// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "assignment.h"

#include "failure.h"
#include "value_parser.h"

namespace host {

Assignment parseAssignment(const QString &text)
{
    const QString target = text.section('=', 0, 0);
    if (!text.contains('='))
        throw Failure(ExitCode::Usage, "no value is given", "write " + text.section('*', 0, 0) + "=VALUE");
    if (target.contains('*'))
        throw Failure(ExitCode::Usage, "a count is not needed here",
                      "write " + text.section('*', 0, 0) + "=VALUE,VALUE with as many values as you mean");
    Item item = parseItem(target);
    const QByteArray data = encodeValues(item, text.section('=', 1));
    item.count = int(data.size()) / item.valueSize();
    checkCount(item);
    return {item, data};
}

} // namespace host
